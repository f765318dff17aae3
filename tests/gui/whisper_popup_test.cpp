// The whisper pop-up over the window's input line and a prompt's field: where it stands,
// how it grows, what closes it, what a pick leaves; Tab and the history keys beside it.

#include "gui/input_line_widget.h"
#include "gui/main_window.h"
#include "gui/prompt_dialog.h"
#include "gui/whisper_attachment.h"
#include "gui/whisper_popup_widget.h"
#include "irc/line_assembly.h"
#include "settings/settings_defaults.h"
#include "settings/settings_flags.h"
#include "settings/settings_store.h"
#include "support/test_app.h"
#include "support/window_client.h"

#include <QApplication>
#include <QDir>
#include <QLineEdit>
#include <QListView>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <gtest/gtest.h>

#include <functional>


using namespace Qt::StringLiterals;

namespace {

class WhisperPopupTest : public ::testing::Test, protected WindowClient {
 protected:
  WhisperPopupTest() {
    window->show();
    window->activateWindow();
    if (!QTest::qWaitForWindowActive(window.get())) ADD_FAILURE() << "the window never became active";
    edit()->setFocus();
  }

  QLineEdit* edit() const { return window->InputLine()->lineEdit(); }
  WhisperPopup* popup() const { return window->InputWhispers()->Popup(); }
  QStringList Rows() const {
    QStringList rows;
    if (popup())
      for (const WhisperRow& row : popup()->Rows()) rows << row.text;
    return rows;
  }
  void JoinChannel() {
    SplitAndDispatch(window->Context(), ":me!u@h JOIN #tolv\r\n"
                                        ":irc.test 353 me = #tolv :@alice +alan me bob\r\n"
                                        ":irc.test 366 me #tolv :End\r\n"
                                        ":alice!a@h PRIVMSG #tolv :shall we /join the other one?\r\n"_ba);
    RunUntil([this] { return window->NickView()->isVisible(); });
  }
  void Screenshot(const QString& name) {
    QDir().mkpath(QStringLiteral(TOLV_SCREENSHOT_DIR));
    window->grab().save(QStringLiteral(TOLV_SCREENSHOT_DIR) + u'/' + name);
  }
};

// Above the input line, three tenths in, one row per completion, growing upwards from
// the line's top edge.
TEST_F(WhisperPopupTest, StandsAboveTheInputLineAndGrowsUpwards) {
  const struct {
    int width, height, factor;
  } screens[] = {{240, 320, 1}, {480, 640, 2}};
  JoinChannel();
  for (const auto& s : screens) {
    SCOPED_TRACE(s.width);
    window->resize(s.width, s.height);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::LayoutRequest);  // the layout settles
    SetNibble(settings, u"Files", kWhispersCountShift, 2);
    const QRect line(window->InputLine()->mapTo(window.get(), QPoint(0, 0)), window->InputLine()->size());
    QTest::keyClicks(edit(), u"/"_s);
    ASSERT_TRUE(popup());
    EXPECT_EQ(popup()->parentWidget(), window.get());
    EXPECT_EQ(popup()->x(), line.left() + line.width() * 3 / 10);
    EXPECT_EQ(popup()->geometry().bottom(), line.top() - 1);
    EXPECT_EQ(popup()->height(), 2 * 18 * s.factor + 2);
    EXPECT_EQ(Rows(), (QStringList{u"/part"_s, u"/join"_s}));
    Screenshot(u"whispers_%1x%2.png"_s.arg(s.width).arg(s.height));
    SetNibble(settings, u"Files", kWhispersCountShift, 4);
    QTest::keyClicks(edit(), u"w"_s);
    QTest::keyClick(edit(), Qt::Key_Backspace);
    EXPECT_EQ(popup()->geometry().bottom(), line.top() - 1);
    EXPECT_EQ(popup()->height(), 4 * 18 * s.factor + 2);
    QTest::keyClick(edit(), Qt::Key_Backspace);
    EXPECT_FALSE(popup());
  }
}

TEST_F(WhisperPopupTest, ClosesOnEveryRule) {
  JoinChannel();  // the nick list is in sight, to take the focus
  const std::pair<const char*, std::function<void()>> rules[] = {
      {"a blank", [&] { QTest::keyClick(edit(), Qt::Key_Space); }},
      {"the caret before the word", [&] { edit()->setCursorPosition(2); }},
      {"a word not in the tree", [&] { QTest::keyClicks(edit(), u"zz"_s); }},
      {"the close icon", [&] { QTest::mouseClick(popup(), Qt::LeftButton, {}, popup()->ClosePoint()); }},
      {"the focus elsewhere", [&] { window->NickView()->setFocus(); }},
      {"Enter", [&] { QTest::keyClick(edit(), Qt::Key_Return); }}};
  for (const auto& [rule, act] : rules) {
    edit()->setFocus();
    edit()->clear();
    QTest::keyClicks(edit(), u"hi /"_s);
    ASSERT_TRUE(popup()) << rule;
    act();
    EXPECT_FALSE(popup()) << rule;
  }
  // Off, nothing opens; an open one still closes when the field loses the focus.
  edit()->clear();
  QTest::keyClicks(edit(), u"/"_s);
  SetFlag(settings, u"Files", kWhispersEnable, false);
  QTest::keyClicks(edit(), u"zz"_s);
  EXPECT_TRUE(popup());
  window->NickView()->setFocus();
  EXPECT_FALSE(popup());
  edit()->setFocus();
  edit()->clear();
  QTest::keyClicks(edit(), u"/"_s);
  EXPECT_FALSE(popup());
}

// Fingers get the nicks the Tab key gives, after the dictionary's words.
TEST_F(WhisperPopupTest, APickPutsTheNickInAndTabCompletes) {
  JoinChannel();
  QTest::keyClicks(edit(), u"hi al"_s);
  ASSERT_EQ(Rows(), (QStringList{u"alan"_s, u"alice"_s}));
  QTest::mouseClick(popup(), Qt::LeftButton, {}, popup()->PickPoint(1));
  EXPECT_EQ(edit()->text(), u"hi alice "_s);
  EXPECT_EQ(edit()->cursorPosition(), 9);
  EXPECT_FALSE(popup());
  edit()->clear();
  QTest::keyClicks(edit(), u"AL"_s);
  QTest::keyClick(edit(), Qt::Key_Tab);
  EXPECT_EQ(edit()->text(), u"alan: "_s);
  EXPECT_TRUE(edit()->hasFocus());
}

TEST_F(WhisperPopupTest, UpAndDownWalkTheHistoryKeepingTheTypedLine) {
  JoinChannel();
  for (const QString& line : {u"one"_s, u"two"_s}) {
    QTest::keyClicks(edit(), line);
    QTest::keyClick(edit(), Qt::Key_Return);
  }
  QTest::keyClicks(edit(), u"draft"_s);
  QStringList seen;
  for (Qt::Key key : {Qt::Key_Up, Qt::Key_Up, Qt::Key_Up, Qt::Key_Down, Qt::Key_Down, Qt::Key_Down}) {
    QTest::keyClick(edit(), key);
    seen << edit()->text();
  }
  EXPECT_EQ(seen, (QStringList{u"two"_s, u"one"_s, u"one"_s, u"two"_s, u"draft"_s, u"draft"_s}));
}

// A prompt's field has its own pop-up, of one row, inside the prompt.
TEST_F(WhisperPopupTest, PromptsWhisperOneWord) {
  QStringList rows;
  QWidget* parent = nullptr;
  window->Shell().SetBeforeExecHook([&](QDialog* dialog) {
    QTimer::singleShot(0, dialog, [&, dialog] {
      auto* prompt = static_cast<OneLinePromptDialog*>(dialog);
      prompt->Field()->clear();
      QTest::keyClicks(prompt->Field(), u"/"_s);
      if (auto* popup = dialog->findChild<WhisperPopup*>()) {
        for (const WhisperRow& row : popup->Rows()) rows << row.text;
        parent = popup->parentWidget();
      }
      dialog->reject();
    });
  });
  window->Shell().AskText(u"Join"_s, u"Channel:"_s, {}, EmptyAnswer::Refused);
  EXPECT_EQ(rows, (QStringList{u"/join"_s}));
  EXPECT_NE(parent, nullptr);
  EXPECT_NE(parent, window.get());
}

}  // namespace
