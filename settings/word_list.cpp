#include "settings/word_list.h"

#include "settings/settings_store.h"

int MatchWord(QStringView word, QStringView listText) {
  qsizetype start = 0;
  for (;;) {
    const qsizetype blank = listText.indexOf(u' ', start);
    if (blank < 0) return -1;
    const QStringView entry = listText.sliced(start, blank - start);
    if (entry.size() == word.size() && entry.compare(word, Qt::CaseInsensitive) == 0)
      return static_cast<int>(start);
    start = blank + 1;
  }
}

namespace {

QString ReadList(const SettingsStore& store, QStringView listValue) {
  QString list;
  store.GetString(listValue, list, kWordListUnits);
  return list;
}

}  // namespace

int ListContains(const SettingsStore& store, QStringView word, QStringView enableValue,
                 QStringView listValue) {
  if (!enableValue.isEmpty() && store.GetDword(enableValue) == 0) return -1;
  return MatchWord(word, ReadList(store, listValue));
}

void ListAdd(SettingsStore& store, QStringView word, QStringView listValue) {
  store.SetDword(u"en_ignore", 1);
  QString list = ReadList(store, listValue);
  if (MatchWord(word, list) >= 0) return;
  if (word.size() + list.size() + 1 >= kWordListMaxLength) return;
  list += word;
  list += u' ';
  store.SetString(listValue, list, kWordListUnits);
}

void ListRemove(SettingsStore& store, QStringView word, QStringView listValue) {
  QString list = ReadList(store, listValue);
  const int at = MatchWord(word, list);
  if (at < 0) return;
  list.remove(at, word.size() + 1);
  store.SetString(listValue, list, kWordListUnits);
}
