// The window's shell answers the core's questions with real modal dialogs. The tests
// answer them as a user would, through the hook that sees each dialog before it runs.

#include "gui/prompt_dialog.h"
#include "gui/shell_window.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QLineEdit>
#include <QListWidget>
#include <QMessageBox>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <QtEndian>
#include <gtest/gtest.h>

#include <condition_variable>
#include <cstdio>
#include <functional>
#include <mutex>
#include <thread>

using namespace Qt::StringLiterals;

namespace {

// Clicks a button the way a finger would; a greyed one ignores the click. Whatever is
// still open afterwards is cancelled, so that a failure does not hang the run.
void Press(QDialog* dialog, const QStringList& texts) {
  for (const QString& text : texts) {
    QPushButton* found = nullptr;
    for (QPushButton* button : dialog->findChildren<QPushButton*>())
      if (button->text() == text) found = button;
    EXPECT_NE(found, nullptr) << text.toStdString();
    if (found) QTest::mouseClick(found, Qt::LeftButton);
  }
  if (dialog->isVisible()) dialog->reject();
}

// Runs `answer` on each dialog once its modal loop has started; keeps its title.
void Script(WindowShell& shell, QString& title, std::function<void(QDialog*)> answer) {
  shell.SetBeforeExecHook([&title, answer](QDialog* dialog) {
    title = dialog->windowTitle();
    QTimer::singleShot(0, dialog, [answer, dialog] { answer(dialog); });
  });
}

TEST(WindowShellQuestions, MessageAndYesNoBoxes) {
  WindowShell shell;
  QString title;
  QString text;
  Script(shell, title, [&](QDialog* dialog) {
    text = static_cast<QMessageBox*>(dialog)->text();
    EXPECT_EQ(dialog->findChildren<QPushButton*>().size(), 1);
    Press(dialog, {u"OK"_s});
  });
  shell.ShowMessage(u"ERROR!"_s, u"Can't open help file :-("_s);
  EXPECT_EQ(title, u"ERROR!"_s);
  EXPECT_EQ(text, u"Can't open help file :-("_s);

  const QString question = u"Are you sure you want to reset to default the multicolor palette?"_s;
  Script(shell, title, [](QDialog* dialog) { Press(dialog, {u"Yes"_s}); });
  EXPECT_TRUE(shell.AskYesNo(u"MultiColors Reset"_s, question));
  EXPECT_EQ(title, u"MultiColors Reset"_s);
  Script(shell, title, [](QDialog* dialog) { Press(dialog, {u"No"_s}); });
  EXPECT_FALSE(shell.AskYesNo(u"MultiColors Reset"_s, question));
  Script(shell, title, [](QDialog* dialog) { QTest::keyClick(dialog, Qt::Key_Escape); });
  EXPECT_FALSE(shell.AskYesNo(u"MultiColors Reset"_s, question));
}

struct TextCase {
  const char* name;
  QString initial;
  EmptyAnswer empty;
  QString typed;
  QStringList pressed;
  std::optional<QString> expected;
};

class WindowShellTextTest : public ::testing::TestWithParam<TextCase> {};

TEST_P(WindowShellTextTest, ReturnsTheTextOrNothing) {
  const TextCase& c = GetParam();
  WindowShell shell;
  QString title;
  Script(shell, title, [&](QDialog* dialog) {
    QTest::keyClicks(qobject_cast<OneLinePromptDialog*>(dialog)->Field(), c.typed);
    Press(dialog, c.pressed);
  });
  EXPECT_EQ(shell.AskText(u"Quit IRC"_s, u"Enter a quit message:"_s, c.initial, c.empty),
            c.expected);
  EXPECT_EQ(title, u"Quit IRC"_s);
}

INSTANTIATE_TEST_SUITE_P(
    Cases, WindowShellTextTest,
    ::testing::Values(
        TextCase{"Typed", {}, EmptyAnswer::Refused, u"#tolv"_s, {u"OK"_s}, u"#tolv"_s},
        TextCase{"InitialKept", u"bye"_s, EmptyAnswer::Refused, {}, {u"OK"_s}, u"bye"_s},
        TextCase{"QuitWithoutText", {}, EmptyAnswer::Allowed, {}, {u"OK"_s}, u""_s},
        TextCase{"GreyedOkIgnored", {}, EmptyAnswer::Refused, {}, {u"OK"_s}, std::nullopt},
        TextCase{"Cancelled", {}, EmptyAnswer::Refused, u"#tolv"_s, {u"Cancel"_s},
                 std::nullopt}),
    [](const auto& info) { return std::string(info.param.name); });

TEST(WindowShellPrompts, TwoTextsAndListAnswers) {
  WindowShell shell;
  QString title;
  auto fill = [](QDialog* dialog, const QString& button) {
    auto* prompt = qobject_cast<TwoLinePromptDialog*>(dialog);
    QTest::keyClicks(prompt->FirstField(), u"#tolv"_s);
    QTest::keyClicks(prompt->SecondField(), u"spammer"_s);
    Press(dialog, {button});
  };
  Script(shell, title, [&](QDialog* dialog) { fill(dialog, u"OK"_s); });
  EXPECT_EQ(shell.AskTwoTexts(u"Kick input"_s, u"Enter channel:"_s, u"Enter nickname:"_s),
            std::pair(u"#tolv"_s, u"spammer"_s));
  EXPECT_EQ(title, u"Kick input"_s);
  Script(shell, title, [&](QDialog* dialog) { fill(dialog, u"Cancel"_s); });
  EXPECT_EQ(shell.AskTwoTexts(u"Kick input"_s, u"Enter channel:"_s, u"Enter nickname:"_s),
            std::nullopt);

  const QStringList entries{u"hello"_s, u"brb"_s, u"bye"_s};
  auto pick = [](QDialog* dialog, const QString& button) {
    auto* prompt = qobject_cast<ListPromptDialog*>(dialog);
    QTest::mouseClick(prompt->AcceptButton(), Qt::LeftButton);  // nothing chosen: greyed
    prompt->List()->setCurrentRow(2);
    Press(prompt, {button});
  };
  Script(shell, title, [&](QDialog* dialog) { pick(dialog, u"Remove"_s); });
  EXPECT_EQ(shell.PickFromList(u"Favorites"_s, u"Choose:"_s, entries, u"Remove"_s), 2);
  Script(shell, title, [&](QDialog* dialog) { pick(dialog, u"Cancel"_s); });
  EXPECT_EQ(shell.PickFromList(u"Favorites"_s, u"Choose:"_s, entries, u"Remove"_s),
            std::nullopt);
}

template <typename T>
QByteArray Le(T value) {
  value = qToLittleEndian(value);
  return QByteArray(reinterpret_cast<const char*>(&value), sizeof value);
}

QByteArray Le32(quint32 value) { return Le(value); }

QByteArray Chunk(const QByteArray& id, const QByteArray& body) {
  return id + Le32(quint32(body.size())) + body + QByteArray(body.size() & 1, '\0');
}

// Mono at 22050 Hz.
QByteArray Fmt(quint16 encoding, quint16 bits) {
  return Chunk("fmt ", Le(encoding) + Le(quint16(1)) + Le(quint32(22050)) +
                           Le(quint32(22050 * bits / 8)) + Le(quint16(bits / 8)) + Le(bits));
}

QByteArray Riff(const QByteArray& chunks) {
  return "RIFF" + Le32(quint32(chunks.size() + 4)) + "WAVE" + chunks;
}

const QByteArray kPcm = Fmt(1, 16);
const QByteArray kSamples = Chunk("data", QByteArray(8, '\x80'));

struct WaveCase {
  const char* name;
  QByteArray bytes;
  bool playable;
};

class WaveCheckTest : public ::testing::TestWithParam<WaveCase> {};

TEST_P(WaveCheckTest, RefusesWhatTheLoaderCannotFinish) {
  QTemporaryDir dir;
  QFile file(dir.filePath(u"sound.wav"_s));
  ASSERT_TRUE(file.open(QIODevice::WriteOnly));
  file.write(GetParam().bytes);
  file.close();
  EXPECT_EQ(IsPlayableWave(file.fileName()), GetParam().playable);
}

INSTANTIATE_TEST_SUITE_P(
    Files, WaveCheckTest,
    ::testing::Values(
        WaveCase{"Plain", Riff(kPcm + kSamples), true},
        WaveCase{"EightBit", Riff(Fmt(1, 8) + kSamples), true},
        WaveCase{"PaddedChunkFirst", Riff(Chunk("LIST", "INFOabc") + kPcm + kSamples), true},
        WaveCase{"NotWave", "RIFF" + Le32(4) + "AVI ", false},
        WaveCase{"FormatCutShort", Riff("fmt " + Le32(40) + kPcm.mid(8)), false},
        WaveCase{"Float", Riff(Fmt(3, 32) + kSamples), false},
        WaveCase{"TwelveBits", Riff(Fmt(1, 12) + kSamples), false},
        WaveCase{"NoData", Riff(kPcm), false},
        WaveCase{"StrayBytesInsteadOfData", Riff(kPcm + "dat"), false},
        WaveCase{"DataBeforeFormat", Riff(kSamples + kPcm), false},
        WaveCase{"SamplesCutShort", Riff(kPcm + "data" + Le32(4000) + QByteArray(8, 0)), false},
        WaveCase{"EmptyData", Riff(kPcm + Chunk("data", {})), false}),
    [](const auto& info) { return std::string(info.param.name); });

// A stuck sound would freeze the window for good; here it ends the run instead.
class Watchdog {
 public:
  explicit Watchdog(int seconds) : thread_([this, seconds] {
    std::unique_lock lock(mutex_);
    if (!over_.wait_for(lock, std::chrono::seconds(seconds), [this] { return done_; })) {
      std::fputs("playing a sound blocked the window\n", stderr);
      std::abort();
    }
  }) {}
  ~Watchdog() {
    {
      std::lock_guard lock(mutex_);
      done_ = true;
    }
    over_.notify_one();
    thread_.join();
  }

 private:
  std::mutex mutex_;
  std::condition_variable over_;
  bool done_ = false;
  std::thread thread_;
};

// There is no audio device here: nothing may be heard, shown, or wait for ever.
TEST(WindowShellSounds, UnplayableSoundsAreSilent) {
  Watchdog watchdog(30);
  QTemporaryDir dir;
  const QString join = QStringLiteral(TOLV_DATA_DIR "/join.wav");
  WindowShell shell;
  shell.PlaySound(dir.filePath(u"missing.wav"_s));
  shell.PlaySound(dir.path());
  for (const QByteArray& bytes : {Riff("fmt " + Le32(40) + kPcm.mid(8)),
                                  Riff(kPcm + "data" + Le32(4000) + QByteArray(8, 0))}) {
    QFile broken(dir.filePath(u"broken.wav"_s));
    ASSERT_TRUE(broken.open(QIODevice::WriteOnly | QIODevice::Truncate));
    broken.write(bytes);
    broken.close();
    shell.PlaySound(broken.fileName());
    shell.PlaySound(join);  // a new source for the same player
  }
  for (int i = 0; i < 8; ++i) shell.PlaySound(join);  // more than there are players
  QElapsedTimer clock;
  clock.start();
  while (clock.elapsed() < 300) QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
  shell.PlaySound(QStringLiteral(TOLV_DATA_DIR "/quit.wav"));
  for (QWidget* window : QApplication::topLevelWidgets()) EXPECT_FALSE(window->isVisible());
}

TEST(WindowShellBusy, WaitCursorIsBalanced) {
  ASSERT_EQ(QGuiApplication::overrideCursor(), nullptr);
  {
    WindowShell shell;
    shell.SetBusy(true);
    shell.SetBusy(true);
    ASSERT_NE(QGuiApplication::overrideCursor(), nullptr);
    EXPECT_EQ(QGuiApplication::overrideCursor()->shape(), Qt::WaitCursor);
    shell.SetBusy(false);
    EXPECT_EQ(QGuiApplication::overrideCursor(), nullptr);
    QGuiApplication::setOverrideCursor(Qt::IBeamCursor);
    shell.SetBusy(false);  // a second "not busy" must not take someone else's cursor
    EXPECT_EQ(QGuiApplication::overrideCursor()->shape(), Qt::IBeamCursor);
    QGuiApplication::restoreOverrideCursor();
    shell.SetBusy(true);
  }  // gone while busy: the wait cursor goes with it
  EXPECT_EQ(QGuiApplication::overrideCursor(), nullptr);
}

}  // namespace
