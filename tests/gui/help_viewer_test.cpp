// Help / Contents where no browser opens the page (the offscreen platform has none): the
// page in the window's own viewer, sized for the screen, closed by its button.

#include "gui/help_viewer.h"
#include "gui/main_window.h"
#include "gui/touch_targets_widget.h"
#include "settings/settings_defaults.h"
#include "settings/settings_store.h"
#include "support/test_app.h"

#include <QDir>
#include <QFile>
#include <QPointer>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>
#include <QTextBrowser>
#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

struct ScreenCase {
  const char* name;
  QSize size;
  int factor;
};

class HelpViewerTest : public ::testing::TestWithParam<ScreenCase> {};

TEST_P(HelpViewerTest, ShowsThePageUntilClosed) {
  QTemporaryDir home;
  QDir().mkpath(home.filePath(u"help"_s));
  QFile::copy(QStringLiteral(TOLV_DATA_DIR "/help/help.html"), home.filePath(u"help/help.html"_s));
  SettingsStore settings(home.path());
  InitialiseDefaults(settings);
  settings.SetDword(u"Options", settings.GetDword(u"Options") & ~0x40);  // no splash
  MainWindow window(settings);
  window.resize(GetParam().size);
  window.show();
  window.FinishStart(false);
  ASSERT_EQ(window.ScaleFactor(), GetParam().factor);

  window.RunCommand(40005);
  window.RunCommand(40005);  // the second time brings the same viewer to the front
  const auto viewers = window.findChildren<HelpViewer*>();
  ASSERT_EQ(viewers.size(), 1);
  QPointer<HelpViewer> viewer = viewers.front();
  EXPECT_EQ(viewer->Browser()->documentTitle(), u"Tolv help"_s);
  EXPECT_EQ(viewer->size(), GetParam().size);
  auto* close = viewer->findChild<QPushButton*>();
  EXPECT_GE(close->height(), TouchHeight(GetParam().factor));
  QDir().mkpath(QStringLiteral(TOLV_SCREENSHOT_DIR));
  viewer->grab().save(QStringLiteral(TOLV_SCREENSHOT_DIR) + u"/help_viewer_"_s + QString::fromUtf8(GetParam().name) + u".png"_s);

  QTest::mouseClick(close, Qt::LeftButton);
  EXPECT_TRUE(RunUntil([&] { return viewer.isNull(); }, 2000));
}

INSTANTIATE_TEST_SUITE_P(Screens, HelpViewerTest,
                         ::testing::Values(ScreenCase{"240x320", {240, 320}, 1},
                                           ScreenCase{"480x640", {480, 640}, 2}),
                         [](const auto& info) { return std::string(info.param.name); });

}  // namespace
