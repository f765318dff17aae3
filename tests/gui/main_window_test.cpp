// The window over a client whose server is one end of a socket pair, and its splash.

#include "gui/color_text_widget.h"
#include "gui/input_line_widget.h"
#include "gui/main_window.h"
#include "gui/nick_colour_model.h"
#include "gui/menu_bar_widget.h"
#include "gui/popup_menu_widget.h"
#include "gui/splash_window.h"
#include "gui/tab_strip_widget.h"
#include "irc/line_assembly.h"
#include "settings/settings_defaults.h"
#include "settings/settings_store.h"
#include "views/output_path.h"
#include "support/test_app.h"
#include "support/window_client.h"

#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QMenu>
#include <QPushButton>
#include <QScrollBar>
#include <QTemporaryDir>
#include <QTest>
#include <QStringListModel>
#include <QTimer>
#include <QToolButton>
#include <QtEndian>
#include <gtest/gtest.h>


using namespace Qt::StringLiterals;

namespace {

class MainWindowTest : public ::testing::Test, protected WindowClient {
 protected:
  MainWindowTest() { window->show(); }
  void Join() {
    Receive(u":me!u@h JOIN #tolv\r\n:irc.test 353 me = #tolv :@alice +bob me carol\r\n"
            ":irc.test 366 me #tolv :End of NAMES list\r\n"_s);
    Settle();
  }
};

// Lines in a back tab are counted in its badge, even when its label stays grey, until
// the tab is shown.
TEST_F(MainWindowTest, TypedLinesReachTheServerAndUnreadLinesShowInTheBadge) {
  Join();
  ASSERT_EQ(window->NickView()->model()->rowCount(), 4);
  EXPECT_EQ(window->NickView()->model()->index(0, 0).data().toString(), u"@alice"_s);
  QTest::keyClicks(window->InputLine()->lineEdit(), u"hi all"_s);
  QTest::keyClick(window->InputLine()->lineEdit(), Qt::Key_Return);
  EXPECT_EQ(Sent(), "PRIVMSG #tolv :hi all\n");
  window->Context().tabs.ActivateTab(0);
  Receive(u":alice!a@h PRIVMSG #tolv :one\r\n:bob!b@h PRIVMSG #tolv :two\r\n"_s);
  const auto badge = [&]() -> QString {
    const QLabel* label = window->Strip()->UnreadBadge(1);
    return label && label->isVisible() ? label->text() : u"none"_s;
  };
  EXPECT_TRUE(RunUntil([&] { return badge() == u"2"_s; }, 1000)) << badge().toStdString();
  EXPECT_EQ(window->Context().tabs.At(1)->labelColour, kLabelGrey);
  window->Context().tabs.ActivateTab(1);
  EXPECT_TRUE(RunUntil([&] { return badge() == u"none"_s; }, 1000)) << badge().toStdString();
  EXPECT_EQ(window->windowIcon().pixmap(32).toImage(), AppIcon().pixmap(32).toImage());
}

// Every tap target (menus, pop-ups, dialog buttons, the input line's buttons) is at
// least 20 pixels tall per screen factor, in 13-pixel text.
TEST_F(MainWindowTest, TapTargetsFollowTheScreenFactor) {
  Join();
  for (const QSize size : {QSize(240, 320), QSize(320, 240), QSize(480, 640)}) {
    SCOPED_TRACE(size.width());
    window->resize(size);
    Settle();
    const int factor = size.width() / 240, least = 20 * factor;
    EXPECT_EQ(window->ScaleFactor(), factor);
    const std::function<void(QMenu*)> checkMenu = [&](QMenu* menu) {
      EXPECT_EQ(menu->font().pixelSize(), 13 * factor) << menu->title().toStdString();
      for (QAction* action : menu->actions()) {
        EXPECT_TRUE(action->isSeparator() || menu->actionGeometry(action).height() >= least) << action->text().toStdString();
        if (action->menu()) checkMenu(action->menu());
      }
    };
    EXPECT_GE(window->Menu()->actionGeometry(window->Menu()->actions().first()).height(), least);
    checkMenu(window->Menu()->CommandMenu());
    for (QMenu* menu : {MakeTabMenu(TabKind::Channel, window.get(), factor), MakeNickMenu(window.get(), factor),
                        window->InputLine()->MakeEditMenu(window.get())}) {
      checkMenu(menu);
      delete menu;
    }
    for (QToolButton* button : window->centralWidget()->findChildren<QToolButton*>(Qt::FindDirectChildrenOnly)) {
      EXPECT_GE(std::min(button->width(), button->height()), least);
      EXPECT_TRUE(window->rect().contains(QRect(button->mapTo(window.get(), QPoint(0, 0)), button->size())));
    }
    QList<int> heights;
    window->Shell().SetBeforeExecHook([&](QDialog* dialog) {
      QTimer::singleShot(0, dialog, [&, dialog] {
        for (QPushButton* button : dialog->findChildren<QPushButton*>()) {
          EXPECT_EQ(button->font().pixelSize(), 13 * factor);
          heights << button->height();
        }
        dialog->reject();
      });
    });
    window->Shell().AskText(u"Join"_s, u"Channel:"_s, {}, EmptyAnswer::Refused);
    ASSERT_EQ(heights.size(), 2);  // OK and Cancel
    for (int height : heights) EXPECT_GE(height, least);
  }
}

// Entry 1 of "kolory" (0x00BBGGRR) is the typed text's colour, on the field's own
// background: from the start, and again when the colours have been reset.
TEST_F(MainWindowTest, TheInputLineTextHasTheSchemesColour) {
  const QLineEdit* edit = window->InputLine()->lineEdit();
  const QColor usual = edit->palette().color(QPalette::Text), base = edit->palette().color(QPalette::Base);
  window->Shell().SetBeforeExecHook([](QDialog* box) {
    QTimer::singleShot(0, box, [box] {
      for (QPushButton* button : box->findChildren<QPushButton*>())
        if (button->text() == u"Yes"_s) button->click();
    });
  });
  QByteArray scheme;
  ASSERT_TRUE(settings.GetBinary(u"kolory", scheme, 96));
  for (const auto& [entry, shown] : {std::pair{0x00804020u, QColor(0x20, 0x40, 0x80)}, {0u, usual}}) {
    qToLittleEndian(entry, scheme.data() + 4);
    settings.SetBinary(u"kolory", scheme);
    EXPECT_EQ(MainWindow(settings).InputLine()->lineEdit()->palette().color(QPalette::Text), shown) << entry;
    window->RunCommand(40050);  // mColors Default
    EXPECT_EQ(edit->palette().color(QPalette::Text), shown) << entry;
    EXPECT_EQ(edit->palette().color(QPalette::Base), base);
  }
}

// Entries 0 and 2 of "kolory" are the text's and the nick list's backgrounds, 3 to 5 the
// colours of users, voiced users and operators in the list.
TEST_F(MainWindowTest, TheSchemeColoursTheViewsAndTheNicks) {
  QByteArray scheme;
  ASSERT_TRUE(settings.GetBinary(u"kolory", scheme, 96));
  for (int entry = 0; entry < 6; ++entry) qToLittleEndian(0x00000010u * quint32(entry + 1), scheme.data() + 4 * entry);
  settings.SetBinary(u"kolory", scheme);
  MainWindow fresh(settings);
  fresh.FinishStart(false);
  EXPECT_EQ(fresh.TextViewOf(fresh.Context().tabs.At(0)->id)->palette().color(QPalette::Base), QColor(0x10, 0, 0));
  EXPECT_EQ(fresh.NickView()->palette().color(QPalette::Base), QColor(0x30, 0, 0));
  QStringListModel nicks({u"@op"_s, u"+voiced"_s, u"user"_s});
  NickColourModel coloured;
  coloured.setSourceModel(&nicks);
  coloured.SetColours(Qt::red, Qt::green, Qt::blue);
  QList<QColor> shown;
  for (int row = 0; row < 3; ++row) shown << coloured.index(row, 0).data(Qt::ForegroundRole).value<QColor>();
  EXPECT_EQ(shown, (QList<QColor>{Qt::blue, Qt::green, Qt::red}));
}

// The keyboard's rectangle is in the window's coordinates wherever the window stands on
// the screen; the input line ends above it, and returns to the bottom when it goes.
TEST_F(MainWindowTest, TheInputLineStaysAboveTheSoftKeyboard) {
  window->resize(480, 640);
  const auto bottom = [&] { return window->InputLine()->mapTo(window.get(), QPoint(0, window->InputLine()->height())).y(); };
  for (const QPoint at : {QPoint(0, 0), QPoint(600, 0)}) {
    window->move(at);
    Settle();
    window->FollowKeyboard(QRectF(0, 400, 480, 240), true);
    EXPECT_TRUE(RunUntil([&] { return bottom() <= 400 && bottom() >= 395; }, 1000)) << at.x() << ": " << bottom();
    window->FollowKeyboard(QRectF(), false);
    EXPECT_TRUE(RunUntil([&] { return bottom() >= 635; }, 1000)) << at.x() << ": " << bottom();
  }
}

// "Scroll On" follows new lines only from the end; "Scroll Off" never does, and turning
// it on jumps to the end.
TEST_F(MainWindowTest, NewLinesFollowOnlyFromTheEndWhenFollowing) {
  TabBar& tabs = window->Context().tabs;
  for (int i = 0; i < 80; ++i) PrintToTab(tabs, 0, u"line %1"_s.arg(i), 0);
  QScrollBar* scroll = window->TextViewOf(tabs.At(0)->id)->verticalScrollBar();
  ASSERT_TRUE(RunUntil([&] { return scroll->maximum() > 20 && scroll->value() == scroll->maximum(); }, 2000));
  // {follow, from (-1: the end), followed}
  const std::tuple<bool, int, bool> cases[] = {{true, 5, false}, {true, -1, true}, {false, -1, false}, {false, 5, false}};
  for (const auto& [follow, start, followed] : cases) {
    if (tabs.At(0)->followNewLines != follow) tabs.SetFollowNewLines(0, follow);
    const int from = start < 0 ? scroll->maximum() : start;
    scroll->setValue(from);
    for (int i = 0; i < 10; ++i) PrintToTab(tabs, 0, u"more"_s, 0);
    const qsizetype rows = tabs.At(0)->lines->RowCount();
    ASSERT_TRUE(RunUntil([&] { return scroll->maximum() == rows - scroll->pageStep(); }, 2000));
    EXPECT_EQ(scroll->value(), followed ? scroll->maximum() : from) << follow << " from " << start;
  }
  scroll->setValue(3);
  tabs.SetFollowNewLines(0, true);
  EXPECT_EQ(scroll->value(), scroll->maximum());
}

// Centred across and 22 pixels a factor below the middle, but never past the window's
// bottom: on a short window it moves up. Odd sizes are truncated.
TEST(SplashWindow, CentredAcrossAndBelowTheMiddleOfTheMainWindow) {
  const std::tuple<int, QSize, QRect> cases[] = {
      {1, QSize(240, 294), QRect(0, 93, 240, 151)},   // (294 - 151) / 2 + 22 = 93
      {2, QSize(480, 588), QRect(0, 165, 480, 302)},  // (588 - 302) / 2 + 22 = 165
      {1, QSize(481, 640), QRect(120, 266, 240, 151)},
      {2, QSize(720, 320), QRect(120, 18, 480, 302)},  // 31 + 302 would end past 320
  };
  for (const auto& [factor, window, expected] : cases) {
    EXPECT_EQ(SplashGeometry(factor, window), expected) << factor << " " << window.width();
    EXPECT_EQ(SplashWindow(factor, window).size(), expected.size());
  }
}

}  // namespace
