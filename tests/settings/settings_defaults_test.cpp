#include "settings/settings_defaults.h"
#include "settings/settings_flags.h"
#include "settings/settings_paths.h"
#include "support/file_bytes.h"

#include <QTemporaryDir>
#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

// A later start keeps what the user changed, writes again an always-value that cannot be
// read (missing, of another type, or too long for its reader), and removes values of an
// earlier layout that a 4-byte reader can read. (What a first start writes is checked in
// tests/client.)
TEST(SettingsDefaults, LaterStartsRestoreOnlyWhatCannotBeRead) {
  QTemporaryDir home;
  SettingsStore store(home.path());
  InitialiseDefaults(store);
  store.SetString(u"nick", u"alice", 120);
  for (auto name : {u"Options", u"ignore", u"kolory", u"mColors"}) store.DeleteValue(name);
  store.SetString(u"DCC", u"x", 2);
  store.SetDword(u"Files", 0x3100);
  store.SetString(u"IdUser", QString(60, u'u'), 100);
  store.SetString(u"ListFontName", QString(34, u'f'), 100);
  store.SetString(u"LocalHost", u"192.168.100.200", 100);
  store.SetDword(u"rejoin", 1);
  store.SetString(u"Fonts", u"x", 2);
  store.SetString(u"logchan", u"long text", 100);
  store.SetDword(u"", 7);
  InitialiseDefaults(store);
  const QByteArray file = ReadBytes(store.FilePath());
  for (const char* line :
       {"\"nick\"=\"alice\"\n", "\"Options\"=dword:010001c0\n", "\"DCC\"=dword:00003000\n",
        "\"Files\"=dword:00003100\n", "\"IdUser\"=\"tolv\"\n", "\"LocalHost\"=\"0.0.0.0\"\n",
        "\"ListFontName\"=\"ffffffffffffffffffffffffffffffffff\"\n", "\"mColors\"=hex:ff,ff,ff,00,",
        "\"logchan\"=\"long text\"\n"})
    EXPECT_TRUE(file.contains(line)) << line;
  for (const char* gone : {"\"ignore\"", "\"kolory\"", "\"rejoin\"", "\"Fonts\"", "@="})
    EXPECT_FALSE(file.contains(gone)) << gone;

  // Folders end in a slash; without one set, they are in the home folder.
  EXPECT_EQ(GetDictDir(store), home.path() + u'/');
  store.SetString(u"dictpath", u"/dict", 125);
  store.DeleteValue(u"DCCpath");
  EXPECT_EQ(GetDictDir(store) + GetDccDir(store), u"/dict/"_s + home.path() + u"/downloads/"_s);
  QString sound = u"untouched"_s;
  EXPECT_FALSE(GetSoundFile(store, u"query", sound));  // no file for this event
  EXPECT_TRUE(GetSoundFile(store, u"join", sound));
  EXPECT_EQ(sound, home.path() + u"/join.wav"_s);
}

// The options dialog names a bit by its control identifier; a missing word reads as all set.
TEST(SettingsFlags, PackedWordsReadAndWriteBitByBit) {
  const std::pair<quint32, quint32> masks[] = {
      {1201, 0x1}, {1204, 0x200}, {1218, 0x8}, {1113, 0x01000000}, {1616, 0x1000}, {1809, 0x100}, {1200, 1200}};
  for (const auto& [control, mask] : masks) EXPECT_EQ(MaskForControl(control), mask) << control;
  QTemporaryDir dir;
  SettingsStore store(dir.path());
  EXPECT_TRUE(TestOption(store, kOptReconnect));
  store.SetDword(u"Options", 0x010001C0);
  EXPECT_FALSE(TestOption(store, 1218));
  SetFlag(store, u"Options", 1218, true);
  SetFlag(store, u"Options", kOptSplash, false);
  EXPECT_EQ(store.GetDword(u"Options"), 0x01000188);
  store.SetDword(u"Files", 0x2100);
  EXPECT_EQ(GetNibble(store, u"Files", kWhispersCountShift), 2);
  SetNibble(store, u"Files", kWhispersCountShift, 15);
  EXPECT_EQ(store.GetDword(u"Files"), 0xF100);
  SetNibble(store, u"DCC", kDccSendPolicyShift, 2);
  EXPECT_EQ(store.GetDword(u"DCC"), static_cast<qint32>(0xFFFFFF2F));
}

}  // namespace
