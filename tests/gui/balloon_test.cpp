// The balloon over the tab strip, the strip's own menu, and the two dialogs that edit
// "TabSets".

#include "gui/balloon_widget.h"
#include "gui/tab_settings_dialog.h"
#include "gui/tab_strip_widget.h"
#include "views/output_path.h"
#include "support/test_app.h"
#include "support/window_client.h"

#include <QApplication>
#include <QCheckBox>
#include <QDir>
#include <QFile>
#include <QMenu>
#include <QTest>
#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

class BalloonTest : public ::testing::Test, protected WindowClient {
 protected:
  BalloonTest() {
    window->show();
    for (const QString& name : {u"#tolv"_s, u"#other"_s, u"bob"_s})
      tabs().OpenTab(name, name[0] == u'#' ? TabKind::Channel : TabKind::Chat);
    tabs().ActivateTab(0);
    Settle();
  }
  TabBar& tabs() { return window->Context().tabs; }
  TabStripWidget* strip() { return window->Strip(); }
  BalloonWidget* balloon() { return strip()->Balloon(); }
  QPoint TabCentre(int position) { return strip()->tabRect(position).center(); }
  QString TabSetsInFile() {
    QFile file(settings.FilePath());
    const QString text = file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
    return text.mid(text.indexOf(u"\"TabSets\"=dword:"_s) + 16, 8);
  }
  void Shot(QWidget* widget, const QString& name, QSize screen) {
    const QString dir = QStringLiteral(TOLV_SCREENSHOT_DIR);
    QDir().mkpath(dir);
    widget->grab().save(u"%1/%2_%3x%4.png"_s.arg(dir, name).arg(screen.width()).arg(screen.height()));
  }
};

// Where it stands and what it shows at each screen size (the dialogs are photographed
// there too); a later line in another back tab takes its place and starts the ten
// seconds again.
TEST_F(BalloonTest, ShowsTheLatestBackLineAndStartsItsTimeAgain) {
  for (const QSize screen : {QSize(240, 320), QSize(320, 240), QSize(480, 640)}) {
    SCOPED_TRACE(screen.width());
    window->resize(screen);  // not settled yet: the strip moves while the balloon stands
    const int factor = window->ScaleFactor();
    PrintToNamedTab(tabs(), u"#tolv", TabKind::Channel, u"<al> \x02" u"bold\x02 and \x03" u"4,12red\x03!"_s, 0x008000);
    ASSERT_TRUE(balloon());
    EXPECT_EQ(balloon()->objectName(), u"TolvBaloon"_s);
    EXPECT_EQ(std::pair(balloon()->Title(), balloon()->Colour()), std::pair(u"\x02#tolv\x02"_s, 0x008000u));
    EXPECT_EQ(balloon()->geometry().topLeft(), strip()->mapTo(window.get(), QPoint(10, 20) * factor));
    EXPECT_EQ(balloon()->width(), strip()->width() - 20 * factor);
    Settle();
    EXPECT_EQ(balloon()->geometry().topLeft(), strip()->mapTo(window.get(), QPoint(10, 20) * factor));
    Shot(window.get(), u"balloon"_s, screen);
    TabSettingsDialog labels(tabs(), factor, window.get());
    BalloonSettingsDialog balloons(tabs(), factor, window.get());
    for (QDialog* dialog : std::initializer_list<QDialog*>{&labels, &balloons}) {
      dialog->resize(dialog->sizeHint().boundedTo(screen));
      Shot(dialog, dialog == &labels ? u"tab_settings"_s : u"balloon_settings"_s, screen);
    }
  }
  EXPECT_EQ(strip()->BalloonTimer().interval(), 10000);
  const int first = strip()->BalloonTimer().remainingTime();
  ASSERT_TRUE(RunUntil([&] { return strip()->BalloonTimer().remainingTime() < first - 20; }, 2000));
  const int shortHeight = balloon()->height();
  PrintToNamedTab(tabs(), u"bob", TabKind::Chat, QString(300, u'w'), 0);
  EXPECT_EQ(std::pair(balloon()->Title(), balloon()->Body()), std::pair(u"\x02" u"bob\x02"_s, QString(300, u'w')));
  EXPECT_GT(balloon()->height(), shortHeight);  // the longer line wraps onto more rows
  EXPECT_GT(strip()->BalloonTimer().remainingTime(), first - 20);
  EXPECT_EQ(window->findChildren<BalloonWidget*>().size(), 1);
  strip()->BalloonTimer().setInterval(1);  // ten seconds, made short: it goes on its own
  PrintToNamedTab(tabs(), u"#other", TabKind::Channel, u"soon gone"_s, 0);
  EXPECT_TRUE(RunUntil([&] { return !balloon(); }, 2000));
}

// With the Channel switch off a channel's news only colours its label; the tab in front
// never has a balloon.
TEST_F(BalloonTest, ComesOnlyForABackTabWhoseKindHasItSwitchedOn) {
  tabs().ActivateTab(3);
  settings.SetDword(u"TabSets", 0x05510FFF);
  PrintToNamedTab(tabs(), u"#tolv", TabKind::Channel, u"quiet"_s, 0x0000ff);
  PrintToNamedTab(tabs(), u"bob", TabKind::Chat, u"in front"_s, 0x0000ff);
  EXPECT_FALSE(balloon());
  EXPECT_EQ(strip()->tabTextColor(1), QColor(0xff, 0, 0));
}

// A tap on the balloon closes it; so does a press on the strip, which still chooses its
// tab once it is let go.
TEST_F(BalloonTest, ATapOnItOrAPressOnTheStripClosesIt) {
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
// settings items. The listed tab chosen comes to the front, not the one held.
TEST_F(BalloonTest, AHeldPressListsTheTabsAndBringsTheChosenToTheFront) {
  QStringList seen;
  auto* poll = new QTimer(window.get());  // walks each menu as it pops up, by keys
  QObject::connect(poll, &QTimer::timeout, poll, [&, poll, menus = QList<QMenu*>(),
                                                  keys = QList{Qt::Key_Down, Qt::Key_Right, Qt::Key_Down, Qt::Key_Return}]() mutable {
    auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
    if (!menu || keys.isEmpty()) return;
    if (!menus.contains(menu)) {
      menus << menu;
      for (QAction* action : menu->actions()) seen << u"%1=%2"_s.arg(action->text()).arg(action->data().toInt());
    }
    QTest::keyClick(menu, keys.takeFirst());
  });
  poll->start(10);
  QTest::mousePress(strip(), Qt::LeftButton, {}, TabCentre(3));
  ASSERT_TRUE(RunUntil([&] { return tabs().Current() == 2; }, 5000));
  QTest::mouseRelease(strip(), Qt::LeftButton, {}, TabCentre(3));
  EXPECT_EQ(seen, (QStringList{u"Tabs=0"_s, u"Tab Settings=40801"_s, u"Baloon Settings=40802"_s,
                               u"#tolv=40701"_s, u"#other=40702"_s, u"bob=40703"_s}));
}

// Each dialog writes its own bits of each kind and keeps the rest; Cancel writes
// nothing, and OK in "Tab Settings" relabels the strip at once.
TEST_F(BalloonTest, TheDialogsWriteTheirOwnBitsOfTabSets) {
  const struct {
    TabKind kind;
    TabLabelShow show;
    const char* tabSets;
    int position;  // a tab of that kind
  } labelRows[] = {{TabKind::Status, TabLabelShow::Icon, "05550ffd", 0},
                   {TabKind::Channel, TabLabelShow::Text, "05550ff9", 1},
                   {TabKind::Chat, TabLabelShow::Icon, "05550fd9", 3}};
  for (const auto& row : labelRows) {
    const QString before = TabSetsInFile();
    TabSettingsDialog(tabs(), 1).Choice(row.kind, row.show)->click();  // and closed without OK
    EXPECT_EQ(TabSetsInFile(), before);
    TabSettingsDialog dialog(tabs(), 1);
    EXPECT_TRUE(dialog.Choice(row.kind, TabLabelShow::Both)->isChecked());
    dialog.Choice(row.kind, row.show)->click();
    dialog.accept();
    EXPECT_EQ(TabSetsInFile(), QString::fromLatin1(row.tabSets));
    EXPECT_EQ(strip()->tabIcon(row.position).isNull(), row.show == TabLabelShow::Text);
    EXPECT_EQ(strip()->tabText(row.position).isEmpty(), row.show == TabLabelShow::Icon);
  }
  settings.SetDword(u"TabSets", 0x025A0F0F);
  const struct {
    TabKind kind;
    bool was, now;
  } balloonRows[] = {{TabKind::Status, true, false}, {TabKind::Channel, true, true}, {TabKind::Chat, true, false},
                     {TabKind::DccChat, true, true}, {TabKind::DccRecv, true, true}, {TabKind::DccSend, false, true}};
  BalloonSettingsDialog dialog(tabs(), 1);
  for (const auto& row : balloonRows) {
    EXPECT_EQ(dialog.Switch(row.kind)->isChecked(), row.was);
    dialog.Switch(row.kind)->setChecked(row.now);
  }
  dialog.accept();
  EXPECT_EQ(TabSetsInFile(), u"06480f0f"_s);
}

}  // namespace
