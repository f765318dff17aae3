// Numeric replies from a registered client's point of view: the lines shown where and in
// which style, and the lines sent for the nick fallback.

#include "settings/settings_flags.h"
#include "views/time_format.h"

#include "support/styled_lines.h"

#include <gtest/gtest.h>

#include <limits>

using namespace Qt::StringLiterals;

namespace {

QString Date(qint64 seconds) { return FormatServerTime(seconds); }

struct ShownCase {
  const char* name;
  QStringList lines;
  QStringList shown = {};
  QStringList tabs = {};  // channel tabs open beforehand
  quint32 options = 0;
  QString actionChannel = {};
  bool asked = false;  // the user typed /userhost and /ison
  QStringList sounds = {};
  QStringList nicks = {};  // of the first tab afterwards
};

class NumericShownTest : public ::testing::TestWithParam<ShownCase> {};

TEST_P(NumericShownTest, ShowsExactLines) {
  const ShownCase& c = GetParam();
  StyledClient f;
  f.SetOptions(c.options);
  f.settings.SetString(u"invite", u"inv.wav", 250, SettingsKey::Sounds);
  f.settings.SetString(u"notify", u"alice ", 2002);
  f.ctx.notify.Load(f.settings);
  f.ctx.actionChannel = c.actionChannel;
  f.ctx.userhostRequested = f.ctx.isonRequested = c.asked;
  for (const QString& channel : c.tabs) f.ctx.tabs.OpenTab(channel, TabKind::Channel);
  for (const QString& line : c.lines) f.Receive(line);
  EXPECT_EQ(f.Shown(), c.shown);
  EXPECT_EQ(f.SoundEvents(), c.sounds);
  EXPECT_EQ(f.Sent(), QByteArray());
  QStringList nicks;
  for (int i = 0; !c.tabs.isEmpty() && i < f.ctx.tabs.ChannelNickList(c.tabs[0])->Count(); ++i)
    nicks << f.ctx.tabs.ChannelNickList(c.tabs[0])->At(i).shown;
  EXPECT_EQ(nicks, c.nicks);
  EXPECT_FALSE(f.ctx.userhostRequested || f.ctx.isonRequested);
}

const QString kWhen = Date(1200000000);
const QString kMotd[] = {u":irc.test 375 me :- MotD -"_s, u":irc.test 372 me :- hi"_s, u":irc.test 376 me :End"_s};

INSTANTIATE_TEST_SUITE_P(
    Replies, NumericShownTest,
    ::testing::Values(
        ShownCase{.name = "Away", .lines = {u":irc.test 301 me alice :gone fishing"_s, u":irc.test 301 me alice"_s},
                  .shown = {u"Status|alice is away: gone fishing|Normal"_s}},
        ShownCase{.name = "Whois",
                  .lines = {u":irc.test 311 me al ~a host * :Al A"_s, u":irc.test 311 me al ~a"_s, u":irc.test 315 me alone"_s},
                  .shown = {u"Status|al ~a@host * :Al A|Whois"_s, u"Status|al ~a|Whois"_s, u"Status|alone|Whois"_s}},
        ShownCase{.name = "ChannelCreated",
                  .lines = {u":irc.test 329 me #room 1200000000"_s, u":irc.test 329 me #room 99999999999999999999"_s,
                            u":irc.test 329 me #room abc"_s, u":irc.test 329 me #room"_s},
                  .shown = {u"Status|#room created on "_s + kWhen + u"|Normal"_s,
                            u"Status|#room created on "_s + Date(std::numeric_limits<qint64>::max()) + u"|Normal"_s},
                  .tabs = {u"#room"_s}},
        ShownCase{.name = "TopicInItsTabElseOnStatus",
                  .lines = {u":irc.test 331 me #room :No topic is set"_s, u":irc.test 332 me #ROOM :hello there"_s,
                            u":irc.test 332 me #room hello"_s, u":irc.test 333 me #room alice 1200000000"_s,
                            u":irc.test 333 me #room alice soon"_s, u":irc.test 331 me #gone :None"_s},
                  .shown = {u"Status|#gone :None|Topic"_s, u"#room|No topic is set|Topic"_s,
                            u"#room|Topic is 'hello there'|Topic"_s, u"#room|Set by alice on "_s + kWhen + u"|Topic"_s},
                  .tabs = {u"#room"_s}},
        ShownCase{.name = "Inviting", .lines = {u":irc.test 341 me bob #room"_s, u":irc.test 341 me bob"_s},
                  .shown = {u"Status|bob has been invited to  #room|Normal"_s}, .sounds = {u"inv"_s}},
        ShownCase{.name = "BanListNobodyAskedFor",
                  .lines = {u":irc.test 367 me #x *!*@one al 1200000000"_s, u":irc.test 367 me #X *!*@two bob"_s,
                            u":irc.test 367 me #x *!*@three"_s, u":irc.test 368 me #x :End of ban list"_s},
                  .shown = {u"Status|#x *!*@one set by al ("_s + kWhen + u")|Normal"_s,
                            u"Status|#X *!*@two set by bob|Normal"_s, u"Status|#x :End of ban list|Normal"_s},
                  .actionChannel = u"#other"_s},
        ShownCase{.name = "MotdAndOthersRaw",
                  .lines = {kMotd[0], kMotd[1], kMotd[2], u":irc.test 005 me A=# :are supported"_s,
                            u":irc.test 433 me other :Nickname is already in use"_s},
                  .shown = {u"Status|- MotD -|Normal"_s, u"Status|- hi|Normal"_s, u"Status|End|Normal"_s,
                            u"Status|A=# :are supported|Normal"_s, u"Status|other :Nickname is already in use|Normal"_s}},
        ShownCase{.name = "MotdSkippedButNoMotdShown", .lines = {kMotd[0], kMotd[2], u":irc.test 422 me :No MOTD"_s},
                  .shown = {u"Status|No MOTD|Normal"_s}, .options = kOptSkipMotd},
        ShownCase{.name = "UserhostAndIsonAsked",
                  .lines = {u":irc.test 302 me :alice=+~a@192.0.2.7"_s, u":irc.test 303 me :alice bob"_s},
                  .shown = {u"Status|userhost: alice=+~a@192.0.2.7|Normal"_s, u"Status|ison: alice bob|Normal"_s},
                  .asked = true},
        // Only the channel just joined takes the names, until the end of its list.
        ShownCase{.name = "NamesFillTheJustJoinedChannel",
                  .lines = {u":irc.test 353 me = #room :@al +bob  cy"_s, u":irc.test 353 me = #x :a"_s,
                            u":irc.test 366 me #x :End"_s, u":irc.test 353 me = #room a"_s,
                            u":irc.test 366 me #room :End"_s, u":irc.test 353 me = #room :late"_s},
                  .shown = {u"Status|= #room :@al +bob  cy|Normal"_s, u"Status|= #x :a|Normal"_s, u"Status|#x :End|Normal"_s,
                            u"Status|= #room a|Normal"_s, u"Status|#room :End|Normal"_s, u"Status|= #room :late|Normal"_s},
                  .tabs = {u"#room"_s}, .actionChannel = u"#ROOM"_s, .nicks = {u"@al"_s, u"+bob"_s, u"cy"_s}},
        ShownCase{.name = "NamesWithNothingJoined", .lines = {u":irc.test 353 me = #room :a"_s},
                  .shown = {u"Status|= #room :a|Normal"_s}, .tabs = {u"#room"_s}},
        // An ISON nobody typed is the notify poll's answer.
        ShownCase{.name = "IsonUnaskedIsTheNotifyAnswer",
                  .lines = {u":irc.test 303 me :Alice"_s, u":irc.test 303 me :"_s, u":irc.test 302 me :me=+~me@"_s},
                  .shown = {u"Status|* Alice is on IRC|Notify"_s, u"Status|* Alice has left IRC|Notify"_s}}),
    [](const auto& info) { return std::string(info.param.name); });

// A refused nick before registration: the alternick first, then the user is asked; Cancel
// ends the connection as the user's own quit.
TEST(NickFallback, TriesAlternickThenAsks) {
  const QString inUse = u":irc.test 433 * me :in use"_s, altInUse = u":irc.test 433 * me2 :in use"_s;
  const struct {
    QString alternick;
    QList<std::optional<QString>> answers;  // nullopt: Cancel
    QStringList lines;
    QByteArray sent;
    int prompts;
    QString requestedNick;
    bool connected = true;
  } cases[] = {
      {u"me2"_s, {}, {u":irc.test 432 * me :Erroneous"_s}, "NICK me2\n", 0, u"me2"_s},
      {u"me2"_s, {u"me3"_s}, {inUse, altInUse}, "NICK me2\nNICK me3\n", 1, u"me3"_s},
      {u"ME"_s, {u"other"_s}, {inUse}, "NICK other\n", 1, u"other"_s},
      {u"me2"_s, {u"me3"_s, std::nullopt}, {inUse, altInUse, u":irc.test 433 * me3 :in use"_s, altInUse},
       "NICK me2\nNICK me3\nNICK me2\n", 2, u"me2"_s, false},
  };
  for (const auto& c : cases) {
    StyledClient f;
    f.ctx.session.currentNick.clear();
    f.ctx.session.requestedNick = u"me"_s;
    f.settings.SetString(u"alternick", c.alternick, 60);
    f.shell.textAnswers = c.answers;
    for (const QString& line : c.lines) f.Receive(line);
    EXPECT_EQ(f.Sent(), c.sent);
    EXPECT_EQ(f.shell.prompts, QList<FakeShell::Message>(c.prompts, {u"Nickname already in use"_s, u"Enter a new nick:"_s}));
    EXPECT_EQ(f.ctx.session.requestedNick, c.requestedNick);
    EXPECT_TRUE(f.ctx.session.connected == c.connected && f.ctx.session.userQuit != c.connected) << c.sent.constData();
    EXPECT_EQ(f.ctx.session.currentNick, QString());
    EXPECT_EQ(f.StatusLines().size(), c.lines.size()) << "each refusal is shown raw";
  }
}

}  // namespace
