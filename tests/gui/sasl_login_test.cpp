// A TLS server with a pinned self-signed certificate and a SASL login, set up and used in
// the window alone: the Server dialog writes the login, Connect authenticates. And the
// TLS trust question on pocket screens.

#include "commands/command_ids.h"
#include "gui/main_window.h"
#include "gui/options_dialog.h"
#include "gui/server_dialog.h"
#include "gui/shell_window.h"
#include "gui/touch_targets_widget.h"
#include "net/sasl_accounts.h"
#include "net/server_list.h"
#include "net/session_control.h"
#include "settings/settings_defaults.h"
#include "support/file_bytes.h"
#include "support/ngircd_fixture.h"
#include "support/tls_scripted_server.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QFileInfo>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QScrollArea>
#include <QScrollBar>
#include <QTimer>
#include <gtest/gtest.h>

#include <deque>

using namespace Qt::StringLiterals;

namespace {

template <class W>
W* Named(QWidget* root, const QString& text) {
  for (W* w : root->findChildren<W*>())
    if (w->text() == text) return w;
  ADD_FAILURE() << "no " << text.toStdString();
  return nullptr;
}

class SaslLogin : public ::testing::Test {
 protected:
  SaslLogin() {
    InitialiseDefaults(settings);
    settings.SetDword(u"Options", 0);  // no splash, no identd
    settings.SetDword(u"DCC", 0);
    settings.SetString(u"nick", u"pocketfan", 120);
    settings.SetString(u"email", u"me@home", 240);
    settings.SetString(u"fullname", u"Pocket Fan", 500);
    window = std::make_unique<MainWindow>(settings);
    window->FinishStart(false);
    window->show();
    window->Shell().SetBeforeExecHook([this](QDialog* dialog) {
      titles << dialog->windowTitle();
      if (answers.empty()) return QTimer::singleShot(0, dialog, &QDialog::reject);
      auto answer = std::move(answers.front());
      answers.pop_front();
      QTimer::singleShot(0, dialog, [answer, dialog] {
        answer(dialog);
        if (dialog->isVisible()) dialog->reject();
      });
    });
  }
  // The Connection page of "Options" from the menu; `use` acts on it, then OK.
  void OnConnectionPage(const std::function<void(QWidget*)>& use) {
    answers.push_front([use](QDialog* dialog) {
      use(static_cast<OptionsDialog*>(dialog)->Page(0));
      Named<QPushButton>(dialog, u"OK"_s)->click();
    });
    window->RunCommand(kCmdOptions);
  }
  QStringList Status() const {
    QStringList lines;
    const ConversationTab* tab = window->Context().tabs.At(0);
    for (qsizetype i = 0; i < tab->lines->LineCount(); ++i) lines << tab->lines->Line(i).text;
    return lines;
  }

  QTemporaryDir home;
  SettingsStore settings{home.path()};
  std::unique_ptr<MainWindow> window;
  std::deque<std::function<void(QDialog*)>> answers;
  QStringList titles;
};

TEST_F(SaslLogin, ServerDialogToAuthenticatedSession) {
  NgircdServer certificate(true);  // only its self-signed certificate is used
  TlsScriptedServer server(certificate.CertPath(), certificate.KeyPath());
  ASSERT_NE(server.Port(), 0);
  const QString port = QString::number(server.Port()), sasl = SaslAccountsPath(settings);
  WriteBytes(home.path() + u"/tls_pins.txt"_s, "127.0.0.1\t" + certificate.CertificateFingerprint().toLatin1() + '\n');

  OnConnectionPage([&](QWidget* page) {
    answers.push_back([&](QDialog* d) {
      auto* dialog = static_cast<ServerDialog*>(d);
      EXPECT_EQ(dialog->SaslPasswordField()->echoMode(), QLineEdit::Password);
      dialog->NetworkField()->setText(u"Test"_s);
      dialog->ServerField()->setText(u"127.0.0.1"_s);
      dialog->PortsField()->setText(u'+' + port);
      dialog->AccountField()->setText(u"pocketfan"_s);
      dialog->SaslPasswordField()->setText(u"secret"_s);
      dialog->AllowPlainCheck()->click();
      dialog->DisconnectCheck()->click();
      Named<QPushButton>(d, u"OK"_s)->click();
    });
    Named<QPushButton>(page, u"Add"_s)->click();
    auto* networks = page->findChild<QComboBox*>();
    networks->setCurrentIndex(0);
    emit networks->activated(0);
  });
  EXPECT_EQ(ReadBytes(ServerListPath(settings)), "Test\t127.0.0.1\t+" + port.toLatin1() + "\t\r\n");
  EXPECT_EQ(ReadBytes(sasl), "127.0.0.1\tPLAIN\tpocketfan\tallow-plain,disconnect\tsecret\n");
  EXPECT_EQ(QFileInfo(sasl).permissions(), QFile::ReadOwner | QFile::WriteOwner | QFile::ReadUser | QFile::WriteUser);

  window->RunCommand(kCmdConnect);
  ASSERT_TRUE(server.WaitFor("user me home tolv :Pocket Fan\n", 10000)) << Status().join(u'\n').toStdString();
  server.Send(":irc.test CAP * LS :sasl=PLAIN multi-prefix\r\n:irc.test CAP pocketfan ACK :sasl multi-prefix\r\n"
              "AUTHENTICATE +\r\n:irc.test 900 pocketfan pocketfan!me@home pocketfan :You are now logged in as pocketfan\r\n"
              ":irc.test 903 pocketfan :SASL authentication successful\r\n");
  ASSERT_TRUE(server.WaitFor("CAP END\n"));
  server.Send(":irc.test 001 pocketfan :Welcome\r\n:irc.test 353 pocketfan = #t :@+pocketfan\r\n");
  ASSERT_TRUE(RunUntil([&] { return window->Context().session.currentNick == u"pocketfan"_s; }, 5000));
  EXPECT_EQ(server.Received(), "CAP LS 302\nnick pocketfan\nuser me home tolv :Pocket Fan\nCAP REQ :sasl multi-prefix\n"
                               "AUTHENTICATE PLAIN\nAUTHENTICATE cG9ja2V0ZmFuAHBvY2tldGZhbgBzZWNyZXQ=\nCAP END\n");
  EXPECT_EQ(Status().mid(Status().indexOf(u"* Connecting to 127.0.0.1 (%1)"_s.arg(port))).mid(1, 2),
            (QStringList{u"* Connected with TLS (TLSv1.3, TLS_AES_256_GCM_SHA384)"_s, u"* SASL: You are now logged in as pocketfan"_s}));
  EXPECT_EQ(titles, (QStringList{u"Settings"_s, u"Server"_s}));  // the pinned certificate asks nothing

  // Deleting the last entry of a host takes its login with it.
  OnConnectionPage([&](QWidget* page) {
    answers.push_back([](QDialog* d) { Named<QPushButton>(d, u"Yes"_s)->click(); });
    Named<QPushButton>(page, u"Delete"_s)->click();
  });
  EXPECT_EQ(ReadBytes(ServerListPath(settings)), "");
  EXPECT_EQ(ReadBytes(sasl), "");
}

// The question with its long fingerprint stays inside a pocket screen, buttons included;
// the Server dialog's fields scroll without being cut at the side.
TEST_F(SaslLogin, TrustQuestionAndServerDialogFitPocketScreens) {
  QDir().mkpath(QStringLiteral(TOLV_SCREENSHOT_DIR));
  QString fingerprint;
  for (int i = 0; i < 32; ++i) fingerprint += (i ? u":"_s : QString()) + u"A7"_s;
  for (const QSize size : {QSize(240, 320), QSize(480, 640)}) {
    window->resize(size);
    RunUntil([] { return false; }, 50);
    answers.push_back([size](QDialog* box) {
      RunUntil([] { return false; }, 50);
      box->grab().save(u"%1/trust_question_%2x%3.png"_s.arg(QStringLiteral(TOLV_SCREENSHOT_DIR)).arg(size.width()).arg(size.height()));
      EXPECT_LE(box->width(), size.width());
      EXPECT_LE(box->height(), size.height());
      QPushButton* yes = Named<QPushButton>(box, u"Yes"_s);
      EXPECT_TRUE(box->rect().contains(QRect(yes->mapTo(box, QPoint()), yes->size())));
      yes->click();
    });
    EXPECT_TRUE(window->Shell().AskYesNo(u"Trust this certificate for irc.example.net?"_s,
                                         u"It could not be verified: self-signed certificate. Subject: CN=irc.example.net. "
                                         u"SHA-256 fingerprint: "_s + fingerprint));
    ServerDialog server({u"Libera"_s, u"irc.libera.chat"_s, u"+6697"_s, {}}, false, window->Context(), window->Shell());
    server.SetSasl({u"pocketfan"_s, u"secret"_s, true, false});
    FitForTouch(&server, window->ScaleFactor());
    server.resize(size);
    server.show();
    auto* scroll = server.findChild<QScrollArea*>();
    scroll->verticalScrollBar()->setValue(scroll->verticalScrollBar()->maximum());
    RunUntil([] { return false; }, 50);
    EXPECT_LE(scroll->widget()->width(), scroll->viewport()->width());
    server.grab().save(u"%1/server_dialog_end_%2x%3.png"_s.arg(QStringLiteral(TOLV_SCREENSHOT_DIR)).arg(size.width()).arg(size.height()));
  }
}

}  // namespace
