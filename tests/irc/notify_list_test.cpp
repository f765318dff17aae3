// The notify list: who the ISON answers say has come or gone, in the list's order and the
// server's spelling (nicks cut to 63 units), and the WHOIS sent on arrival when asked for.

#include "irc/notify_list.h"

#include "support/styled_lines.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

TEST(NotifyList, AnnouncesChangesBetweenAnswers) {
  const QString longNick(70, u'x');
  const struct {
    QString watched;  // the "notify" setting
    QStringList answers;
    QStringList shown;
    QByteArray whoisSent = {};  // with "not_whois" on
  } cases[] = {
      {u"alice bob "_s, {u"ALICE"_s, u"aLiCe"_s, QString()}, {u"* ALICE is on IRC"_s, u"* aLiCe has left IRC"_s}},
      {u"alice bob carol"_s, {u"carol bob alice"_s, u"bob"_s},
       {u"* alice is on IRC"_s, u"* bob is on IRC"_s, u"* carol is on IRC"_s, u"* alice has left IRC"_s,
        u"* carol has left IRC"_s}},
      {u" alice  bob "_s, {u"alice  bob"_s}, {u"* alice is on IRC"_s, u"* bob is on IRC"_s}},
      {longNick + u' ', {longNick.toUpper() + u"yz"_s}, {u"* "_s + QString(kNotifyNickUnits, u'X') + u" is on IRC"_s}},
      {u"alice bob "_s, {u"bob alice"_s, u"bob"_s},
       {u"* alice is on IRC"_s, u"* bob is on IRC"_s, u"* alice has left IRC"_s}, "whois alice\nwhois bob\n"},
      {QString(), {u"alice"_s}, {}, ""},
  };
  for (const auto& c : cases) {
    StyledClient f;
    f.settings.SetString(u"notify", c.watched, 2002);
    f.settings.SetDword(u"not_whois", c.whoisSent.isNull() ? 0 : 1);
    f.ctx.notify.Load(f.settings);
    for (const QString& answer : c.answers) CompareNotifyAnswer(f.ctx, f.ctx.notify, answer);
    SendNotifyPoll(f.ctx);  // the poll asks for the list as stored
    EXPECT_EQ(f.StatusLines(), c.shown) << c.watched.toStdString();
    EXPECT_EQ(f.Sent(), c.whoisSent + "ISON " + c.watched.toUtf8() + '\n');
  }
}

}  // namespace
