// Which lines ask for the user's attention when the window is elsewhere.

#include "support/irc_client_fixture.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

struct AttentionCase {
  const char* name;
  QString line;
  QStringList wanted;  // "tab|line"
};

class Attention : public ::testing::TestWithParam<AttentionCase> {};

TEST_P(Attention, HighlightsAndPrivateMessagesOnly) {
  IrcClientFixture f;
  f.ctx.session.currentNick = u"me"_s;
  f.ctx.tabs.OpenTab(u"#room"_s, TabKind::Channel);
  f.SetWordLists({}, u"bob "_s);
  QStringList wanted;
  QObject::connect(&f.ctx.tabs, &TabBar::attentionWanted, [&](int position, const QString& line) {
    wanted << f.ctx.tabs.At(position)->name + u'|' + line;
  });
  f.Receive(GetParam().line);
  EXPECT_EQ(wanted, GetParam().wanted);
}

INSTANTIATE_TEST_SUITE_P(
    Lines, Attention,
    ::testing::Values(
        AttentionCase{"ChannelLine", u":al!u@h PRIVMSG #room :hi all"_s, {}},
        AttentionCase{"ChannelHighlight", u":al!u@h PRIVMSG #room :hi bob"_s, {u"#room|<al> hi bob"_s}},
        AttentionCase{"ChannelActionHighlight", u":al!u@h PRIVMSG #room :\x01" "ACTION pokes bob\x01"_s,
                      {u"#room|* al pokes bob"_s}},
        AttentionCase{"PrivateMessage", u":al!u@h PRIVMSG me :psst"_s, {u"al|<al> psst"_s}},
        AttentionCase{"PrivateAction", u":al!u@h PRIVMSG me :\x01" "ACTION waves\x01"_s, {u"al|* al waves"_s}},
        AttentionCase{"Notice", u":al!u@h NOTICE me :bob"_s, {}}),
    [](const auto& info) { return std::string(info.param.name); });

}  // namespace
