#pragma once
// Whole files as bytes, for tests that compare what is on disk exactly.

#include <QByteArray>
#include <QFile>
#include <QString>
#include <gtest/gtest.h>

inline QByteArray ReadBytes(const QString& path) {
  QFile file(path);
  return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("<unreadable>");
}

inline void WriteBytes(const QString& path, const QByteArray& bytes) {
  QFile file(path);
  ASSERT_TRUE(file.open(QIODevice::WriteOnly));
  file.write(bytes);
}
