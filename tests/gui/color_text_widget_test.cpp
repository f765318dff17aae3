#include "gui/color_text_widget.h"

#include <QClipboard>
#include <QContextMenuEvent>
#include <QDir>
#include <QFontMetricsF>
#include <QGuiApplication>
#include <QImage>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <optional>

#include "settings/settings_defaults.h"
#include "settings/settings_store.h"
#include "views/output_path.h"
#include "views/tab_bar.h"

using namespace Qt::StringLiterals;

namespace {

QFont TestFont() {
  QFont font(u"DejaVu Sans"_s);
  font.setPixelSize(20);
  return font;
}

QString Describe(QColor c) {
  return u"(%1, %2, %3)"_s.arg(c.red()).arg(c.green()).arg(c.blue());
}

// Antialiased glyph edges blend into the cell, so ink is "close", not equal.
bool Near(QColor a, QColor b, int tolerance) {
  return std::abs(a.red() - b.red()) <= tolerance &&
         std::abs(a.green() - b.green()) <= tolerance &&
         std::abs(a.blue() - b.blue()) <= tolerance;
}

class ColorTextWidgetTest : public ::testing::Test {
 protected:
  ColorTextWidgetTest() {
    InitialiseDefaults(store);
    store.SetDword(u"tstamps", 0);
    bar.OpenTab(u"Status", TabKind::Status);
    bar.ActivateTab(0);
  }

  ColorTextWidget& MakeView(QSize size = {260, 200}) {
    view = std::make_unique<ColorTextWidget>(bar, bar.At(0)->id, store);
    view->SetTextFont(TestFont());
    view->resize(size);
    view->show();
    EXPECT_TRUE(QTest::qWaitForWindowExposed(view.get()));
    return *view;
  }
  void Print(QStringView text, quint32 colour = 0) { PrintToTab(bar, 0, text, colour); }
  // Long enough for the view's once-a-frame repaint to come round.
  void Settle() { QTest::qWait(60); }
  const LineStore& Lines() const { return *bar.At(0)->lines; }
  QImage Shot() const { return view->viewport()->grab().toImage(); }
  QWidget* Area() const { return view->viewport(); }
  qreal Advance(QStringView text) const {
    return QFontMetricsF(view->TextFont()).horizontalAdvance(text.toString());
  }
  // A point on row `row` of the page, just right of the first `chars` characters.
  QPoint At(int row, QStringView chars) const {
    return {int(std::ceil(view->LeftMargin() + Advance(chars))),
            row * view->RowHeight() + view->RowHeight() / 2};
  }
  QPoint RowEnd(int row) const { return {Area()->width() - 1, At(row, u"").y()}; }
  void Drag(QPoint from, QPoint to) {
    QTest::mousePress(Area(), Qt::LeftButton, {}, from);
    QTest::mouseMove(Area(), (from + to) / 2);
    QTest::mouseMove(Area(), to);
    QTest::mouseRelease(Area(), Qt::LeftButton, {}, to);
  }
  QString Clipboard() const { return QGuiApplication::clipboard()->text(); }

  QTemporaryDir dir;
  SettingsStore store{dir.path()};
  TabBar bar{store};
  std::unique_ptr<ColorTextWidget> view;  // last: goes before the tab bar
};

// Each row of a line is selected from its left edge to the view's right edge; the copy is
// exactly that row, so the row ends are where the view wrapped.
TEST_F(ColorTextWidgetTest, RowsWrapAtTheWidthWithTheFontsMetrics) {
  MakeView();
  const qreal available = Area()->width() - view->LeftMargin();
  const qreal m = Advance(u"m");
  const int fit = int(available / m);  // of "m" in one row
  ASSERT_GT(fit, 8);
  const auto ms = [](qsizetype n) { return QString(n, u'm'); };
  // "mm " and then as many "m" as fit: the row would be under half full, so the long
  // word is split rather than carried.
  const int afterShort = int((available - Advance(u"mm ")) / m);
  struct Case {
    const char* what;
    QString line;
    QStringList rows;
  };
  const Case cases[] = {
      {"long word split at the edge", ms(2 * fit + 3), {ms(fit), ms(fit), ms(3)}},
      {"short word carried", ms(fit - 3) + u" mmmmm"_s, {ms(fit - 3) + u" "_s, u"mmmmm"_s}},
      {"word split when the row stays under half full", u"mm "_s + ms(fit),
       {u"mm "_s + ms(afterShort), ms(fit - afterShort)}},
      {"bold measured in bold", u"\x02"_s + ms(2 * fit), {}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    bar.ClearLines(0);
    Print(c.line);
    Settle();
    if (c.rows.isEmpty()) {  // bold "m" is wider: more than two rows
      EXPECT_GT(Lines().RowCount(), 2);
      continue;
    }
    ASSERT_EQ(Lines().RowCount(), c.rows.size());
    for (int row = 0; row < c.rows.size(); ++row) {
      Drag({0, At(row, u"").y()}, RowEnd(row));
      EXPECT_EQ(Clipboard(), c.rows[row]) << "row " << row;
    }
  }
}

// A cell is the run's box on row 0: most of it is the cell background, and somewhere in
// it the glyphs show in the ink colour. Colour 2 is the user's own (0, 0, 100).
TEST_F(ColorTextWidgetTest, RunsPaintTheirColoursAndBackgrounds) {
  QByteArray palette = DefaultMircPalette();
  palette[2 * 4 + 2] = char(100);
  store.SetBinary(u"mColors", palette);
  MakeView();
  const QColor base = view->palette().color(QPalette::Base);
  struct Case {
    QString line;
    quint32 lineColour;  // 0x00BBGGRR
    QColor ink;
    QColor cell;
  };
  const Case cases[] = {
      {u"\x03" "4,12hello"_s, 0, QColor(255, 0, 0), QColor(0, 0, 255)},
      {u"\x03" "99,2hello"_s, 0, QColor(0, 0, 0), QColor(0, 0, 100)},   // 99 is colour 1
      {u"\x03" "5,99hello"_s, 0, QColor(128, 0, 0), QColor(255, 255, 255)},  // 99 is 0
      {u"\x03" "3hello"_s, 0x00ff00ff, QColor(0, 128, 0), base},
      {u"hello"_s, 0x00800000, QColor(0, 0, 128), base},  // the line's own colour
      {u"\x16hello"_s, 0x0000ff00, base, QColor(0, 255, 0)},  // reverse on no background
      {u"\x03" "4,12\x16hello"_s, 0, QColor(0, 0, 255), QColor(255, 0, 0)},
      {u"\x03" "4,12\x03hello"_s, 0x00800000, QColor(0, 0, 128), base},  // lone code
      {u"\x03" "4,12\x0fhello"_s, 0x00800000, QColor(0, 0, 128), base},  // reset
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.line.toStdString());
    bar.ClearLines(0);
    Print(c.line, c.lineColour);
    Settle();
    const QImage shot = Shot();
    const QRect cell(view->LeftMargin() + 1, 1, int(Advance(u"hello")) - 2,
                     view->RowHeight() - 2);
    int inCell = 0;
    bool inked = false;
    for (int y = cell.top(); y <= cell.bottom(); ++y) {
      for (int x = cell.left(); x <= cell.right(); ++x) {
        const QColor pixel = shot.pixelColor(x, y);
        inCell += pixel == c.cell;
        inked = inked || Near(pixel, c.ink, 80);
      }
    }
    EXPECT_GT(inCell, cell.width() * cell.height() / 2) << Describe(c.cell).toStdString();
    EXPECT_TRUE(inked) << Describe(c.ink).toStdString();
    const QPoint after(cell.right() + 20, view->RowHeight() / 2);
    EXPECT_EQ(shot.pixelColor(after), base) << "the cell ends with the run";
  }
}

TEST_F(ColorTextWidgetTest, DragAcrossLinesCopiesThemJoinedWithoutABreak) {
  MakeView({400, 200});
  Print(u"first line"_s);
  Print(u"\x03" "4,12second\x0f line"_s);
  Print(u"third"_s);
  Settle();
  struct Case {
    QPoint from;
    QPoint to;
    QString copied;
  };
  const Case cases[] = {
      {At(0, u""), RowEnd(1), u"first linesecond line"_s},
      {At(0, u"first "), At(1, u"second"), u"linesecond"_s},
      {At(2, u"th"), At(0, u"first l"), u"inesecond lineth"_s},  // dragged upwards
      {At(1, u"sec"), {RowEnd(1).x(), 180}, u"ond linethird"_s},  // below the text: its end
  };
  for (const Case& c : cases) {
    QGuiApplication::clipboard()->setText(u"before"_s);
    Drag(c.from, c.to);
    EXPECT_EQ(Clipboard(), c.copied);
  }
  // The selection went with the copy: a click selects nothing and copies nothing.
  QGuiApplication::clipboard()->setText(u"kept"_s);
  QTest::mouseClick(Area(), Qt::LeftButton, {}, At(0, u"fi"));
  EXPECT_EQ(Clipboard(), u"kept"_s);
}

TEST_F(ColorTextWidgetTest, SelectionIsHighlightedWhileDragging) {
  MakeView();
  Print(u"some words here"_s);
  Settle();
  const QColor highlight = view->palette().color(QPalette::Highlight);
  const auto highlighted = [&] {
    const QImage shot = Shot();
    int count = 0;
    for (int x = 0; x < shot.width(); ++x) count += shot.pixelColor(x, 2) == highlight;
    return count;
  };
  EXPECT_EQ(highlighted(), 0);
  QTest::mousePress(Area(), Qt::LeftButton, {}, At(0, u""));
  QTest::mouseMove(Area(), At(0, u"some words"));
  EXPECT_NEAR(highlighted(), Advance(u"some words"), 2);
  QTest::mouseRelease(Area(), Qt::LeftButton, {}, At(0, u"some words"));
  EXPECT_EQ(highlighted(), 0);
}

TEST_F(ColorTextWidgetTest, HeldPressOrContextMenuAsksForTheMenuAndCopiesNothing) {
  MakeView();
  Print(u"hold me"_s);
  Settle();
  QSignalSpy menus(view.get(), &ColorTextWidget::menuRequested);
  QGuiApplication::clipboard()->setText(u"untouched"_s);

  const QPoint point = At(0, u"ho");
  QTest::mousePress(Area(), Qt::LeftButton, {}, point);
  QTest::mouseMove(Area(), point + QPoint(2, 1));  // a finger trembles
  EXPECT_TRUE(QTest::qWaitFor([&] { return menus.size() == 1; }, 3000));
  QTest::mouseMove(Area(), At(0, u"hold me"));
  QTest::mouseRelease(Area(), Qt::LeftButton, {}, At(0, u"hold me"));
  EXPECT_EQ(Clipboard(), u"untouched"_s);
  ASSERT_EQ(menus.size(), 1);
  EXPECT_EQ(menus[0][0].toPoint(), Area()->mapToGlobal(point));

  QTest::mouseClick(Area(), Qt::LeftButton, {}, point);  // a tap is no hold
  QTest::qWait(700);
  EXPECT_EQ(menus.size(), 1);

  QContextMenuEvent request(QContextMenuEvent::Mouse, point, QPoint(300, 400));
  QCoreApplication::sendEvent(Area(), &request);
  ASSERT_EQ(menus.size(), 2);
  EXPECT_EQ(menus[1][0].toPoint(), QPoint(300, 400));
  EXPECT_EQ(Clipboard(), u"untouched"_s);
}

// "Scroll On" follows new lines while the last row is in sight: a reader who scrolled up
// keeps the place, and is followed again once back at the end. "Scroll Off" never follows.
TEST_F(ColorTextWidgetTest, NewLinesFollowOnlyFromTheEndWhenFollowing) {
  MakeView();
  for (int i = 0; i < 40; ++i) Print(u"line %1"_s.arg(i));
  Settle();
  QScrollBar* scroll = view->verticalScrollBar();
  ASSERT_EQ(scroll->value(), scroll->maximum());
  ASSERT_GT(scroll->maximum(), 20);
  const int page = scroll->pageStep();

  constexpr int kEnd = -1;
  const struct {
    bool follow;
    int from;
    bool followed;
  } cases[] = {{true, 5, false}, {true, kEnd, true}, {false, kEnd, false}, {false, 5, false}};
  for (const auto& c : cases) {
    SCOPED_TRACE(testing::Message() << c.follow << " from " << c.from);
    if (bar.At(0)->followNewLines != c.follow) bar.SetFollowNewLines(0, c.follow);
    const int from = c.from == kEnd ? scroll->maximum() : c.from;
    scroll->setValue(from);
    for (int i = 0; i < 10; ++i) Print(u"more"_s);
    Settle();
    EXPECT_EQ(scroll->maximum(), Lines().RowCount() - page);
    EXPECT_EQ(scroll->value(), c.followed ? scroll->maximum() : from);
  }
  scroll->setValue(3);
  bar.SetFollowNewLines(0, true);  // turning it on jumps to the end at once
  EXPECT_EQ(scroll->value(), scroll->maximum());
}

TEST_F(ColorTextWidgetTest, ANarrowerViewKeepsTheTopLineInPlace) {
  MakeView({400, 200});
  for (int i = 0; i < 30; ++i)
    Print(u"line %1 with a few words on it"_s.arg(i, 2, 10, QChar(u'0')));
  Settle();
  bar.SetFollowNewLines(0, false);
  view->verticalScrollBar()->setValue(10);
  view->resize(200, 200);
  Settle();
  EXPECT_GT(Lines().RowCount(), 30);  // rows wrap now
  Drag(At(0, u""), At(0, u"line 10"));
  EXPECT_EQ(Clipboard(), u"line 10"_s);
}

TEST_F(ColorTextWidgetTest, ClearLeavesAnEmptyView) {
  MakeView();
  for (int i = 0; i < 40; ++i) Print(u"\x03" "4,12line"_s);
  Settle();
  bar.ClearLines(0);
  Settle();
  EXPECT_EQ(Lines().RowCount(), 0);
  EXPECT_EQ(view->verticalScrollBar()->maximum(), 0);
  EXPECT_EQ(view->verticalScrollBar()->value(), 0);
  const QImage shot = Shot();
  const QColor base = view->palette().color(QPalette::Base);
  int other = 0;
  for (int y = 0; y < shot.height(); ++y)
    for (int x = 0; x < shot.width(); ++x) other += shot.pixelColor(x, y) != base;
  EXPECT_EQ(other, 0);
}

// Printing must not paint: a flood of lines is shown by one paint, not one per line.
TEST_F(ColorTextWidgetTest, AFloodOfLinesIsPaintedOnce) {
  MakeView();
  Settle();
  const int before = view->PaintCount();
  for (int i = 0; i < 5000; ++i) Print(u"<nick> flood line %1"_s.arg(i));
  EXPECT_EQ(view->PaintCount(), before);
  Settle();
  QTest::qWait(50);
  EXPECT_LE(view->PaintCount(), before + 2);
  EXPECT_EQ(view->verticalScrollBar()->value(), view->verticalScrollBar()->maximum());
  Drag(At(view->verticalScrollBar()->pageStep() - 1, u""),
       RowEnd(view->verticalScrollBar()->pageStep() - 1));
  EXPECT_EQ(Clipboard(), u"<nick> flood line 4999"_s);
}

// The picture fills the view behind the text, each byte moved level tenths towards white.
TEST_F(ColorTextWidgetTest, BackgroundPictureIsBlendedTowardsWhite) {
  QImage picture(8, 8, QImage::Format_RGB32);
  picture.fill(QColor(250, 0, 100));
  ASSERT_TRUE(picture.save(dir.filePath(u"back.bmp"_s)));
  store.SetString(u"bmpfile", u"back.bmp", 9);
  struct Case {
    int enabled;
    int level;
    std::optional<QColor> expected;  // nullopt: the view colour
  };
  const Case cases[] = {
      {1, 6, QColor(253, 153, 193)},  // 250 + (5 * 6) / 10, 0 + (255 * 6) / 10, ...
      {1, 0, QColor(250, 0, 100)},
      {1, 10, QColor(255, 255, 255)},
      {0, 6, std::nullopt},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.level);
    store.SetDword(u"bmp", c.enabled);
    store.SetDword(u"bmpblend", c.level);
    MakeView();
    Print(u"text on top"_s);
    Settle();
    const QImage shot = Shot();
    const QColor expected = c.expected.value_or(view->palette().color(QPalette::Base));
    EXPECT_EQ(shot.pixelColor(shot.width() - 3, shot.height() - 3), expected);
  }
}

// The line store keeps measuring with the view; neither may outlive the other unsafely.
TEST_F(ColorTextWidgetTest, ViewAndTabMayGoInEitherOrder) {
  MakeView();
  Print(u"a line"_s);
  view.reset();
  Print(QString(400, u'x'));  // no view to measure with: one row
  EXPECT_EQ(Lines().RowCount(), 2);

  const int chat = bar.OpenTab(u"bob", TabKind::Chat);
  ColorTextWidget chatView(bar, bar.At(chat)->id, store);
  chatView.resize(200, 100);
  chatView.show();
  PrintToTab(bar, chat, u"hello"_s, 0);
  bar.CloseTabAt(chat);
  QTest::qWait(30);
  EXPECT_EQ(chatView.verticalScrollBar()->maximum(), 0);
  EXPECT_FALSE(chatView.grab().isNull());
}

TEST_F(ColorTextWidgetTest, Screenshot) {
  MakeView({480, 320});
  QFont font(u"DejaVu Sans"_s);
  font.setPixelSize(15);
  view->SetTextFont(font);
  Print(u"* Connecting to irc.example.net (6667)"_s, 0x00800000);
  Print(u"[09:41] <alice> plain words, then \x02" "bold\x02, \x1funderlined\x1f and "
        "\x16reversed\x16 text"_s, 0);
  Print(u"[09:42] <bob> \x03" "4red \x03" "3green \x03" "12blue \x03" "0,1white on black"
        "\x03 back to the line's own colour"_s, 0x00800080);
  Print(u"[09:42] * carol has joined #tolv"_s, 0x0000ff00);
  Print(u"[09:43] <dave> \x03" "8,2 yellow on navy \x0f a long line that has to wrap "
        "onto the next row of the view because it goes on and on"_s, 0);
  Print(u"[09:44] -NickServ- This nickname is registered"_s, 0x00000080);
  for (int i = 0; i < 16; ++i)
    Print(u"\x03%1,%2 colour %1 on %2 \x0f"_s.arg(i).arg(15 - i), 0);
  view->verticalScrollBar()->setValue(0);
  bar.SetFollowNewLines(0, false);
  Settle();
  const QPoint from = At(0, u"* Connecting to ");
  const QPoint to = At(0, u"* Connecting to irc.example.net");
  QTest::mousePress(Area(), Qt::LeftButton, {}, from);
  QTest::mouseMove(Area(), to);
  const QImage shot = view->grab().toImage();
  QTest::mouseRelease(Area(), Qt::LeftButton, {}, to);
  EXPECT_EQ(Clipboard(), u"irc.example.net"_s);
  const QString folder = QString::fromUtf8(TOLV_SCREENSHOT_DIR);
  ASSERT_TRUE(QDir().mkpath(folder));
  EXPECT_TRUE(shot.save(folder + u"/text_view.png"_s));
}

}  // namespace
