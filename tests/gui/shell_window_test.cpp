// The window's shell: real modal dialogs, answered as a user would, and its sounds.

#include "gui/shell_window.h"

#include <QDialog>
#include <QFile>
#include <QLineEdit>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <QtEndian>
#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

// A greyed OK ignores the click (no text where one is needed); fields stop at 250.
TEST(WindowShell, OkConfirmsOnlyAUsableAnswer) {
  WindowShell shell;
  QStringList typed;
  shell.SetBeforeExecHook([&](QDialog* dialog) {
    QTimer::singleShot(0, dialog, [&, dialog] {
      const QList<QLineEdit*> fields = dialog->findChildren<QLineEdit*>();
      for (qsizetype i = 0; i < fields.size() && i < typed.size(); ++i) QTest::keyClicks(fields[i], typed[i]);
      for (QPushButton* button : dialog->findChildren<QPushButton*>())
        if (button->text() == u"OK"_s) QTest::mouseClick(button, Qt::LeftButton);
      if (dialog->isVisible()) dialog->reject();
    });
  });
  const auto ask = [&](EmptyAnswer empty) { return shell.AskText(u"Quit IRC"_s, u"Enter a quit message:"_s, {}, empty); };
  EXPECT_EQ(ask(EmptyAnswer::Refused), std::nullopt);
  EXPECT_EQ(ask(EmptyAnswer::Allowed), u""_s);
  typed = {QString(260, u'x')};
  EXPECT_EQ(ask(EmptyAnswer::Refused), QString(250, u'x'));
  const auto askTwo = [&] { return shell.AskTwoTexts(u"Kick input"_s, u"Enter channel:"_s, u"Enter nickname:"_s); };
  typed = {u"#tolv"_s};
  EXPECT_EQ(askTwo(), std::nullopt);
  typed = {u"#tolv"_s, u"spammer"_s};
  EXPECT_EQ(askTwo(), std::pair(u"#tolv"_s, u"spammer"_s));
}

QByteArray Le(quint32 value, int bytes = 4) {
  value = qToLittleEndian(value);
  return QByteArray(reinterpret_cast<const char*>(&value), bytes);
}
QByteArray Chunk(const QByteArray& id, const QByteArray& body) {
  return id + Le(body.size()) + body + QByteArray(body.size() & 1, '\0');
}
QByteArray Fmt(quint32 encoding, quint32 bits) {  // mono at 22050 Hz
  return Chunk("fmt ", Le(encoding, 2) + Le(1, 2) + Le(22050) + Le(22050 * bits / 8) + Le(bits / 8, 2) + Le(bits, 2));
}
QByteArray Riff(const QByteArray& chunks) { return "RIFF" + Le(chunks.size() + 4) + "WAVE" + chunks; }

// What the sound loader could not finish would block the window: it stays silent.
TEST(WindowShell, OnlyWholePcmWavesArePlayable) {
  const QByteArray pcm = Fmt(1, 16), samples = Chunk("data", QByteArray(8, '\x80'));
  const std::pair<QByteArray, bool> cases[] = {
      {Riff(pcm + samples), true}, {Riff(Fmt(1, 8) + samples), true},
      {Riff(Chunk("LIST", "INFOabc") + pcm + samples), true},  // a padded chunk first
      {"RIFF" + Le(4) + "AVI ", false}, {Riff("fmt " + Le(40) + pcm.mid(8)), false},  // the format cut short
      {Riff(Fmt(3, 32) + samples), false}, {Riff(Fmt(1, 12) + samples), false}, {Riff(pcm + "dat"), false},
      {Riff(samples + pcm), false}, {Riff(pcm + "data" + Le(4000) + QByteArray(8, 0)), false},  // samples cut short
      {Riff(pcm + Chunk("data", {})), false},
  };
  QTemporaryDir dir;
  for (const auto& [bytes, playable] : cases) {
    QFile file(dir.filePath(u"sound.wav"_s));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
    file.write(bytes);
    file.close();
    EXPECT_EQ(IsPlayableWave(file.fileName()), playable) << bytes.toHex().toStdString();
  }
}

}  // namespace
