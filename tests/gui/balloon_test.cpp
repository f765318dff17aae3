// The balloon over the tab strip, the strip's own menu, and the two dialogs that edit
// "TabSets".

#include "gui/balloon_widget.h"
#include "gui/main_window.h"
#include "gui/tab_settings_dialog.h"
#include "gui/tab_strip_widget.h"
#include "settings/settings_store.h"
#include "views/output_path.h"
#include "views/tab_bar.h"
#include "support/test_app.h"
#include "support/window_client.h"

#include <QApplication>
#include <QCheckBox>
#include <QDir>
#include <QFile>
#include <QMenu>
#include <QPushButton>
#include <QTest>
#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

constexpr QSize kScreens[] = {{240, 320}, {320, 240}, {480, 640}};

class BalloonTest : public ::testing::Test, protected WindowClient {
 protected:
  BalloonTest() {
    window->show();
    for (const QString& name : {u"#tolv"_s, u"#other"_s, u"bob"_s}) tabs().OpenTab(name, name[0] == u'#' ? TabKind::Channel : TabKind::Chat);
    Settle();
  }
  TabBar& tabs() { return window->Context().tabs; }
  TabStripWidget* strip() { return window->Strip(); }
  BalloonWidget* balloon() { return strip()->Balloon(); }
  void Settle() { RunUntil([] { return false; }, 50); }
  QPoint TabCentre(int position) { return strip()->tabRect(position).center(); }
  QString TabSetsInFile() {
    QFile file(settings.FilePath());
    if (!file.open(QIODevice::ReadOnly)) return {};
    const QString text = QString::fromUtf8(file.readAll());
    const qsizetype at = text.indexOf(u"\"TabSets\"=dword:"_s);
    return at < 0 ? QString() : text.mid(at + 16, 8);
  }
  void Screenshot(QWidget* widget, const QString& name, QSize screen) {
    QDir().mkpath(QStringLiteral(TOLV_SCREENSHOT_DIR));
    widget->grab().save(u"%1/%2_%3x%4.png"_s.arg(QStringLiteral(TOLV_SCREENSHOT_DIR), name).arg(screen.width()).arg(screen.height()));
  }
  // Presses `keys` one at a time on whichever menu pops up, noting each menu's items.
  void DriveMenus(QStringList& seen, QList<Qt::Key> keys) {
    auto* poll = new QTimer(window.get());
    QObject::connect(poll, &QTimer::timeout, poll, [poll, &seen, keys, menus = QList<QMenu*>()]() mutable {
      auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
      if (!menu || keys.isEmpty()) return;
      if (!menus.contains(menu)) {
        menus << menu;
        for (QAction* action : menu->actions()) seen << u"%1=%2"_s.arg(action->text()).arg(action->data().toInt());
      }
      QTest::keyClick(menu, keys.takeFirst());
      if (keys.isEmpty()) poll->deleteLater();
    });
    poll->start(10);
  }
};

// Where it stands and what it shows, at each screen size; a later line in another back
// tab takes its place and starts the ten seconds again.
TEST_F(BalloonTest, ShowsTheLatestBackLineAndStartsItsTimeAgain) {
  tabs().ActivateTab(0);
  for (const QSize screen : kScreens) {
    SCOPED_TRACE(screen.width());
    window->resize(screen);
    Settle();
    const int factor = window->ScaleFactor();
    PrintToNamedTab(tabs(), u"#tolv", TabKind::Channel, u"<alice> \x02" u"bold\x02 and \x03" u"4,12red\x03 words"_s, 0x008000);
    ASSERT_TRUE(balloon());
    EXPECT_EQ(balloon()->objectName(), u"TolvBaloon"_s);
    EXPECT_EQ(balloon()->Title(), u"\x02#tolv\x02"_s);
    EXPECT_EQ(balloon()->Colour(), 0x008000u);
    EXPECT_EQ(balloon()->geometry().topLeft(), strip()->mapTo(window.get(), QPoint(10, 20) * factor));
    EXPECT_EQ(balloon()->width(), strip()->width() - 20 * factor);
    Screenshot(window.get(), u"balloon"_s, screen);
  }
  EXPECT_EQ(strip()->BalloonTimer().interval(), 10000);
  const int first = strip()->BalloonTimer().remainingTime();
  ASSERT_TRUE(RunUntil([&] { return strip()->BalloonTimer().remainingTime() < first - 20; }, 2000));
  const int shortHeight = balloon()->height();
  PrintToNamedTab(tabs(), u"bob", TabKind::Chat, QString(300, u'w'), 0);
  ASSERT_TRUE(balloon());
  EXPECT_EQ(balloon()->Title(), u"\x02" u"bob\x02"_s);
  EXPECT_EQ(balloon()->Body(), QString(300, u'w'));
  EXPECT_GT(balloon()->height(), shortHeight);  // the longer line wraps onto more rows
  EXPECT_GT(strip()->BalloonTimer().remainingTime(), first - 20);
  EXPECT_EQ(window->findChildren<BalloonWidget*>().size(), 1);
  // Ten seconds, made short here: the balloon goes on its own.
  strip()->BalloonTimer().setInterval(1);
  PrintToNamedTab(tabs(), u"#other", TabKind::Channel, u"soon gone"_s, 0);
  EXPECT_TRUE(RunUntil([&] { return !balloon(); }, 2000));
}

// The kind's switch off: the label takes the colour, no balloon comes. The tab in front
// never has one.
TEST_F(BalloonTest, ComesOnlyForABackTabWhoseKindHasItSwitchedOn) {
  tabs().ActivateTab(3);
  settings.SetDword(u"TabSets", 0x05510FFF);
  PrintToNamedTab(tabs(), u"#tolv", TabKind::Channel, u"quiet"_s, 0x0000ff);
  PrintToNamedTab(tabs(), u"bob", TabKind::Chat, u"in front"_s, 0x0000ff);
  EXPECT_FALSE(balloon());
  EXPECT_EQ(strip()->tabTextColor(1), QColor(0xff, 0, 0));
  PrintToNamedTab(tabs(), u"#tolv", TabKind::Status, u"to Status"_s, 0);
  EXPECT_TRUE(balloon());
}

// A tap on the balloon closes it; so does a press on the strip, and that press still
// chooses its tab once it is let go.
TEST_F(BalloonTest, ATapOnItOrAPressOnTheStripClosesIt) {
  tabs().ActivateTab(0);
  PrintToNamedTab(tabs(), u"bob", TabKind::Chat, u"hello"_s, 0);
  ASSERT_TRUE(balloon());
  QTest::mouseClick(balloon(), Qt::LeftButton, {}, QPoint(5, 5));
  EXPECT_FALSE(balloon());
  EXPECT_FALSE(strip()->BalloonTimer().isActive());
  PrintToNamedTab(tabs(), u"bob", TabKind::Chat, u"again"_s, 0);
  ASSERT_TRUE(balloon());
  QTest::mousePress(strip(), Qt::LeftButton, {}, TabCentre(2));
  EXPECT_FALSE(balloon());
  EXPECT_EQ(tabs().Current(), 0);
  QTest::mouseRelease(strip(), Qt::LeftButton, {}, TabCentre(2));
  EXPECT_EQ(tabs().Current(), 2);
}

// A held press opens the strip's menu: the tabs after Status by name, then the two
// settings items; a listed tab comes to the front and the held tab is not chosen.
TEST_F(BalloonTest, AHeldPressListsTheTabsAndBringsTheChosenToTheFront) {
  tabs().ActivateTab(0);
  QStringList seen;
  DriveMenus(seen, {Qt::Key_Down, Qt::Key_Right, Qt::Key_Down, Qt::Key_Return});
  QTest::mousePress(strip(), Qt::LeftButton, {}, TabCentre(3));
  ASSERT_TRUE(RunUntil([&] { return tabs().Current() == 2; }, 5000));
  QTest::mouseRelease(strip(), Qt::LeftButton, {}, TabCentre(3));
  EXPECT_EQ(seen, (QStringList{u"Tabs=0"_s, u"Tab Settings=40801"_s, u"Baloon Settings=40802"_s,
                               u"#tolv=40701"_s, u"#other=40702"_s, u"bob=40703"_s}));
  EXPECT_EQ(tabs().Current(), 2);
}

struct LabelRow {
  const char* name;
  TabKind kind;
  TabLabelShow show;
  const char* tabSets;  // as settings.reg holds it
  int position;
  bool icon;
  bool text;
};

class TabSettingsRows : public BalloonTest, public ::testing::WithParamInterface<LabelRow> {};

// OK writes the kind's pair and relabels the strip at once; the Cancel before it changed
// nothing.
TEST_P(TabSettingsRows, WriteTheKindsPairAndRelabelTheStrip) {
  const LabelRow& row = GetParam();
  {
    TabSettingsDialog dialog(tabs(), 1, window.get());
    dialog.Choice(row.kind, row.show)->click();
    dialog.reject();
  }
  EXPECT_EQ(TabSetsInFile(), u"05550fff"_s);
  TabSettingsDialog dialog(tabs(), 1, window.get());
  EXPECT_TRUE(dialog.Choice(row.kind, TabLabelShow::Both)->isChecked());
  dialog.Choice(row.kind, row.show)->click();
  for (QPushButton* button : dialog.findChildren<QPushButton*>())
    if (button->text() == u"OK"_s) button->click();
  EXPECT_EQ(TabSetsInFile(), QString::fromLatin1(row.tabSets));
  EXPECT_EQ(!strip()->tabIcon(row.position).isNull(), row.icon);
  EXPECT_EQ(strip()->tabText(row.position), row.text ? tabs().At(row.position)->name : QString());
}

INSTANTIATE_TEST_SUITE_P(
    Dialog, TabSettingsRows,
    ::testing::Values(LabelRow{"StatusIcon", TabKind::Status, TabLabelShow::Icon, "05550ffd", 0, true, false},
                      LabelRow{"ChannelText", TabKind::Channel, TabLabelShow::Text, "05550ffb", 1, false, true},
                      LabelRow{"ChatIcon", TabKind::Chat, TabLabelShow::Icon, "05550fdf", 3, true, false},
                      LabelRow{"DccSendText", TabKind::DccSend, TabLabelShow::Text, "05550bff", 0, true, true}),
    [](const auto& info) { return std::string(info.param.name); });

// Each box is its kind's pair; a box switched off clears both bits, and the label bits
// are left alone.
TEST_F(BalloonTest, BalloonSettingsWriteEachKindsSwitch) {
  settings.SetDword(u"TabSets", 0x025A0F0F);
  const struct {
    TabKind kind;
    bool was;
    bool now;
  } rows[] = {{TabKind::Status, true, false}, {TabKind::Channel, true, true}, {TabKind::Chat, true, false},
              {TabKind::DccChat, true, true}, {TabKind::DccRecv, true, true}, {TabKind::DccSend, false, true}};
  BalloonSettingsDialog dialog(tabs(), 1, window.get());
  for (const auto& row : rows) {
    EXPECT_EQ(dialog.Switch(row.kind)->isChecked(), row.was);
    dialog.Switch(row.kind)->setChecked(row.now);
  }
  dialog.accept();
  EXPECT_EQ(TabSetsInFile(), u"06480f0f"_s);
}

// Both dialogs at pocket and desktop sizes, for a person to look at.
TEST_F(BalloonTest, DialogsFitEachScreen) {
  for (const QSize screen : kScreens) {
    window->resize(screen);
    Settle();
    const int factor = window->ScaleFactor();
    TabSettingsDialog labels(tabs(), factor, window.get());
    BalloonSettingsDialog balloons(tabs(), factor, window.get());
    for (QDialog* dialog : {static_cast<QDialog*>(&labels), static_cast<QDialog*>(&balloons)}) {
      dialog->resize(dialog->sizeHint().boundedTo(screen));
      dialog->show();
      Settle();
      EXPECT_LE(dialog->width(), screen.width());
      EXPECT_LE(dialog->height(), screen.height());
    }
    Screenshot(&labels, u"tab_settings"_s, screen);
    Screenshot(&balloons, u"balloon_settings"_s, screen);
  }
}

}  // namespace
