// Help / Contents where no browser opens the page (the offscreen platform has none).

#include "gui/help_viewer.h"
#include "gui/main_window.h"
#include "gui/touch_targets_widget.h"
#include "settings/settings_defaults.h"
#include "settings/settings_store.h"
#include "support/test_app.h"

#include <QDir>
#include <QPointer>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>
#include <QTextBrowser>
#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

TEST(HelpViewer, ShowsThePageOverTheWindowUntilClosed) {
  for (const QSize size : {QSize(240, 320), QSize(480, 640)}) {
    QTemporaryDir home;
    QDir().mkpath(home.filePath(u"help"_s));
    QFile::copy(QStringLiteral(TOLV_DATA_DIR "/help/help.html"), home.filePath(u"help/help.html"_s));
    SettingsStore settings(home.path());
    InitialiseDefaults(settings);
    settings.SetDword(u"Options", settings.GetDword(u"Options") & ~0x40);  // no splash
    MainWindow window(settings);
    window.resize(size);
    window.FinishStart(false);
    window.RunCommand(40005);
    window.RunCommand(40005);  // the second time brings the same viewer to the front
    ASSERT_EQ(window.findChildren<HelpViewer*>().size(), 1);
    QPointer<HelpViewer> viewer = window.findChild<HelpViewer*>();
    EXPECT_EQ(viewer->Browser()->documentTitle(), u"Tolv help"_s);
    EXPECT_EQ(viewer->size(), size);
    auto* close = viewer->findChild<QPushButton*>();
    EXPECT_EQ(close->height(), TouchHeight(window.ScaleFactor()));
    QDir().mkpath(QStringLiteral(TOLV_SCREENSHOT_DIR));
    viewer->grab().save(u"%1/help_viewer_%2x%3.png"_s.arg(QStringLiteral(TOLV_SCREENSHOT_DIR)).arg(size.width()).arg(size.height()));
    QTest::mouseClick(close, Qt::LeftButton);
    EXPECT_TRUE(RunUntil([&] { return viewer.isNull(); }, 2000));
  }
}
