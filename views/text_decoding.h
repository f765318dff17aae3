#pragma once
// Turning stored or received bytes back into text exactly: a U+FEFF at the start of a
// line is a character like any other, not a byte-order mark to swallow.

#include <QByteArrayView>
#include <QString>
#include <QStringDecoder>

inline QString DecodeUtf8Exactly(QByteArrayView bytes) {
  QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::ConvertInitialBom);
  return decoder.decode(bytes);
}

// A received line: UTF-8 when it is valid UTF-8, otherwise Latin-1 (an older client in an
// 8-bit code page), so no line is dropped or shown as replacement characters.
inline QString DecodeReceivedLine(QByteArrayView bytes) {
  return bytes.isValidUtf8() ? DecodeUtf8Exactly(bytes) : QString::fromLatin1(bytes);
}
