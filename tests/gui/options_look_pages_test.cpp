// The View, Screen and Sounds pages and "Select color": every control changed, then the
// values compared as they stand in settings.reg; and each page on pocket screens.

#include "client/client_context.h"
#include "gui/colour_picker_dialog.h"
#include "gui/options_page.h"
#include "gui/shell_window.h"
#include "settings/colour_palette.h"
#include "settings/settings_defaults.h"
#include "settings/settings_store.h"
#include "support/file_bytes.h"
#include "support/test_app.h"
#include "views/screen_metrics.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QFontDatabase>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QRadioButton>
#include <QScrollArea>
#include <QSlider>
#include <QTemporaryDir>
#include <QTest>
#include <QToolButton>
#include <QTreeWidget>
#include <gtest/gtest.h>

#include <memory>

using namespace Qt::StringLiterals;

namespace {

class RecordingShell : public WindowShell {
 public:
  void PlaySound(const QString& file) override { played << file; }
  QStringList played;
};

class LookPages : public testing::Test {
 protected:
  LookPages() {
    InitialiseDefaults(settings);
    for (const char* name : {"a.bmp", "b.png", "part.wav", "ZAP.WAV", "notes.txt"}) WriteBytes(Home(name), "x");
    QDir(home.path()).mkdir(u"dir.wav"_s);  // a folder is not a sound
  }
  QString Home(const char* name) const { return home.path() + u'/' + QString::fromLatin1(name); }
  std::unique_ptr<OptionsPage> Make(OptionsPage* (*make)(const OptionsPageEnv&, QWidget*), int factor = 1) {
    std::unique_ptr<OptionsPage> page(make(OptionsPageEnv{ctx, shell, factor}, nullptr));
    page->Load();
    return page;
  }
  // The lines of settings.reg that hold these values, in file order.
  QStringList RegLines(const QStringList& names) const {
    QStringList found;
    for (const QString& line : QString::fromUtf8(ReadBytes(settings.FilePath())).split(u'\n'))
      for (const QString& name : names)
        if (line.startsWith(u'"' + name + u"\"="_s)) found << line;
    return found;
  }

  QTemporaryDir home;
  SettingsStore settings{home.path()};
  RecordingShell shell;
  ClientContext ctx{settings, shell};
};

void Choose(QComboBox* combo, const QString& text) {
  const int at = combo->findText(text);
  ASSERT_GE(at, 0) << text.toStdString();
  combo->setCurrentIndex(at);
  emit combo->activated(at);
}

void TapRow(QListWidget* list, int row) {
  QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, list->visualItemRect(list->item(row)).center());
}

TEST_F(LookPages, ScreenPageWritesEveryControl) {
  settings.SetString(u"bmpfile", u"gone.bmp"_s, 500);
  auto page = Make(MakeScreenPage);
  auto* file = page->findChild<QComboBox*>();
  EXPECT_EQ(file->currentText(), u"a.bmp"_s);  // the stored file is gone: the first
  EXPECT_EQ(file->count(), 2);
  EXPECT_FALSE(file->isEnabled());
  page->findChild<QCheckBox*>()->click();
  file->setCurrentIndex(1);
  auto* blend = page->findChild<QSlider*>();
  EXPECT_EQ(blend->value(), 6);
  blend->setValue(3);
  EXPECT_TRUE(page->findChild<QLabel*>()->text() == u"Blend: 30%"_s);
  const QList<QRadioButton*> radios = page->findChildren<QRadioButton*>();  // QVGA, Real-VGA
  EXPECT_TRUE(radios.at(0)->isChecked());
  radios.at(1)->click();
  page->Save();
  EXPECT_EQ(RegLines({u"bmp"_s, u"bmpfile"_s, u"VGA"_s, u"bmpblend"_s}),
            (QStringList{u"\"bmp\"=dword:00000001"_s, u"\"bmpfile\"=\"b.png\""_s,
                         u"\"VGA\"=dword:00000001"_s, u"\"bmpblend\"=dword:00000003"_s}));
  page->findChild<QCheckBox*>()->click();
  radios.at(0)->click();
  blend->setValue(0);
  page->Save();
  EXPECT_EQ(RegLines({u"bmp"_s, u"VGA"_s, u"bmpblend"_s}),
            (QStringList{u"\"bmp\"=dword:00000000"_s, u"\"VGA\"=dword:00000000"_s, u"\"bmpblend\"=dword:00000000"_s}));
}

TEST_F(LookPages, SoundsPageWritesTheRowsAndPlaysWhileSoundsAreOff) {
  settings.SetDword(u"snd_enable", 0);
  auto page = Make(MakeSoundsPage);
  auto* rows = page->findChild<QTreeWidget*>(u"events"_s);
  auto* sound = page->findChild<QComboBox*>(u"sound"_s);
  ASSERT_EQ(rows->topLevelItemCount(), 13);
  EXPECT_EQ(rows->topLevelItem(12)->text(0), u"Devoice"_s);
  EXPECT_EQ(sound->count(), 3);  // the empty entry, part.wav, ZAP.WAV
  rows->setCurrentItem(rows->topLevelItem(1));
  EXPECT_EQ(sound->currentText(), u"part.wav"_s);
  Choose(sound, u"ZAP.WAV"_s);
  page->findChild<QPushButton*>(u"play"_s)->click();
  rows->setCurrentItem(rows->topLevelItem(0));
  EXPECT_EQ(sound->currentText(), QString());  // join.wav is not in the folder
  page->findChild<QPushButton*>(u"play"_s)->click();
  EXPECT_EQ(shell.played, QStringList{Home("ZAP.WAV")});
  Choose(sound, u"ZAP.WAV"_s);
  rows->setCurrentItem(rows->topLevelItem(4));
  Choose(sound, QString());
  for (QCheckBox* box : page->findChildren<QCheckBox*>()) box->click();
  page->Save();
  EXPECT_EQ(RegLines({u"snd_enable"_s, u"desk_notify"_s, u"join"_s, u"part"_s, u"notice"_s, u"ping"_s}),
            (QStringList{u"\"snd_enable\"=dword:00000001"_s, u"\"desk_notify\"=dword:00000000"_s, u"\"join\"=\"ZAP.WAV\""_s,
                         u"\"part\"=\"ZAP.WAV\""_s, u"\"notice\"=\"\""_s, u"\"ping\"=\"ping.wav\""_s}));
}

TEST_F(LookPages, ViewPageWritesColoursFacesAndSizes) {
  const QStringList families = QFontDatabase::families();
  settings.SetString(u"TextFontName"_s, u"No Such Face"_s, 35);
  settings.SetBinary(u"mColors", DefaultMircPalette().replace(16, 3, "\x01\x02\x03", 3));  // the user's red
  auto page = Make(MakeViewPage);
  page->show();
  auto* face = page->findChild<QComboBox*>(u"fontName"_s);
  EXPECT_EQ(face->currentText(), u"Tahoma"_s);
  auto* list = page->findChild<QListWidget*>(u"colourList"_s);
  ASSERT_EQ(list->count(), 21);

  TapRow(list, 3);  // Join: tap the red column's top cell, then the strip's first shade
  auto* picker = page->findChild<ColourPickerDialog*>();
  ASSERT_NE(picker, nullptr);
  EXPECT_EQ(picker->windowTitle(), u"Select color"_s);
  QTest::mouseClick(picker->BigPalette(), Qt::LeftButton, {}, QPoint(3, 3));
  QTest::mouseClick(picker->ShadeStrip(), Qt::LeftButton, {}, QPoint(3, 8 * 8 + 3));
  EXPECT_EQ(picker->ChannelField(0)->text(), u"224"_s);
  picker->ChannelField(1)->clear();
  QTest::keyClicks(picker->ChannelField(1), u"16"_s);
  EXPECT_EQ(picker->NewColour(), 0x0010e0u);
  picker->OkButton()->click();
  EXPECT_TRUE(RunUntil([&] { return !page->findChild<ColourPickerDialog*>(); }, 2000));

  TapRow(list, 14);  // Quit: a choice, then Cancel
  picker = page->findChild<ColourPickerDialog*>();
  ASSERT_NE(picker, nullptr);
  QTest::mouseClick(picker->ShadeStrip(), Qt::LeftButton, {}, QPoint(3, 3));
  picker->CancelButton()->click();
  EXPECT_TRUE(RunUntil([&] { return !page->findChild<ColourPickerDialog*>(); }, 2000));

  list->setCurrentRow(20);  // Input color from the bar's fifth colour
  page->findChild<QWidget*>(u"colourBar"_s)->findChildren<QToolButton*>().at(4)->click();

  auto* element = page->findChild<QComboBox*>(u"element"_s);
  auto* size = page->findChild<QComboBox*>(u"fontSize"_s);
  Choose(face, families.first());
  Choose(size, u"11"_s);
  element->setCurrentIndex(1);  // List
  Choose(face, families.last());
  Choose(size, u"20"_s);
  EXPECT_EQ(page->findChild<QLabel*>(u"sample"_s)->font().pixelSize(), 20);
  Choose(page->findChild<QComboBox*>(u"txtCol"_s), u"#0000FF"_s);
  Choose(page->findChild<QComboBox*>(u"bgCol"_s), u"#FFFFFF"_s);
  element->setCurrentIndex(2);  // Input line
  EXPECT_FALSE(size->isEnabled());
  EXPECT_EQ(size->currentText(), u"13"_s);
  page->Save();
  const QByteArray colours = DefaultViewColours()  // entries 1, 2, 3 and 10 (Join) changed
      .replace(4, 3, "\x01\x02\x03", 3).replace(8, 3, "\xff\xff\xff", 3).replace(12, 3, "\x00\x00\xff", 3)
      .replace(40, 3, "\xe0\x10\x00", 3);
  const QString kolory = u"\"kolory\"=hex:"_s + QString::fromLatin1(colours.toHex(','));
  const auto quoted = [](const QString& text) { return u'"' + text + u'"'; };
  EXPECT_EQ(RegLines({u"kolory"_s, u"FontSize"_s, u"TextFontName"_s, u"ListFontName"_s, u"EditFontName"_s}),
            (QStringList{kolory, u"\"FontSize\"=dword:00000090"_s,
                         u"\"TextFontName\"="_s + quoted(families.first()),
                         u"\"ListFontName\"="_s + quoted(families.last()), u"\"EditFontName\"=\"Tahoma\""_s}));

  page->findChild<QPushButton*>(u"default"_s)->click();
  page->Save();
  EXPECT_EQ(RegLines({u"kolory"_s, u"FontSize"_s, u"TextFontName"_s}),
            (QStringList{u"\"kolory\"=hex:"_s + QString::fromLatin1(DefaultViewColours().toHex(',')),
                         u"\"FontSize\"=dword:00000022"_s, u"\"TextFontName\"=\"Tahoma\""_s}));
}

// Nothing wider than the screen (pages scroll down, never sideways); pictures to look at.
TEST_F(LookPages, FitPocketScreens) {
  QDir().mkpath(QStringLiteral(TOLV_SCREENSHOT_DIR));
  const std::pair<const char*, OptionsPage* (*)(const OptionsPageEnv&, QWidget*)> pages[] = {
      {"view", MakeViewPage}, {"screen", MakeScreenPage}, {"sounds", MakeSoundsPage}};
  for (const QSize screen : {QSize(240, 320), QSize(320, 240), QSize(480, 640)}) {
    const int factor = ScreenFactor(screen.width(), screen.height());
    const QString suffix = u"_%1x%2.png"_s.arg(screen.width()).arg(screen.height());
    for (const auto& [name, make] : pages) {
      QScrollArea area;  // as the dialog holds its pages
      area.setWidgetResizable(true);
      area.setWidget(Make(make, factor).release());
      area.resize(screen);
      area.show();
      QCoreApplication::processEvents();
      EXPECT_LE(area.widget()->minimumSizeHint().width(), screen.width()) << name << " at " << screen.width();
      const QString file = QStringLiteral(TOLV_SCREENSHOT_DIR "/options_") + QString::fromLatin1(name);
      area.grab().save(file + suffix);
      area.widget()->grab().save(file + u"_whole"_s + suffix);  // below the fold too
    }
    QWidget window;
    window.resize(screen);
    ColourPickerDialog picker(ColourRef(200, 40, 90), factor, &window);
    picker.show();
    QCoreApplication::processEvents();
    EXPECT_TRUE(QRect(QPoint(), screen).contains(picker.rect())) << screen.width();
    picker.grab().save(QStringLiteral(TOLV_SCREENSHOT_DIR "/colour_picker") + suffix);
  }
}

}  // namespace
