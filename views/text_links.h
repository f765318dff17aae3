#pragma once
// Web addresses in a line's plain text, so the view can draw them as links and open the
// one a finger taps.

#include <QList>
#include <QStringView>

// [start, end) of the plain text.
struct TextLink {
  qsizetype start = 0;
  qsizetype end = 0;

  friend bool operator==(const TextLink&, const TextLink&) = default;
};

// Every "http://" or "https://" address (any case) that starts a word or follows a
// punctuation mark, up to the next blank or control character. Punctuation that ends a
// sentence is left out ("see https://a.example/x." links without the dot), and so is a
// closing bracket the address did not open.
QList<TextLink> FindLinks(QStringView text);
