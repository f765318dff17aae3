#pragma once
// The text form of the settings file: the registry export format, written as UTF-8.
//
//   Windows Registry Editor Version 5.00
//
//   [HKEY_LOCAL_MACHINE\SOFTWARE\Kelvane\Tolv]
//   "server"=dword:00000000
//   "nick"="tolv42"
//   "kolory"=hex:d9,e9,ff,00,...
//
// Strings holding control characters (a line break in a quit message, say) are written
// as hex(1): UTF-16LE bytes with their terminator, as the registry exporter does, so
// every value reads back exactly.

#include "settings/settings_store.h"

#include <QByteArray>
#include <QString>
#include <utility>
#include <vector>

struct RegKeyText {
  QString path;  // between the brackets
  std::vector<std::pair<QString, SettingValue>> values;
};

struct RegParseResult {
  std::vector<RegKeyText> keys;
  int badLines = 0;  // lines that were neither blank, comment, header, key nor value
};

RegParseResult ParseRegFile(const QByteArray& content);
QByteArray FormatRegFile(const std::vector<RegKeyText>& keys);
