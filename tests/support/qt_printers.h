#pragma once
// Lets GoogleTest print Qt texts readably in failure messages (lists of them too). Included
// in every test file by the build (-include), because gtest finds PrintTo by argument lookup.

#include <QByteArray>
#include <QString>

#include <ostream>

inline void PrintTo(const QString& text, std::ostream* out) { *out << '"' << text.toStdString() << '"'; }

inline void PrintTo(const QByteArray& bytes, std::ostream* out) {
  *out << '"' << bytes.toPercentEncoding(" !#$&'()*+,/:;=?@[]<>{}|^~`\\\"").toStdString() << '"';
}
