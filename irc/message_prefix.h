#pragma once
// The sender of a server message, taken from its prefix ("nick!user@host" or a server).

#include <QStringView>

// The prefix up to its first "!", or the whole prefix (a server name).
inline QStringView NickOf(QStringView prefix) {
  const qsizetype bang = prefix.indexOf(u'!');
  return bang < 0 ? prefix : prefix.first(bang);
}

// "user@host" behind the "!", empty when there is none.
inline QStringView AddressOf(QStringView prefix) {
  const qsizetype bang = prefix.indexOf(u'!');
  return bang < 0 ? QStringView() : prefix.sliced(bang + 1);
}
