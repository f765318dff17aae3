// Which lines ask for the user's attention when the window is elsewhere.

#include "support/irc_client_fixture.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

TEST(Attention, HighlightsAndPrivateMessagesOnly) {
  const std::pair<QString, QStringList> cases[] = {  // server line, "tab|line" wanted
      {u":al!u@h PRIVMSG #room :hi all"_s, {}},
      {u":al!u@h PRIVMSG #room :hi bob"_s, {u"#room|<al> hi bob"_s}},
      {u":al!u@h PRIVMSG #room :\x01" "ACTION pokes bob\x01"_s, {u"#room|* al pokes bob"_s}},
      {u":al!u@h PRIVMSG me :psst"_s, {u"al|<al> psst"_s}},
      {u":al!u@h PRIVMSG me :\x01" "ACTION waves\x01"_s, {u"al|* al waves"_s}},
      {u":al!u@h NOTICE me :bob"_s, {}}};
  for (const auto& [line, expected] : cases) {
    IrcClientFixture f;
    f.ctx.session.currentNick = u"me"_s;
    f.ctx.tabs.OpenTab(u"#room"_s, TabKind::Channel);
    f.SetWordLists({}, u"bob "_s);
    QStringList wanted;
    QObject::connect(&f.ctx.tabs, &TabBar::attentionWanted, [&](int position, const QString& text) {
      wanted << f.ctx.tabs.At(position)->name + u'|' + text;
    });
    f.Receive(line);
    EXPECT_EQ(wanted, expected) << line.toStdString();
  }
}
