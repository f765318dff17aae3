#pragma once
// Lets protocol tests see a line's style in its colour: every "kolory" entry gets its own
// colour (entry i is i + 1), so the colour a line was printed in names its style.

#include "support/irc_client_fixture.h"

#include <QByteArray>
#include <QString>
#include <QStringList>

inline constexpr const char* kStyleNames[] = {
    "Action", "Ping",   "Invite", "Join", "Part", "Topic", "Whois", "Mode",  "Normal",
    "Notice", "Notify", "Hlight", "Nick", "Kick", "Quit",  "Info",  "Info2",
};

inline QByteArray DistinctColours() {
  QByteArray bytes(96, '\0');
  for (int i = 0; i < 24; ++i) bytes[i * 4] = static_cast<char>(i + 1);
  return bytes;
}

// The style whose colour this is, or "colour N" for any other.
inline QString StyleName(quint32 colour) {
  const int style = static_cast<int>(colour) - 8;
  return style >= 0 && style < 17 ? QString::fromLatin1(kStyleNames[style])
                                  : QStringLiteral("colour ") + QString::number(colour);
}

// Every stored line of every tab as "tab|text|style" (or with another separator), tabs in
// bar order.
inline QStringList AllStyledLines(const IrcClientFixture& f, const QString& separator = QStringLiteral("|")) {
  QStringList out;
  for (int p = 0; p < f.ctx.tabs.Count(); ++p) {
    const ConversationTab* tab = f.ctx.tabs.At(p);
    for (qsizetype i = 0; i < tab->lines->LineCount(); ++i) {
      const StoredLine line = tab->lines->Line(i);
      out << tab->name + separator + line.text + separator + StyleName(line.colour);
    }
  }
  return out;
}
