// The prompts' confirming buttons: greyed exactly while the answer is unusable, so that
// the menu commands can trust what they get.

#include "gui/prompt_dialog.h"

#include <QDir>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QTest>
#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

struct OneLineCase {
  const char* name;
  QString initial;
  QString typed;  // after the initial text
  int erased;     // then this many backspaces
  EmptyAnswer empty;
  bool okEnabled;
};

class OneLinePromptTest : public ::testing::TestWithParam<OneLineCase> {};

TEST_P(OneLinePromptTest, OkFollowsTheField) {
  const OneLineCase& c = GetParam();
  OneLinePromptDialog dialog(u"Join channel"_s, u"Enter channel to join:"_s, c.initial,
                             c.empty);
  dialog.Field()->end(false);
  QTest::keyClicks(dialog.Field(), c.typed);
  for (int i = 0; i < c.erased; ++i) QTest::keyClick(dialog.Field(), Qt::Key_Backspace);
  EXPECT_EQ(dialog.OkButton()->isEnabled(), c.okEnabled);
}

INSTANTIATE_TEST_SUITE_P(
    Cases, OneLinePromptTest,
    ::testing::Values(
        OneLineCase{"TypedThenErased", u""_s, u"ab"_s, 2, EmptyAnswer::Refused, false},
        OneLineCase{"BlankIsAText", u""_s, u" "_s, 0, EmptyAnswer::Refused, true},
        OneLineCase{"InitialText", u"Nick"_s, u""_s, 0, EmptyAnswer::Refused, true},
        OneLineCase{"QuitErased", u""_s, u"bye"_s, 3, EmptyAnswer::Allowed, true}),
    [](const auto& info) { return std::string(info.param.name); });

TEST(OneLinePrompt, ShowsTitleLabelAndButtons) {
  OneLinePromptDialog dialog(u"Userhost"_s, u"Enter up to 5 space separated nicks"_s, {},
                             EmptyAnswer::Refused);
  EXPECT_EQ(dialog.windowTitle(), u"Userhost"_s);
  EXPECT_EQ(dialog.findChild<QLabel*>()->text(), u"Enter up to 5 space separated nicks"_s);
  QStringList buttons;
  for (QPushButton* button : dialog.findChildren<QPushButton*>()) buttons << button->text();
  buttons.sort();
  EXPECT_EQ(buttons, (QStringList{u"Cancel"_s, u"OK"_s}));
}

// Enter presses the default button, but a greyed OK must not confirm an empty field.
TEST(OneLinePrompt, EnterConfirmsOnlyWhileOkIsEnabled) {
  OneLinePromptDialog dialog(u"Change nick"_s, u"Enter a new nick:"_s, {},
                             EmptyAnswer::Refused);
  dialog.show();
  QTest::keyClick(dialog.Field(), Qt::Key_Return);
  EXPECT_TRUE(dialog.isVisible());
  QTest::keyClicks(dialog.Field(), u"tolvfan"_s);
  QTest::keyClick(dialog.Field(), Qt::Key_Return);
  EXPECT_FALSE(dialog.isVisible());
  EXPECT_EQ(dialog.result(), QDialog::Accepted);
}

TEST(PromptLimit, FieldsStopAt250Characters) {
  const QString tooLong = QString(260, u'x') + u"END"_s;
  OneLinePromptDialog typed(u"Notice input"_s, u"Enter message:"_s, {}, EmptyAnswer::Refused);
  QTest::keyClicks(typed.Field(), tooLong);
  EXPECT_EQ(typed.Text(), QString(250, u'x'));
  OneLinePromptDialog seeded(u"Away information"_s, u"Enter text:"_s, tooLong,
                             EmptyAnswer::Refused);
  EXPECT_EQ(seeded.Text().size(), 250);
  TwoLinePromptDialog two(u"Topic input"_s, u"Enter channel:"_s, u"Enter new topic:"_s);
  QTest::keyClicks(two.FirstField(), tooLong);
  two.SecondField()->insert(tooLong);  // as a paste arrives
  EXPECT_EQ(two.Texts(), std::pair(QString(250, u'x'), QString(250, u'x')));
}

struct TwoLineCase {
  const char* name;
  QString first;
  QString second;
  bool okEnabled;
};

class TwoLinePromptTest : public ::testing::TestWithParam<TwoLineCase> {};

TEST_P(TwoLinePromptTest, OkNeedsBothFields) {
  const TwoLineCase& c = GetParam();
  TwoLinePromptDialog dialog(u"Kick input"_s, u"Enter channel:"_s, u"Enter nickname:"_s);
  QTest::keyClicks(dialog.FirstField(), u"x"_s + c.first);
  QTest::keyClicks(dialog.SecondField(), u"x"_s + c.second);
  QTest::keyClick(dialog.FirstField(), Qt::Key_Home);
  QTest::keyClick(dialog.FirstField(), Qt::Key_Delete);
  QTest::keyClick(dialog.SecondField(), Qt::Key_Home);
  QTest::keyClick(dialog.SecondField(), Qt::Key_Delete);
  EXPECT_EQ(dialog.OkButton()->isEnabled(), c.okEnabled);
  EXPECT_EQ(dialog.Texts(), std::pair(c.first, c.second));
}

// Each field is typed into and then has its first letter deleted, so OK must also
// grey again when a field is emptied.
INSTANTIATE_TEST_SUITE_P(Cases, TwoLinePromptTest,
                         ::testing::Values(TwoLineCase{"OnlyFirst", u"#tolv"_s, u""_s, false},
                                           TwoLineCase{"OnlySecond", u""_s, u"bob"_s, false},
                                           TwoLineCase{"Both", u"#tolv"_s, u"bob"_s, true}),
                         [](const auto& info) { return std::string(info.param.name); });

TEST(ListPrompt, AcceptNeedsAChosenEntry) {
  ListPromptDialog dialog(u"Favorites"_s, u"Choose a sentence:"_s,
                          {u"hello all"_s, u"brb"_s, u"good night"_s}, u"Remove"_s);
  EXPECT_EQ(dialog.AcceptButton()->text(), u"Remove"_s);
  EXPECT_FALSE(dialog.AcceptButton()->isEnabled());
  dialog.show();
  QListWidget* list = dialog.List();
  QTest::mouseClick(list->viewport(), Qt::LeftButton, {},
                    list->visualItemRect(list->item(1)).center());
  EXPECT_TRUE(dialog.AcceptButton()->isEnabled());
  EXPECT_EQ(dialog.ChosenIndex(), 1);
  list->clearSelection();
  EXPECT_FALSE(dialog.AcceptButton()->isEnabled());
  EXPECT_EQ(dialog.ChosenIndex(), std::nullopt);
}

// Shows `dialog` at the width of the smallest screen and keeps a picture of it.
void SaveScreenshot(QDialog& dialog, const QString& name) {
  EXPECT_LE(dialog.minimumSizeHint().width(), 240) << name.toStdString();
  dialog.resize(240, dialog.sizeHint().height());
  dialog.show();
  QCoreApplication::processEvents();
  QDir().mkpath(QStringLiteral(TOLV_SCREENSHOT_DIR));
  EXPECT_TRUE(dialog.grab().save(QStringLiteral(TOLV_SCREENSHOT_DIR) + u'/' + name));
}

TEST(PromptScreenshots, FitTheSmallestScreen) {
  OneLinePromptDialog one(u"List nicknames on channels"_s,
                          u"Enter channel(s) comma's separated:"_s, u"#tolv,#qt"_s,
                          EmptyAnswer::Refused);
  SaveScreenshot(one, u"prompt_one_line.png"_s);
  TwoLinePromptDialog two(u"Topic input"_s, u"Enter channel:"_s, u"Enter new topic:"_s);
  QTest::keyClicks(two.FirstField(), u"#tolv"_s);
  SaveScreenshot(two, u"prompt_two_lines.png"_s);
  ListPromptDialog list(
      u"Remove favorite"_s, u"Choose the sentence to remove:"_s,
      {u"Hello everybody!"_s, u"brb, the tram is here"_s, u"good night all"_s,
       u"Has anyone tried the new release on a phone with a really small screen?"_s},
      u"Remove"_s);
  list.List()->setCurrentRow(1);
  SaveScreenshot(list, u"prompt_list.png"_s);
}

}  // namespace
