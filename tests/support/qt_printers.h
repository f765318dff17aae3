#pragma once
// Lets GoogleTest print Qt values readably in failure messages. Included in every test
// file by the build (-include), because gtest finds PrintTo by argument lookup.

#include <QByteArray>
#include <QSize>
#include <QString>
#include <QStringList>

#include <ostream>

inline void PrintTo(const QString& text, std::ostream* out) {
  *out << '"' << text.toStdString() << '"';
}

inline void PrintTo(const QStringList& list, std::ostream* out) {
  *out << '{';
  for (qsizetype i = 0; i < list.size(); ++i) {
    if (i) *out << ", ";
    PrintTo(list[i], out);
  }
  *out << '}';
}

inline void PrintTo(const QByteArray& bytes, std::ostream* out) {
  *out << '"' << bytes.toPercentEncoding(" !#$&'()*+,/:;=?@[]<>{}|^~`\\\"").toStdString() << '"';
}

inline void PrintTo(const QSize& size, std::ostream* out) {
  *out << size.width() << 'x' << size.height();
}
