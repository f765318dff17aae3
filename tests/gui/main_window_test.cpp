// The window over a client whose server is one end of a socket pair: typed lines reach
// the server, server lines open and fill tabs, the nick list answers a held press, and
// the window's sizes follow its screen factor. Screenshots go to the build folder.

#include "gui/input_line_widget.h"
#include "gui/main_window.h"
#include "gui/menu_bar_widget.h"
#include "gui/popup_menu_widget.h"
#include "gui/splash_window.h"
#include "commands/command_ids.h"
#include "irc/line_assembly.h"
#include "settings/settings_defaults.h"
#include "settings/settings_store.h"
#include "support/test_app.h"
#include "gui/color_text_widget.h"
#include "gui/tab_strip_widget.h"

#include <QApplication>
#include <QClipboard>
#include <QMessageBox>
#include <QMimeData>
#include <QDir>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QMenu>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <QToolButton>
#include <gtest/gtest.h>

#include <sys/socket.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

class MainWindowTest : public ::testing::Test {
 protected:
  MainWindowTest() {
    InitialiseDefaults(settings);
    settings.SetDword(u"tstamps", 0);
    settings.SetDword(u"Options", settings.GetDword(u"Options") & ~0x40);  // no splash to tap away
    window = std::make_unique<MainWindow>(settings);
    window->FinishStart(false);
    ClientContext& ctx = window->Context();
    int pair[2];
    if (socketpair(AF_UNIX, SOCK_STREAM, 0, pair) == 0) {
      ctx.session.serverSocket = pair[0];
      peer_ = pair[1];
    }
    ctx.session.currentNick = u"me"_s;
    ctx.session.serverHost = u"irc.test"_s;
  }
  ~MainWindowTest() override {
    window.reset();
    if (peer_ >= 0) close(peer_);
  }

  void Receive(const QString& lines) { SplitAndDispatch(window->Context(), lines.toUtf8()); }
  QByteArray Sent() {
    QByteArray out;
    char chunk[4096];
    for (ssize_t n; (n = recv(peer_, chunk, sizeof chunk, MSG_DONTWAIT)) > 0;) out.append(chunk, n);
    return out;
  }
  void Type(const QString& text) {
    QLineEdit* edit = window->InputLine()->lineEdit();
    QTest::keyClicks(edit, text);
    QTest::keyClick(edit, Qt::Key_Return);
  }
  void JoinChannelWithTalk() {
    Receive(u":me!u@h JOIN #tolv\r\n"
            ":irc.test 353 me = #tolv :@alice +bob me carol\r\n"
            ":irc.test 366 me #tolv :End of NAMES list\r\n"
            ":alice!a@h PRIVMSG #tolv :hello \x02" "bold\x02 and \x03" "4,12colour\x03 back\r\n"
            ":bob!b@h PRIVMSG #tolv :\x01" "ACTION waves at everyone on this narrow screen\x01\r\n"
            ":carol!c@h PRIVMSG #tolv :a long line that has to wrap on a phone sized window, "
            "more than once, to show the rule\r\n"_s);
    RunUntil([] { return false; }, 50);
  }
  void Settle() { RunUntil([] { return false; }, 50); }
  int InputLineBottom() const {
    const InputLineWidget* input = window->InputLine();
    return input->mapTo(window.get(), QPoint(0, input->height())).y();
  }
  void Screenshot(const QString& name) {
    QDir().mkpath(QStringLiteral(TOLV_SCREENSHOT_DIR));
    window->grab().save(QStringLiteral(TOLV_SCREENSHOT_DIR) + u'/' + name);
  }

  QTemporaryDir home;
  SettingsStore settings{home.path()};
  std::unique_ptr<MainWindow> window;

 private:
  int peer_ = -1;
};

TEST_F(MainWindowTest, TypedLinesReachTheServer) {
  window->show();
  Type(u"/join #tolv"_s);
  EXPECT_EQ(Sent(), "join #tolv\n");
  EXPECT_TRUE(window->InputLine()->currentText().isEmpty());
  Type(u"hello"_s);  // Status: nothing is sent
  EXPECT_EQ(Sent(), "");
  EXPECT_EQ(window->Context().history.Entries(), (QStringList{u"hello"_s, u"/join #tolv"_s}));
}

TEST_F(MainWindowTest, AJoinOpensTheChannelWithItsNickList) {
  window->show();
  JoinChannelWithTalk();
  EXPECT_EQ(window->Context().tabs.Current(), 1);
  EXPECT_EQ(window->Strip()->currentIndex(), 1);
  EXPECT_EQ(window->Strip()->count(), 2);
  QListView* nicks = window->NickView();
  EXPECT_TRUE(nicks->isVisible());
  ASSERT_EQ(nicks->model()->rowCount(), 4);
  EXPECT_EQ(nicks->model()->index(0, 0).data().toString(), u"@alice"_s);
  Type(u"hi all"_s);
  EXPECT_EQ(Sent(), "PRIVMSG #tolv :hi all\n");
  window->Context().tabs.ActivateTab(0);
  EXPECT_FALSE(nicks->isVisible());  // Status has no nick list
}

TEST_F(MainWindowTest, AHeldPressOnANickOpensItsMenu) {
  window->show();
  JoinChannelWithTalk();
  QListView* nicks = window->NickView();
  const QRect row = nicks->visualRect(nicks->model()->index(1, 0));
  QStringList items;
  QTimer::singleShot(1200, [&] {
    if (auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget())) {
      for (QAction* action : menu->actions()) items << action->text();
      menu->close();
    }
  });
  QTest::mousePress(nicks->viewport(), Qt::LeftButton, {}, row.center());
  RunUntil([&] { return !items.isEmpty(); }, 3000);
  QTest::mouseRelease(nicks->viewport(), Qt::LeftButton, {}, row.center());
  EXPECT_EQ(items.mid(0, 3), (QStringList{u"Query"_s, u"Notice"_s, u"Whois"_s}));
  EXPECT_EQ(Sent(), "");  // closing the menu chooses nothing
  window->RunNickMenuCommand(40307, nicks->model()->index(1, 0).data().toString());
  EXPECT_EQ(Sent(), "MODE #tolv +o bob\n");
}

TEST_F(MainWindowTest, SizesFollowTheScreenFactor) {
  const struct {
    int width, height, factor, pixels;
  } cases[] = {{240, 320, 1, 13}, {480, 640, 2, 26}, {320, 240, 1, 13}, {640, 480, 2, 26}};
  window->show();
  JoinChannelWithTalk();
  for (const auto& c : cases) {
    window->resize(c.width, c.height);
    RunUntil([] { return false; }, 50);
    EXPECT_EQ(window->ScaleFactor(), c.factor) << c.width;
    EXPECT_EQ(window->InputLine()->font().pixelSize(), c.pixels) << c.width;
    EXPECT_EQ(window->Strip()->font().pixelSize(), c.pixels) << c.width;
    EXPECT_EQ(window->NickView()->font().pixelSize(), c.pixels) << c.width;
    const ConversationTab* tab = window->Context().tabs.At(1);
    EXPECT_EQ(window->TextViewOf(tab->id)->TextFont().pixelSize(), c.pixels) << c.width;
    Screenshot(u"main_%1x%2.png"_s.arg(c.width).arg(c.height));
  }
}

// Entry 1 of "kolory" (0x00BBGGRR) is the typed text's colour, on the field's own
// background: from the start, and again when the colours have been reset.
TEST_F(MainWindowTest, TheInputLineTextHasTheSchemesColour) {
  const auto setEntry = [&](quint32 colour) {
    QByteArray scheme;
    ASSERT_TRUE(settings.GetBinary(u"kolory", scheme, 96));
    for (int i = 0; i < 4; ++i) scheme[4 + i] = char((colour >> (8 * i)) & 0xff);
    settings.SetBinary(u"kolory", scheme);
  };
  const QColor usual = window->InputLine()->palette().color(QPalette::Text);
  const QColor base = window->InputLine()->lineEdit()->palette().color(QPalette::Base);
  setEntry(0x000000ff);
  MainWindow fresh(settings);
  EXPECT_EQ(fresh.InputLine()->lineEdit()->palette().color(QPalette::Text), QColor(255, 0, 0));

  window->show();
  window->Shell().SetBeforeExecHook([](QDialog* box) {
    QTimer::singleShot(0, box, [box] {
      for (QPushButton* button : box->findChildren<QPushButton*>())
        if (button->text() == u"Yes"_s) button->click();
    });
  });
  const struct {
    quint32 entry;
    QColor shown;
  } cases[] = {{0x00804020, QColor(0x20, 0x40, 0x80)}, {0x0000c000, QColor(0, 0xc0, 0)}, {0, usual}};
  const QLineEdit* edit = window->InputLine()->lineEdit();
  for (const auto& c : cases) {
    SCOPED_TRACE(c.entry);
    setEntry(c.entry);
    window->RunCommand(kCmdColoursDefault);
    EXPECT_EQ(edit->palette().color(QPalette::Text), c.shown);
    EXPECT_EQ(edit->palette().color(QPalette::Base), base);
  }
}

TEST_F(MainWindowTest, TheWindowShowsTheIcon) {
  ASSERT_FALSE(window->windowIcon().isNull());
  EXPECT_EQ(window->windowIcon().pixmap(32).toImage(), AppIcon().pixmap(32).toImage());
}

// The keyboard's rectangle is in the window's coordinates wherever the window stands on
// the screen; the input line ends above it, and returns to the bottom when it goes.
TEST_F(MainWindowTest, TheInputLineStaysAboveTheSoftKeyboard) {
  window->show();
  for (const QPoint at : {QPoint(0, 0), QPoint(600, 0)}) {
    SCOPED_TRACE(at.x());
    window->move(at);
    Settle();
    window->FollowKeyboard(QRectF(0, 400, 480, 240), true);
    EXPECT_TRUE(RunUntil([&] { return InputLineBottom() <= 400; }, 1000)) << InputLineBottom();
    EXPECT_GE(InputLineBottom(), 395);
    window->FollowKeyboard(QRectF(), false);
    EXPECT_TRUE(RunUntil([&] { return InputLineBottom() >= 635; }, 1000)) << InputLineBottom();
  }
}

// Lines in the default colour leave a tab's label grey: the count in its badge shows them,
// until the tab is shown.
TEST_F(MainWindowTest, UnreadLinesAreCountedInTheTabsBadge) {
  window->show();
  JoinChannelWithTalk();
  window->Context().tabs.ActivateTab(0);
  Receive(u":alice!a@h PRIVMSG #tolv :one\r\n:bob!b@h PRIVMSG #tolv :two\r\n"_s);
  const auto badge = [&]() -> QString {
    const QLabel* label = window->Strip()->UnreadBadge(1);
    return label && label->isVisible() ? label->text() : u"none"_s;
  };
  EXPECT_TRUE(RunUntil([&] { return badge() == u"2"_s; }, 1000)) << badge().toStdString();
  EXPECT_EQ(window->Context().tabs.At(1)->labelColour, kLabelGrey);
  EXPECT_EQ(window->Strip()->UnreadBadge(0), nullptr);
  window->Context().tabs.ActivateTab(1);
  EXPECT_TRUE(RunUntil([&] { return badge() == u"none"_s; }, 1000)) << badge().toStdString();
}

// Every tap target is at least 20 pixels tall per screen factor, in the input line's
// 13-pixel text: the menu bar and its menus, the pop-ups, the dialogs' buttons, and the
// two buttons beside the input line, which stay inside the window.
TEST_F(MainWindowTest, TapTargetsFollowTheScreenFactor) {
  window->show();
  JoinChannelWithTalk();
  const struct {
    int width, height, factor;
  } cases[] = {{240, 320, 1}, {320, 240, 1}, {480, 640, 2}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.width);
    window->resize(c.width, c.height);
    Settle();
    const int least = 20 * c.factor;
    const std::function<void(QMenu*)> checkMenu = [&](QMenu* menu) {
      EXPECT_EQ(menu->font().pixelSize(), 13 * c.factor) << menu->title().toStdString();
      for (QAction* action : menu->actions()) {
        if (action->isSeparator()) continue;
        EXPECT_GE(menu->actionGeometry(action).height(), least) << action->text().toStdString();
        if (action->menu()) checkMenu(action->menu());
      }
    };
    QMenuBar* bar = window->Menu();
    EXPECT_GE(bar->actionGeometry(bar->actions().first()).height(), least);
    checkMenu(window->Menu()->CommandMenu());
    for (TabKind kind : {TabKind::Status, TabKind::Channel}) {
      std::unique_ptr<QMenu> menu(MakeTabMenu(kind, window.get(), c.factor));
      checkMenu(menu.get());
    }
    std::unique_ptr<QMenu> nickMenu(MakeNickMenu(window.get(), c.factor));
    checkMenu(nickMenu.get());
    std::unique_ptr<QMenu> editMenu(window->InputLine()->MakeEditMenu(window.get()));
    checkMenu(editMenu.get());

    const QWidget* central = window->centralWidget();
    for (QToolButton* button : central->findChildren<QToolButton*>(Qt::FindDirectChildrenOnly)) {
      const QRect inWindow(button->mapTo(window.get(), QPoint(0, 0)), button->size());
      EXPECT_GE(button->width(), least);
      EXPECT_GE(button->height(), least);
      EXPECT_TRUE(window->rect().contains(inWindow)) << inWindow.x() << "," << inWindow.y();
    }

    QList<int> heights;
    window->Shell().SetBeforeExecHook([&](QDialog* dialog) {
      QTimer::singleShot(0, dialog, [&, dialog] {
        for (QPushButton* button : dialog->findChildren<QPushButton*>()) {
          EXPECT_EQ(button->font().pixelSize(), 13 * c.factor);
          heights << button->height();
        }
        dialog->reject();
      });
    });
    window->Shell().ShowMessage(u"Warning"_s, u"A message"_s);
    window->Shell().AskText(u"Join"_s, u"Channel:"_s, {}, EmptyAnswer::Refused);
    ASSERT_EQ(heights.size(), 3);  // OK; OK and Cancel
    for (int height : heights) EXPECT_GE(height, least);
  }
}

TEST_F(MainWindowTest, ArrowsStepTabsOnlyWhileTheLineIsEmpty) {
  window->show();
  JoinChannelWithTalk();
  QLineEdit* edit = window->InputLine()->lineEdit();
  QTest::keyClick(edit, Qt::Key_Left);
  EXPECT_EQ(window->Context().tabs.Current(), 0);
  QTest::keyClicks(edit, u"ab"_s);
  QTest::keyClick(edit, Qt::Key_Right);
  EXPECT_EQ(window->Context().tabs.Current(), 0);  // the caret moved instead
  QTest::keyClick(edit, Qt::Key_Right, Qt::AltModifier);
  EXPECT_EQ(window->Context().tabs.Current(), 1);
}

TEST_F(MainWindowTest, EditMenuGreysWhatCannotBeDone) {
  window->show();
  InputLineWidget* input = window->InputLine();
  QApplication::clipboard()->setText(u"pasted"_s);
  input->lineEdit()->setText(u"some text"_s);
  const auto states = [&] {
    std::unique_ptr<QMenu> menu(input->MakeEditMenu(window.get()));
    QList<bool> enabled;
    for (QAction* action : menu->actions()) enabled << action->isEnabled();
    return enabled;
  };
  EXPECT_EQ(states(), (QList<bool>{false, false, true, false}));  // Cut, Copy, Paste, Delete
  input->lineEdit()->selectAll();
  auto* picture = new QMimeData;  // something on the clipboard, but no text
  picture->setData(u"image/png"_s, QByteArray("\x89PNG"));
  QApplication::clipboard()->setMimeData(picture);
  EXPECT_EQ(states(), (QList<bool>{true, true, false, true}));
}

// The menu's shape as a user walks it: each item's text and command number.
TEST_F(MainWindowTest, TheCommandsMenuHoldsEveryCommand) {
  QStringList seen;
  const std::function<void(QMenu*, const QString&)> walk = [&](QMenu* menu, const QString& path) {
    for (QAction* action : menu->actions()) {
      if (action->menu()) walk(action->menu(), path + action->text() + u'/');
      else if (!action->isSeparator()) seen << path + action->text() + u'=' + action->data().toString();
    }
  };
  walk(window->Menu()->CommandMenu(), {});
  EXPECT_EQ(seen, (QStringList{
      u"Connect=40008"_s, u"Commands/Channel/Join=40101"_s, u"Commands/Channel/Part=40102"_s,
      u"Commands/Channel/List=40103"_s, u"Commands/Channel/Names=40104"_s,
      u"Commands/Channel/Topic=40110"_s, u"Commands/Channel/Kick=40112"_s,
      u"Commands/User/Whois=40105"_s, u"Commands/User/Whowas=40106"_s, u"Commands/User/Who=40107"_s,
      u"Commands/User/Invite=40111"_s, u"Commands/User/Notice=40113"_s,
      u"Commands/User/Userhost=40117"_s, u"Commands/DCC/DCC Chat=40114"_s,
      u"Commands/DCC/DCC Send=40115"_s, u"Commands/New nick=40108"_s, u"Commands/Quit=40109"_s,
      u"Favorites/Add=40298"_s, u"Favorites/Remove=40299"_s,
      u"mColors Default=40050"_s, u"Help/Contents=40005"_s, u"Help/About=40007"_s, u"Exit=40010"_s}));
}

TEST_F(MainWindowTest, MissingHelpSaysSo) {
  QDir(home.path() + u"/help"_s).removeRecursively();
  QString title, text;
  window->Shell().SetBeforeExecHook([&](QDialog* dialog) {
    title = dialog->windowTitle();
    if (auto* box = qobject_cast<QMessageBox*>(dialog)) text = box->text();
    QTimer::singleShot(0, dialog, &QDialog::accept);
  });
  window->RunCommand(40005);
  EXPECT_EQ(title, u"ERROR!"_s);
  EXPECT_EQ(text, u"Can't open help file :-("_s);
}

}  // namespace
