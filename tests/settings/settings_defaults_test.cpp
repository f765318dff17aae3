#include "settings/settings_defaults.h"
#include "settings/settings_flags.h"
#include "settings/settings_paths.h"

#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

std::string Name(const char16_t* name) { return QString::fromUtf16(name).toStdString(); }

QString Text(const SettingsStore& store, QStringView name, SettingsKey key = SettingsKey::Main) {
  QString text = u"<unreadable>"_s;
  store.GetString(name, text, 5000, key);
  return text;
}

class Defaults : public ::testing::Test {
 protected:
  QTemporaryDir dir;
  SettingsStore store{dir.path()};
  QString home = dir.path() + u'/';
};

TEST_F(Defaults, FirstStartWritesEveryValueInOrder) {
  InitialiseDefaults(store);
  EXPECT_EQ(store.ValueNames(),
            (QStringList{u"server"_s, u"nick"_s, u"alternick"_s, u"fullname"_s, u"email"_s,
                         u"kolory"_s, u"bmp"_s, u"bmpfile"_s, u"VGA"_s, u"bmpblend"_s,
                         u"snd_enable"_s, u"tstamps"_s, u"partmsg"_s, u"quitmsg"_s,
                         u"en_ignore"_s, u"en_hlights"_s, u"en_notify"_s, u"not_whois"_s,
                         u"ignore"_s, u"hlights"_s, u"notify"_s, u"logpath"_s, u"Options"_s,
                         u"IdPort"_s, u"DCC"_s, u"TabSets"_s, u"FontSize"_s, u"Files"_s,
                         u"IdUser"_s, u"IdSystem"_s, u"LocalHost"_s, u"TextFontName"_s,
                         u"ListFontName"_s, u"EditFontName"_s, u"DCCpath"_s, u"mColors"_s,
                         u"desk_notify"_s}));
  EXPECT_EQ(store.ValueNames(SettingsKey::Sounds),
            (QStringList{u"join"_s, u"part"_s, u"query"_s, u"invite"_s, u"notice"_s,
                         u"highlight"_s, u"quit"_s, u"ping"_s, u"kick"_s, u"op"_s, u"deop"_s,
                         u"voice"_s, u"devoice"_s}));

  const std::pair<const char16_t*, qint32> dwords[] = {
      {u"server", 0},        {u"bmp", 0},          {u"VGA", 0},        {u"bmpblend", 6},
      {u"snd_enable", 1},    {u"tstamps", 0},      {u"en_ignore", 0},  {u"en_hlights", 0},
      {u"en_notify", 0},     {u"not_whois", 0},    {u"Options", 0x010001C0},
      {u"IdPort", 113},      {u"DCC", 0x3000},     {u"TabSets", 0x05550FFF},
      {u"FontSize", 34},     {u"Files", 0x2100},
  };
  for (const auto& [name, value] : dwords) EXPECT_EQ(store.GetDword(name), value) << Name(name);

  const std::pair<const char16_t*, QString> texts[] = {
      {u"fullname", u"Kelvane Tolv v1.4"_s}, {u"partmsg", u"Kelvane Tolv v1.4"_s},
      {u"quitmsg", u"Kelvane Tolv v1.4"_s},  {u"bmpfile", u""_s},
      {u"ignore", u""_s},                    {u"hlights", u""_s},
      {u"notify", u""_s},                    {u"logpath", home},
      {u"IdUser", u"tolv"_s},                {u"IdSystem", u"UNIX"_s},
      {u"LocalHost", u"0.0.0.0"_s},          {u"TextFontName", u"Tahoma"_s},
      {u"ListFontName", u"Tahoma"_s},        {u"EditFontName", u"Tahoma"_s},
      {u"DCCpath", home + u"downloads/"_s},
  };
  for (const auto& [name, value] : texts) EXPECT_EQ(Text(store, name), value) << Name(name);
  EXPECT_TRUE(Text(store, u"email").contains(u'@'));
  EXPECT_EQ(Text(store, u"highlight", SettingsKey::Sounds), u"highlight.wav"_s);
  EXPECT_EQ(Text(store, u"deop", SettingsKey::Sounds), u""_s);
  EXPECT_TRUE(QFileInfo(home + u"downloads"_s).isDir());
  EXPECT_EQ(GetNibble(store, u"Files", 12), 2);

  QByteArray colours;
  ASSERT_TRUE(store.GetBinary(u"kolory", colours, 96));
  ASSERT_EQ(colours.size(), 96);
  EXPECT_EQ(colours.first(4), QByteArray("\xff\xe9\xd9\x00", 4));      // entry 0
  EXPECT_EQ(colours.sliced(18 * 4, 4), QByteArray("\xff\x00\xff\x00", 4));  // Hlight
  ASSERT_TRUE(store.GetBinary(u"mColors", colours, 64));
  EXPECT_EQ(colours.sliced(7 * 4, 4), QByteArray("\xff\x80\x00\x00", 4));  // orange
}

TEST_F(Defaults, NicksGetTwoSuffixesBetween1And250) {
  const QRegularExpression form(u"^tolv([0-9]+)$"_s);
  QSet<QString> seen;
  for (int run = 0; run < 40; ++run) {
    QTemporaryDir fresh;
    SettingsStore s(fresh.path());
    InitialiseDefaults(s);
    for (const char16_t* name : {u"nick", u"alternick"}) {
      const auto match = form.match(Text(s, name));
      ASSERT_TRUE(match.hasMatch()) << Text(s, name).toStdString();
      const int n = match.captured(1).toInt();
      EXPECT_GE(n, 1);
      EXPECT_LE(n, 250);
      seen.insert(match.captured(1));
    }
  }
  EXPECT_GT(seen.size(), 10);  // drawn, not fixed
}

TEST_F(Defaults, LaterStartsRestoreOnlyTheAlwaysValues) {
  InitialiseDefaults(store);
  store.SetString(u"nick", u"alice", 120);
  store.SetString(u"ignore", u"bob ", 2002);
  store.DeleteValue(u"Options");
  store.DeleteValue(u"ignore");
  store.DeleteValue(u"mColors");
  store.DeleteValue(u"kolory");
  store.SetDword(u"Files", 0x3100);
  InitialiseDefaults(store);
  EXPECT_EQ(store.GetDword(u"Options"), 0x010001C0);
  EXPECT_EQ(store.GetDword(u"Files"), 0x3100);
  EXPECT_EQ(Text(store, u"nick"), u"alice"_s);
  EXPECT_EQ(store.TypeOf(u"ignore"), std::nullopt);  // a first-start value stays away
  EXPECT_EQ(store.TypeOf(u"kolory"), std::nullopt);
  EXPECT_EQ(store.TypeOf(u"mColors"), SettingType::Binary);
}

TEST_F(Defaults, StringsTooLongForTheirReaderAreReplaced) {
  InitialiseDefaults(store);
  const struct {
    const char16_t* name;
    QString stored;
    QString after;
  } cases[] = {
      {u"IdUser", QString(60, u'u'), u"tolv"_s},
      {u"IdUser", QString(59, u'u'), QString(59, u'u')},
      {u"IdSystem", QString(15, u's'), u"UNIX"_s},
      {u"LocalHost", u"192.168.100.200"_s, u"0.0.0.0"_s},
      {u"LocalHost", u"10.0.0.1"_s, u"10.0.0.1"_s},
      {u"TextFontName", QString(35, u'f'), u"Tahoma"_s},
  };
  for (const auto& c : cases) {
    store.SetString(c.name, c.stored, 5000);
    InitialiseDefaults(store);
    EXPECT_EQ(Text(store, c.name), c.after) << Name(c.name);
  }
}

TEST_F(Defaults, ObsoleteValuesGoWhenTheyFitFourBytes) {
  store.SetDword(u"rejoin", 1);
  store.SetDword(u"whspmax", 3);
  store.SetString(u"Fonts", u"x", 2);               // 4 bytes with its terminator
  store.SetString(u"logchan", u"long text", 100);   // too long for the 4-byte reader
  store.SetDword(u"", 7);                            // the unnamed value
  store.SetDword(u"keepme", 1);
  InitialiseDefaults(store);
  for (const char16_t* gone : {u"rejoin", u"whspmax", u"Fonts", u""})
    EXPECT_EQ(store.TypeOf(gone), std::nullopt) << Name(gone);
  EXPECT_EQ(store.TypeOf(u"logchan"), SettingType::String);
  EXPECT_EQ(store.GetDword(u"keepme"), 1);
}

TEST_F(Defaults, FoldersEndInASlash) {
  InitialiseDefaults(store);
  EXPECT_EQ(GetInstallDir(store), home);
  EXPECT_EQ(GetDccDir(store), home + u"downloads/"_s);
  EXPECT_EQ(GetDictDir(store), home);  // no "dictpath" yet
  store.SetString(u"dictpath", u"/dict", 125);
  EXPECT_EQ(GetDictDir(store), u"/dict/"_s);
  QString sound = u"untouched"_s;
  EXPECT_TRUE(GetSoundFile(store, u"join", sound));
  EXPECT_EQ(sound, home + u"join.wav"_s);
  sound = u"untouched"_s;
  EXPECT_FALSE(GetSoundFile(store, u"query", sound));
  EXPECT_EQ(sound, u"untouched"_s);
}

TEST(SettingDefinitions, EveryNameIsDescribedOnce) {
  QSet<QString> seen;
  for (const SettingDefinition& d : SettingDefinitions()) {
    const QString key = QString::number(int(d.key)) + QString::fromUtf16(d.name);
    EXPECT_FALSE(seen.contains(key)) << key.toStdString();
    seen.insert(key);
  }
  ASSERT_NE(FindSettingDefinition(u"hlights"), nullptr);
  EXPECT_EQ(FindSettingDefinition(u"hlights")->capacity, 2002);
  EXPECT_EQ(FindSettingDefinition(u"join"), nullptr);
  EXPECT_NE(FindSettingDefinition(u"join", SettingsKey::Sounds), nullptr);
}

}  // namespace
