// The text view: today's formatting codes drawn, and a tap on a web address asks for it to
// be opened while a drag across it only selects.

#include "gui/color_text_widget.h"
#include "settings/settings_defaults.h"
#include "settings/settings_store.h"
#include "views/output_path.h"
#include "views/tab_bar.h"

#include <QDir>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

TEST(TextView, ATapOpensALinkADragDoesNot) {
  QTemporaryDir home;
  SettingsStore settings(home.path());
  InitialiseDefaults(settings);
  TabBar bar(settings);
  bar.OpenTab(u"#chan", TabKind::Channel);
  const QString before = u"see "_s;
  PrintToTab(bar, 0, before + u"https://example.org/x_(y) and more"_s, 0);
  PrintToTab(bar, 0, u"\x1ditalic\x1d \x1estruck\x1e \x11mono\x11 \x04" u"ff8000orange \x04" u"ffffff,0000ffon blue"_s, 0);
  ColorTextWidget view(bar, bar.At(0)->id, settings);
  view.SetRepaintInterval(0);
  view.resize(320, 120);
  view.show();
  ASSERT_TRUE(QTest::qWaitForWindowExposed(&view));
  QSignalSpy opened(&view, &ColorTextWidget::linkActivated);
  const QPoint onLink(view.LeftMargin() + view.Width(before, 0) + view.Width(u"https://ex"_s, 0), view.RowHeight() / 2);
  QTest::mouseClick(view.viewport(), Qt::LeftButton, {}, onLink);
  ASSERT_EQ(opened.size(), 1);
  EXPECT_EQ(opened[0][0].toString(), u"https://example.org/x_(y)"_s);
  QTest::mouseClick(view.viewport(), Qt::LeftButton, {}, QPoint(view.LeftMargin() + 1, view.RowHeight() / 2));
  QTest::mousePress(view.viewport(), Qt::LeftButton, {}, onLink);
  QTest::mouseMove(view.viewport(), onLink + QPoint(60, 0));
  QTest::mouseRelease(view.viewport(), Qt::LeftButton, {}, onLink + QPoint(60, 0));
  EXPECT_EQ(opened.size(), 1);  // a tap beside it and a drag across it open nothing
  QDir().mkpath(QStringLiteral(TOLV_SCREENSHOT_DIR));
  view.grab().save(QStringLiteral(TOLV_SCREENSHOT_DIR "/text_view_codes_and_link.png"));
}

}  // namespace
