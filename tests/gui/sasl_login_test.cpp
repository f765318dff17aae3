// A TLS server with a self-signed certificate and a SASL login, set up and used in the window
// alone on a pocket screen: the Server dialog writes the login, the trust question (which
// must fit the screen) pins the certificate, and the session authenticates.

#include "commands/command_ids.h"
#include "gui/options_dialog.h"
#include "gui/server_dialog.h"
#include "gui/shell_window.h"
#include "net/server_list.h"
#include "support/file_bytes.h"
#include "support/tls_scripted_server.h"
#include "support/window_client.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QFileInfo>
#include <QLineEdit>
#include <QPushButton>
#include <QTimer>
#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

QPushButton* Button(QWidget* root, const QString& text) {
  for (QPushButton* button : root->findChildren<QPushButton*>())
    if (button->text() == text) return button;
  return nullptr;
}

class SaslLogin : public ::testing::Test, protected WindowClient {};

TEST_F(SaslLogin, ServerDialogToAuthenticatedSession) {
  QDir().mkpath(QStringLiteral(TOLV_SCREENSHOT_DIR));
  NgircdServer certificate(true);  // only its self-signed certificate is used
  TlsScriptedServer server(certificate.CertPath(), certificate.KeyPath());
  ::close(std::exchange(window->Context().session.serverSocket, -1));  // connected for real below
  settings.SetDword(u"Options", 0), settings.SetDword(u"DCC", 0);       // no identd or address look-up
  settings.SetString(u"nick", u"pocketfan", 120), settings.SetString(u"email", u"me@home", 240);
  QList<std::function<void(QDialog*)>> answers;
  QStringList titles;
  window->Shell().SetBeforeExecHook([&](QDialog* dialog) {
    titles << dialog->windowTitle();
    QTimer::singleShot(0, dialog, [&answers, dialog] {
      if (!answers.isEmpty()) answers.takeFirst()(dialog);
      if (dialog->isVisible()) dialog->reject();
    });
  });
  window->show();
  const QString port = QString::number(server.Port()), sasl = SaslAccountsPath(settings);
  window->resize(240, 320);
  Settle();  // the window's scale follows its new size
  answers = {[&](QDialog* options) {  // Add, then choose the new server
               QWidget* page = static_cast<OptionsDialog*>(options)->Page(0);
               Button(page, u"Add"_s)->click();
               emit page->findChild<QComboBox*>()->activated(0);
               Button(options, u"OK"_s)->click();
             },
             [&](QDialog* d) {
               auto* dialog = static_cast<ServerDialog*>(d);
               EXPECT_EQ(dialog->SaslPasswordField()->echoMode(), QLineEdit::Password);
               for (auto [field, text] : {std::pair{dialog->NetworkField(), u"Test"_s}, {dialog->ServerField(), u"127.0.0.1"_s},
                                          {dialog->PortsField(), u'+' + port}, {dialog->AccountField(), u"pocketfan"_s},
                                          {dialog->SaslPasswordField(), u"sec\tret"_s}})
                 field->setText(text);
               dialog->AllowPlainCheck()->click(), dialog->DisconnectCheck()->click();
               Button(d, u"OK"_s)->click();
             }};
  window->RunCommand(kCmdOptions);
  EXPECT_EQ(ReadBytes(ServerListPath(settings)), "Test\t127.0.0.1\t+" + port.toLatin1() + "\t\r\n");
  EXPECT_EQ(ReadBytes(sasl), "127.0.0.1\tPLAIN\tpocketfan\tallow-plain,disconnect\tsec\tret\n");  // a TAB may end a password
  EXPECT_EQ(QFileInfo(sasl).permissions(), QFile::ReadOwner | QFile::WriteOwner | QFile::ReadUser | QFile::WriteUser);

  answers = {[](QDialog* box) {
    box->grab().save(QStringLiteral(TOLV_SCREENSHOT_DIR "/trust_question_240x320.png"));
    QPushButton* yes = Button(box, u"Yes"_s);
    EXPECT_TRUE(QRect(0, 0, 240, 320).contains(QRect(yes->mapTo(box, QPoint()), yes->size()))) << box->width();
    yes->click();
  }};
  window->RunCommand(kCmdConnect);
  server.Send(":irc.test CAP * LS * :multi-prefix\r\n:irc.test CAP * LS :sasl=EXTERNAL,PLAIN\r\n:irc.test CAP pocketfan ACK :sasl multi-prefix\r\n"
              "AUTHENTICATE +\r\n:irc.test 900 pocketfan p!me@home pocketfan :You are now logged in as pocketfan\r\n"
              ":irc.test 903 pocketfan :OK\r\n:irc.test 001 pocketfan :Welcome\r\n");
  ASSERT_TRUE(server.WaitFor("CAP END\n")) << server.Output().toStdString() << titles.join(u' ').toStdString();
  const QByteArray& out = server.Output();
  EXPECT_EQ(out.mid(out.indexOf("CAP LS 302")), "CAP LS 302\nnick pocketfan\nuser me home tolv :Kelvane Tolv v1.4\nCAP REQ :sasl multi-prefix\n"
                                                 "AUTHENTICATE PLAIN\nAUTHENTICATE cG9ja2V0ZmFuAHBvY2tldGZhbgBzZWMJcmV0\nCAP END\n");
  ASSERT_TRUE(RunUntil([&] { return window->Context().session.currentNick == u"pocketfan"_s; }));
  const LineStore& status = *window->Context().tabs.At(0)->lines;
  EXPECT_EQ(status.Line(status.LineCount() - 3).text, u"* Connected with TLS (TLSv1.3, TLS_AES_256_GCM_SHA384)"_s);
  EXPECT_EQ(status.Line(status.LineCount() - 2).text, u"* SASL: You are now logged in as pocketfan"_s);
  EXPECT_EQ(titles.last(), u"Trust this certificate for 127.0.0.1?"_s);
  EXPECT_EQ(ReadBytes(home.path() + u"/tls_pins.txt"_s), "127.0.0.1\t" + certificate.CertificateFingerprint().toLatin1() + '\n');

  answers = {[](QDialog* options) { Button(static_cast<OptionsDialog*>(options)->Page(0), u"Delete"_s)->click(); },
             [](QDialog* question) { Button(question, u"Yes"_s)->click(); }};
  window->RunCommand(kCmdOptions);
  EXPECT_EQ(ReadBytes(sasl), "");  // the last entry of the host took its login with it
}

}  // namespace
