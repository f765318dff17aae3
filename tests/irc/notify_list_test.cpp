#include "irc/notify_list.h"

#include "settings/settings_store.h"

#include "support/irc_client_fixture.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

QStringList Nicks(const std::vector<NotifyEntry>& chain) {
  QStringList out;
  for (const NotifyEntry& entry : chain) out << entry.nick;
  return out;
}

const QString kLong = QString(70, u'x');
const QString kLongCut = QString(kNotifyNickUnits, u'x');

struct ChainCase {
  const char* name;
  QString text;
  QStringList nicks;
};

class NotifyChainTest : public ::testing::TestWithParam<ChainCase> {};

TEST_P(NotifyChainTest, SplitsAtBlanks) {
  const std::vector<NotifyEntry> chain = BuildNotifyChain(GetParam().text);
  EXPECT_EQ(Nicks(chain), GetParam().nicks);
  for (const NotifyEntry& entry : chain) EXPECT_FALSE(entry.online);
}

INSTANTIATE_TEST_SUITE_P(
    Texts, NotifyChainTest,
    ::testing::Values(ChainCase{"AsStored", u"alice bob "_s, {u"alice"_s, u"bob"_s}},
                      ChainCase{"AdjacentBlanksGiveEmptyNicks",
                                u"alice  bob "_s,
                                {u"alice"_s, QString(), u"bob"_s}},
                      ChainCase{"Empty", QString(), {}},
                      ChainCase{"LongNicksCut", kLong + u' ' + kLong, {kLongCut, kLongCut}}),
    [](const auto& info) { return std::string(info.param.name); });

// ---- The comparison of ISON answers -----------------------------------------------------

struct Poll {
  QString answer;
  QStringList status;  // lines written to Status
};

struct CompareCase {
  const char* name;
  QString watched;  // the "notify" setting
  bool whois;       // "not_whois"
  QList<Poll> polls;
  QByteArray sent;
};

class NotifyCompareTest : public ::testing::TestWithParam<CompareCase> {};

TEST_P(NotifyCompareTest, AnnouncesChanges) {
  const CompareCase& c = GetParam();
  IrcClientFixture f;
  f.settings.SetString(u"notify", c.watched, 2002);
  f.settings.SetDword(u"not_whois", c.whois ? 1 : 0);
  NotifyList list;
  list.Load(f.settings);
  QStringList expected;
  for (const Poll& poll : c.polls) {
    CompareNotifyAnswer(f.ctx, list, poll.answer);
    expected += poll.status;
    EXPECT_EQ(f.StatusLines(), expected)
        << "after the answer \"" << poll.answer.toStdString() << '"';
  }
  for (qsizetype i = 0; i < f.StatusLines().size(); ++i)
    EXPECT_EQ(f.StatusColour(i), f.ctx.Colour(LineStyle::Notify));
  EXPECT_EQ(f.Sent(), c.sent);
}

INSTANTIATE_TEST_SUITE_P(
    Answers, NotifyCompareTest,
    ::testing::Values(
        CompareCase{"ArrivalThenDeparture",
                    u"alice bob "_s,
                    false,
                    {{u"alice"_s, {u"* alice is on IRC"_s}},
                     {u"alice"_s, {}},
                     {QString(), {u"* alice has left IRC"_s}}},
                    ""},
        CompareCase{"ServersSpellingKept",
                    u"alice "_s,
                    false,
                    {{u"ALICE"_s, {u"* ALICE is on IRC"_s}},
                     {u"aLiCe"_s, {}},
                     {u"bob"_s, {u"* aLiCe has left IRC"_s}}},
                    ""},
        CompareCase{"InListOrder",
                    u"alice bob carol "_s,
                    false,
                    {{u"carol bob alice"_s,
                      {u"* alice is on IRC"_s, u"* bob is on IRC"_s, u"* carol is on IRC"_s}},
                     {u"bob"_s, {u"* alice has left IRC"_s, u"* carol has left IRC"_s}}},
                    ""},
        CompareCase{"LongNicksByTheirFirst63",
                    kLong + u' ',
                    false,
                    {{kLong.toUpper() + u"yz"_s, {u"* "_s + kLongCut.toUpper() + u" is on IRC"_s}}},
                    ""},
        CompareCase{"EmptyEntriesAreNobody",
                    u"alice  bob "_s,
                    false,
                    {{u"alice  bob"_s, {u"* alice is on IRC"_s, u"* bob is on IRC"_s}}},
                    ""},
        CompareCase{"WhoisOnArrival",
                    u"alice bob "_s,
                    true,
                    {{u"bob alice"_s, {u"* alice is on IRC"_s, u"* bob is on IRC"_s}},
                     {u"bob"_s, {u"* alice has left IRC"_s}}},
                    "whois alice\nwhois bob\n"},
        CompareCase{"NothingWatched", QString(), true, {{u"alice"_s, {}}}, ""}),
    [](const auto& info) { return std::string(info.param.name); });

// A reload (the options dialog saved) and the end of a connection forget who was on IRC,
// so the next answer announces them again.
TEST(NotifyList, ReloadAndConnectionEndAnnounceAgain) {
  IrcClientFixture f;
  f.settings.SetString(u"notify", u"alice ", 2002);
  NotifyList list;
  list.Load(f.settings);
  CompareNotifyAnswer(f.ctx, list, u"alice");
  list.Load(f.settings);
  CompareNotifyAnswer(f.ctx, list, u"alice");
  MarkNotifyOffline(list);
  CompareNotifyAnswer(f.ctx, list, u"alice");
  CompareNotifyAnswer(f.ctx, list, u"alice");
  EXPECT_EQ(f.StatusLines(), QStringList(3, u"* alice is on IRC"_s));
}

TEST(NotifyList, PollSendsTheListAsStored) {
  IrcClientFixture f;
  f.settings.SetString(u"notify", u"alice bob ", 2002);
  SendNotifyPoll(f.ctx);
  f.settings.SetString(u"notify", u"carol", 2002);
  SendNotifyPoll(f.ctx);
  EXPECT_EQ(f.Sent(), "ISON alice bob \nISON carol\n");
  EXPECT_EQ(f.StatusLines(), QStringList());
}

}  // namespace
