// The DCC dialogs and a transfer's page: what "Send" needs before it can be pressed, the
// answer each button gives, the page's fields and buttons across a cancel, and the page's
// picture on the smallest and a middle-sized screen.

#include "dcc/dcc_engine.h"
#include "dcc/dcc_transfer.h"
#include "gui/dcc_dialogs.h"
#include "gui/dcc_progress_widget.h"
#include "gui/main_window.h"
#include "settings/settings_defaults.h"
#include "settings/settings_store.h"
#include "support/test_app.h"

#include <QComboBox>
#include <QDir>
#include <QFile>
#include <QLineEdit>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>
#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

TEST(DccSendDialog, SendNeedsANickAndAFile) {
  DccSendDialog dialog(u"bob"_s);
  QStringList packets;
  for (int i = 0; i < dialog.PacketList()->count(); ++i) packets << dialog.PacketList()->itemText(i);
  EXPECT_EQ(packets, (QStringList{u"512"_s, u"1024"_s, u"2048"_s, u"4096"_s, u"8192"_s}));
  EXPECT_EQ(dialog.PacketList()->currentText(), u"4096"_s);
  EXPECT_FALSE(dialog.SendButton()->isEnabled());
  QTest::keyClicks(dialog.FileField(), u"/home/me/my file.txt"_s);
  EXPECT_TRUE(dialog.SendButton()->isEnabled());
  dialog.NickField()->setText(u"  "_s);
  EXPECT_FALSE(dialog.SendButton()->isEnabled());
  dialog.NickField()->setText(u" carol "_s);
  dialog.PacketList()->setCurrentIndex(4);
  const DccSendChoice choice = dialog.Choice();
  EXPECT_EQ(choice.nick, u"carol"_s);
  EXPECT_EQ(choice.packetSize, 8192);
  EXPECT_EQ(choice.file, u"/home/me/my file.txt"_s);
  EXPECT_LE(dialog.minimumSizeHint().width(), 240);  // fits the smallest screen
}

TEST(DccQuestionDialog, AButtonAnswersItsChoiceAndKeepsTheDestination) {
  const QString destination = u"/home/me/downloads/a rather long file name from a peer.tar.gz"_s;
  DccQuestionDialog dialog(u"Tolv DCC Receiving"_s, u"User bob is attempting to send you a file"_s,
                           {{u"Accept"_s, DccChoice::Accept}, {u"Ignore"_s, DccChoice::Ignore},
                            {u"Cancel"_s, DccChoice::Cancel}},
                           &destination);
  EXPECT_LE(dialog.minimumSizeHint().width(), 240);
  dialog.Button(DccChoice::Ignore)->click();
  EXPECT_EQ(dialog.result(), QDialog::Accepted);
  EXPECT_EQ(dialog.Choice(), DccChoice::Ignore);
  EXPECT_EQ(dialog.Destination(), destination);
}

// The page of a file we offer, while it waits for the peer and after Cancel.
TEST(DccProgressPage, ShowsTheRecordAndCancels) {
  TestApp();
  QTemporaryDir home;
  SettingsStore settings{home.path()};
  InitialiseDefaults(settings);
  settings.SetDword(u"Options", settings.GetDword(u"Options") & ~0x40);
  settings.SetString(u"LocalHost", u"127.0.0.1"_s, 30);
  MainWindow window(settings);
  window.FinishStart(false);
  ClientContext& ctx = window.Context();
  ctx.session.currentNick = u"me"_s;
  QFile file(home.path() + u"/holiday pictures 2008.zip"_s);
  ASSERT_TRUE(file.open(QIODevice::WriteOnly) && file.resize(1536));
  file.close();
  ctx.dccEngine.OfferFile(u"bob"_s, file.fileName(), 4096);
  const TabId tab = ctx.tabs.At(ctx.tabs.Count() - 1)->id;
  DccProgressWidget* page = window.TransferPageOf(tab);
  ASSERT_NE(page, nullptr);
  window.show();
  const std::pair<const char*, QString> fields[] = {
      {"To:", u"bob"_s}, {"File:", u"holiday_pictures_2008.zip"_s}, {"Size:", u"1.50 KB"_s},
      {"Folder:", home.path() + u'/'}, {"Sent:", u"0 B"_s}, {"Rate:", QString()}};
  for (const auto& [label, value] : fields) EXPECT_EQ(page->Value(QString::fromLatin1(label)), value) << label;
  EXPECT_TRUE(page->CancelButton()->isEnabled());
  QDir().mkpath(QStringLiteral(TOLV_SCREENSHOT_DIR));
  for (QSize screen : {QSize(240, 320), QSize(480, 640)}) {
    window.resize(screen);
    QCoreApplication::processEvents();
    EXPECT_TRUE(window.grab().save(
        QStringLiteral(TOLV_SCREENSHOT_DIR "/dcc_progress_%1x%2.png").arg(screen.width()).arg(screen.height())));
  }
  page->CancelButton()->click();
  EXPECT_TRUE(RunUntil([&] { return page->Value(u"Status:"_s) == u"Operation cancelled!"_s; }, 2000));
  EXPECT_FALSE(page->CancelButton()->isEnabled());
  page->CloseButton()->click();
  EXPECT_TRUE(RunUntil([&] { return ctx.tabs.Count() == 1; }, 2000));
}

}  // namespace
