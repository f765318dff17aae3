// The dictionary as the client runs it: made ready at start (with its backup when asked),
// taught by sent lines when "Self-teaching" is on, flushed and restored only on Yes.

#include "commands/submit_input.h"
#include "settings/settings_flags.h"
#include "support/file_bytes.h"
#include "support/irc_client_fixture.h"
#include "whispers/whisper_actions.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

class WhisperActionsTest : public ::testing::Test, public IrcClientFixture {
 protected:
  QByteArray File() const {
    ctx.whispers.WaitForWrites();
    return ReadBytes(ctx.whispers.FilePath());
  }
  QByteArray Backup() const { return ReadBytes(ctx.whispers.BackupPath()); }
  QStringList Completions(const QString& word) { return ctx.whispers.FindCompletions(word, 15).words; }
};

TEST_F(WhisperActionsTest, StartBacksUpOnlyWhenAskedThenSeeds) {
  WriteBytes(ctx.whispers.FilePath(), QByteArray(1024, '\0'));
  StartWhispers(ctx);
  EXPECT_EQ(Backup(), "<unreadable>");
  EXPECT_EQ(File().size(), 1484);
  SetFlag(settings, u"Files", kWhispersBackup, true);
  ctx.whispers.TeachWord(u"/later"_s);
  const QByteArray taught = File();
  StartWhispers(ctx);
  EXPECT_EQ(Backup(), taught);
}

TEST_F(WhisperActionsTest, SentLinesTeachOnlyWithSelfTeaching) {
  StartWhispers(ctx);
  ctx.tabs.OpenTab(u"#x", TabKind::Channel);
  ctx.tabs.ActivateTab(1);
  SubmitInputText(ctx, u"hello whisperers"_s);
  EXPECT_EQ(Completions(u"whisp"_s), QStringList());
  SetFlag(settings, u"Files", kWhispersTeach, true);
  SubmitInputText(ctx, u"hello whisperers"_s);
  SubmitInputText(ctx, u"/topic #x whispering"_s);
  EXPECT_EQ(Completions(u"whisp"_s), (QStringList{u"whispering"_s, u"whisperers"_s}));
}

TEST_F(WhisperActionsTest, FlushAndPreviousActOnlyOnYes) {
  StartWhispers(ctx);
  ctx.whispers.BackupDictionary();
  const QByteArray seeded = File();
  ctx.whispers.TeachWord(u"/kept"_s);
  const QByteArray taught = File();
  shell.yesNoAnswers = {false, false, true, true};
  AskAndFlushWhispers(ctx);
  AskAndRestoreWhispers(ctx);
  EXPECT_EQ(File(), taught);
  AskAndFlushWhispers(ctx);
  EXPECT_EQ(File(), seeded);
  ctx.whispers.TeachWord(u"/again"_s);
  AskAndRestoreWhispers(ctx);
  EXPECT_EQ(File(), seeded);
  EXPECT_EQ(shell.questions, (QList<FakeShell::Message>{{u"Warning"_s, u"Erase current whispers?"_s},
                                                        {u"Warning"_s, u"Restore previous whispers?"_s},
                                                        {u"Warning"_s, u"Erase current whispers?"_s},
                                                        {u"Warning"_s, u"Restore previous whispers?"_s}}));
}

TEST_F(WhisperActionsTest, ADamagedFileIsToldOnStatusOnce) {
  WriteBytes(ctx.whispers.FilePath(), QByteArray(1030, '\0'));
  StartWhispers(ctx);
  ctx.whispers.FindCompletions(u"/"_s, 2);
  EXPECT_EQ(StatusLines(), QStringList{u"* The whispers dictionary "_s + ctx.whispers.FilePath() +
                                       u" is damaged and left alone until it is flushed, or deleted before the next start"_s});
  EXPECT_EQ(ctx.tabs.At(0)->lines->Line(0).colour, ctx.Colour(LineStyle::Info));
}

}  // namespace
