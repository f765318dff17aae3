// dict.dat byte for byte after known teaching sequences, the completions a lookup finds,
// and what a damaged file does: nothing written, nothing hangs, one line on Status.

#include "settings/settings_store.h"
#include "support/file_bytes.h"
#include "whispers/whisper_dictionary.h"

#include <QDir>
#include <QTemporaryDir>
#include <QtEndian>
#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

struct Record {
  quint32 alternative;
  quint8 character;
};

// The file as the format describes it: 256 slots, then 5-byte records.
QByteArray DictBytes(std::initializer_list<std::pair<int, quint32>> slotOffsets,
                     std::initializer_list<Record> records) {
  QByteArray bytes(1024, '\0');
  for (auto [slot, offset] : slotOffsets) qToLittleEndian(offset, bytes.data() + 4 * slot);
  for (const Record& r : records) {
    char record[5];
    qToLittleEndian(r.alternative, record);
    record[4] = char(r.character);
    bytes.append(record, 5);
  }
  return bytes;
}

class DictionaryTest : public ::testing::Test {
 protected:
  QByteArray File() const {
    dictionary.WaitForWrites();
    return ReadBytes(dictionary.FilePath());
  }
  void TeachAll(const QStringList& words) {
    for (const QString& word : words) dictionary.TeachWord(word);
  }

  QTemporaryDir home;
  SettingsStore settings{home.path()};
  QStringList reports;
  WhisperDictionary dictionary{settings, [this](const QString& line) { reports << line; }};
};

struct TeachCase {
  const char* name;
  QStringList taught;  // each through TeachWord, or one line through TeachText
  bool asLine;
  QByteArray bytes;
};

class TeachingTest : public DictionaryTest, public ::testing::WithParamInterface<TeachCase> {};

TEST_P(TeachingTest, LeavesTheseBytes) {
  const TeachCase& c = GetParam();
  if (c.asLine) dictionary.TeachText(c.taught.join(u' '));
  else TeachAll(c.taught);
  EXPECT_EQ(File().toHex(' '), c.bytes.toHex(' '));
  EXPECT_TRUE(reports.isEmpty());
}

INSTANTIATE_TEST_SUITE_P(
    Table, TeachingTest,
    ::testing::Values(
        TeachCase{"SameWordTwice", {u"ab"_s, u"ab"_s}, false, DictBytes({{'a', 1024}}, {{0, 'b'}, {0, 0}})},
        TeachCase{"SharedPrefix", {u"abc"_s, u"abd"_s}, false,
                  DictBytes({{'a', 1024}}, {{0, 'b'}, {1039, 'c'}, {0, 0}, {0, 'd'}, {0, 0}})},
        // An end record carries the alternative of the longer word.
        TeachCase{"MeThenLonger", {u"/me"_s, u"/meet"_s}, false,
                  DictBytes({{'/', 1024}}, {{0, 'm'}, {0, 'e'}, {1039, 0}, {0, 'e'}, {0, 't'}, {0, 0}})},
        TeachCase{"LongerThenMe", {u"/meet"_s, u"/me"_s}, false,
                  DictBytes({{'/', 1024}}, {{0, 'm'}, {0, 'e'}, {1049, 'e'}, {0, 't'}, {0, 0}, {0, 0}})},
        // Only the low byte is kept: U+00E9 is 0xE9, and U+015D is filed where "]" is.
        TeachCase{"NonAscii", {u"x\u00e9"_s, u"]b"_s, u"\u015da"_s}, false,
                  DictBytes({{'x', 1024}, {0x5d, 1034}}, {{0, 0xe9}, {0, 0}, {1044, 'b'}, {0, 0}, {0, 'a'}, {0, 0}})},
        // Single blanks cut; pieces under two characters are never taught.
        TeachCase{"LineSplitting", {u"a"_s, u"bb"_s, u""_s, u"cc"_s, u"ddd"_s}, true,
                  DictBytes({{'b', 1024}, {'c', 1034}, {'d', 1044}}, {{0, 'b'}, {0, 0}, {0, 'c'}, {0, 0}, {0, 'd'}, {0, 'd'}, {0, 0}})},
        // A character whose low byte is 0 matches an end record and steps past it; off the
        // end of the file there is nowhere to add it, so nothing is written.
        TeachCase{"LowByteZeroPastTheEnd", {u"ab"_s, u"ab\u0100"_s}, false,
                  DictBytes({{'a', 1024}}, {{0, 'b'}, {0, 0}})}),
    [](const auto& info) { return std::string(info.param.name); });

TEST_F(DictionaryTest, SeedWordsFillOneSlotAndStayPut) {
  settings.SetString(u"dictpath", home.path() + u"/elsewhere"_s, 250);
  QDir().mkpath(home.path() + u"/elsewhere"_s);
  dictionary.EnsureDictionary(false);
  EXPECT_TRUE(QFile::exists(home.path() + u"/elsewhere/dict.dat"_s));
  const QByteArray seeded = File();
  ASSERT_EQ(seeded.size(), 1484);  // 1024 + 92 records: 20 words sharing "/" and more
  EXPECT_EQ(seeded.left(1024), DictBytes({{'/', 1024}}, {}));
  EXPECT_EQ(seeded.mid(1024, 25).toHex(' '), DictBytes({}, {{1049, 'j'}, {0, 'o'}, {0, 'i'}, {0, 'n'}, {0, 0}}).mid(1024).toHex(' '));
  dictionary.EnsureDictionary(false);
  EXPECT_EQ(File(), seeded);
  dictionary.TeachWord(u"zz"_s);
  dictionary.EnsureDictionary(true);  // the Flush: back to the seeds alone
  EXPECT_EQ(File(), seeded);
}

TEST_F(DictionaryTest, LongWordsAreCut) {
  dictionary.TeachText(QString(300, u'q'));
  EXPECT_EQ(File().size(), 1024 + 250 * 5);
}

struct LookupCase {
  const char* name;
  QStringList taught;
  const char* typed;
  int limit;
  WhisperLookup result;
  QStringList words;
};

class LookupTest : public DictionaryTest, public ::testing::WithParamInterface<LookupCase> {};

TEST_P(LookupTest, FindsTheseCompletions) {
  const LookupCase& c = GetParam();
  dictionary.EnsureDictionary(false);
  TeachAll(c.taught);
  const WhisperCompletions found = dictionary.FindCompletions(QString::fromUtf8(c.typed), c.limit);
  EXPECT_EQ(found.result, c.result);
  EXPECT_EQ(found.words, c.words);
}

INSTANTIATE_TEST_SUITE_P(
    Table, LookupTest,
    ::testing::Values(
        LookupCase{"SlashLatestBranchFirst", {}, "/", 15, WhisperLookup::Found,
                   {u"/away"_s, u"/kick"_s, u"/topic"_s, u"/query"_s, u"/quit"_s, u"/who"_s, u"/whowas"_s,
                    u"/whois"_s, u"/nick"_s, u"/names"_s, u"/list"_s, u"/invite"_s, u"/msg"_s, u"/part"_s,
                    u"/join"_s}},
        // The end of "/me" itself takes no branch and is never listed.
        LookupCase{"MeListsLongerWordsOnly", {u"/meet"_s, u"/message"_s}, "/me", 2, WhisperLookup::Found,
                   {u"/message"_s, u"/meet"_s}},
        LookupCase{"NotInTheTree", {}, "/zap", 2, WhisperLookup::NotFound, {}},
        LookupCase{"NoWordWithThatFirstCharacter", {}, "#x", 2, WhisperLookup::Unavailable, {}},
        // Teaching keeps the low byte; a lookup compares the signed byte with the whole
        // character, so the taught word is offered for "x" but not found when typed.
        LookupCase{"NonAsciiOfferedNotMatched", {u"x\u00e9"_s}, "x", 2, WhisperLookup::Found, {u"x\u00e9"_s}},
        LookupCase{"NonAsciiTypedNeverMatches", {u"x\u00e9"_s, u"x\u00e9t"_s}, "x\u00e9", 2,
                   WhisperLookup::NotFound, {}},
        LookupCase{"SharedSlotKeepsTheTypedFirstCharacter", {u"]b"_s}, "\u015d", 2, WhisperLookup::Found,
                   {u"\u015db"_s}}),
    [](const auto& info) { return std::string(info.param.name); });

struct DamageCase {
  const char* name;
  QByteArray bytes;
};

class DamagedFileTest : public DictionaryTest, public ::testing::WithParamInterface<DamageCase> {};

// Every operation on the file is tried; it stays as it was and Status hears of it once.
TEST_P(DamagedFileTest, WritesNothingAndSaysSoOnce) {
  WriteBytes(dictionary.FilePath(), GetParam().bytes);
  for (const char* typed : {"a", "ab", "abc", "az"})
    EXPECT_TRUE(dictionary.FindCompletions(QString::fromUtf8(typed), 15).words.isEmpty()) << typed;
  dictionary.TeachText(u"abx azz"_s);
  dictionary.EnsureDictionary(false);
  EXPECT_EQ(File(), GetParam().bytes);
  ASSERT_EQ(reports.size(), 1);
  EXPECT_EQ(reports[0], u"* The whispers dictionary "_s + dictionary.FilePath() +
                            u" is damaged and left alone until it is flushed, or deleted before the next start"_s);
  dictionary.EnsureDictionary(true);
  EXPECT_EQ(File().size(), 1484);
  EXPECT_EQ(dictionary.FindCompletions(u"/"_s, 2).words, (QStringList{u"/part"_s, u"/join"_s}));
}

INSTANTIATE_TEST_SUITE_P(
    Table, DamagedFileTest,
    ::testing::Values(
        DamageCase{"ShorterThanItsHeader", QByteArray(500, '\0')},
        DamageCase{"CutInsideARecord", DictBytes({{'a', 1024}}, {{0, 'b'}, {0, 0}}).chopped(2)},
        DamageCase{"SlotBeyondTheEnd", DictBytes({{'a', 4000}}, {{0, 'b'}, {0, 0}})},
        DamageCase{"AlternativesInALoop", DictBytes({{'a', 1024}}, {{1034, 'b'}, {0, 0}, {1024, 'c'}, {0, 0}})},
        DamageCase{"EndRecordLoopsOnItself", DictBytes({{'a', 1024}}, {{0, 'b'}, {1029, 0}})}),
    [](const auto& info) { return std::string(info.param.name); });

}  // namespace
