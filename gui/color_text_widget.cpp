#include "gui/color_text_widget.h"
#include "gui/text_view_look.h"

#include <QApplication>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QDateTime>
#include <QFileInfo>
#include <QFontDatabase>
#include <QFontMetricsF>
#include <QImage>
#include <QMouseEvent>
#include <QPainter>
#include <QScrollBar>

#include <algorithm>
#include <climits>
#include <cmath>
#include <limits>
#include <optional>
#include <vector>

#include "settings/look_options.h"
#include "settings/settings_defaults.h"
#include "settings/settings_paths.h"
#include "settings/settings_store.h"
#include "views/formatted_text.h"
#include "views/line_store.h"
#include "views/tab_bar.h"

namespace {

constexpr int kLeftMargin = 2;
// New lines are shown at most once a frame, however fast they come.
constexpr int kFrameMilliseconds = 16;
constexpr int kHoldMilliseconds = 600;

QColor FromColourRef(quint32 colour) {
  return QColor(int(colour & 0xff), int((colour >> 8) & 0xff), int((colour >> 16) & 0xff));
}

}  // namespace

// The sixteen colours the colour codes select; the shipped ones when the value is damaged.
Palette16 CodeColours(const SettingsStore& settings) {
  QByteArray bytes;
  if (!settings.GetBinary(u"mColors", bytes, 64) || bytes.size() < 64)
    bytes = DefaultMircPalette();
  Palette16 colours;
  for (int i = 0; i < 16; ++i) {
    const auto byte = [&](int k) { return quint32(quint8(bytes[i * 4 + k])); };
    colours[size_t(i)] = FromColourRef(byte(0) | byte(1) << 8 | byte(2) << 16);
  }
  return colours;
}

namespace {

// Every byte moves level tenths of the way to white, so text stays readable on top.
QImage BlendTowardsWhite(QImage image, int level) {
  image = image.convertToFormat(QImage::Format_RGB32);
  const qsizetype bytesPerRow = qsizetype(image.width()) * 4;
  for (int y = 0; y < image.height(); ++y) {
    uchar* byte = image.scanLine(y);
    for (qsizetype i = 0; i < bytesPerRow; ++i)
      byte[i] = BlendByte(byte[i], level);
  }
  return image;
}

}  // namespace

QColor CodeColour(const Palette16& codes, int code) {
  return IsRgbColour(code) ? QColor::fromRgb(QRgb(code & 0xffffff)) : codes[size_t(code & 15)];
}

// One blended copy for all views. It is loaded again when the file or the settings name
// another picture, or the file itself changed.
QImage BackgroundPicture(const SettingsStore& settings) {
  QString file;
  if (settings.GetDword(u"bmp") == 0 || !settings.GetString(u"bmpfile", file, 500) ||
      file.isEmpty())
    return {};
  struct Cache {
    QString path;
    int level = -1;
    QDateTime modified;
    QImage picture;
  };
  static Cache cache;
  const QString path = GetInstallDir(settings) + file;
  const int level = std::clamp(settings.GetDword(u"bmpblend"), 0, 10);
  const QDateTime modified = QFileInfo(path).lastModified();
  if (path != cache.path || level != cache.level || modified != cache.modified) {
    QImage picture(path);
    if (!picture.isNull()) picture = BlendTowardsWhite(std::move(picture), level);
    cache = {path, level, modified, picture};
  }
  return cache.picture;
}

namespace {

// Advances of single UTF-16 units in pages of 256, made when a character of the page is
// first measured: most conversations touch one or two pages.
class AdvanceTable {
 public:
  float& operator[](char16_t unit) {
    std::unique_ptr<float[]>& page = pages_[unit >> 8];
    if (!page) {
      page = std::make_unique<float[]>(256);
      std::fill_n(page.get(), 256, -1.0f);  // not measured yet
    }
    return page[unit & 0xff];
  }

 private:
  std::array<std::unique_ptr<float[]>, 256> pages_;
};

// A surrogate pair is one character; anything else one unit.
qsizetype CharacterUnits(QStringView text, qsizetype i) {
  return i + 1 < text.size() && text[i].isHighSurrogate() && text[i + 1].isLowSurrogate()
             ? 2 : 1;
}

}  // namespace

// A stretch of a row drawn in one style.
struct ColorTextWidget::Segment {
  qsizetype start;
  qsizetype end;
  TextStyle style;
  bool selected;
  bool link;
};

// The row cut wherever a run starts, a link or the selection begins or ends.
std::vector<ColorTextWidget::Segment> ColorTextWidget::RowSegments(
    const ParsedLine& line, TextRow row, std::pair<qsizetype, qsizetype> selected,
    const QList<TextLink>& links) {
  std::vector<qsizetype> cuts{row.start, row.end};
  const auto inside = [&](qsizetype p) { return p > row.start && p < row.end; };
  for (const FormatRun& run : line.runs)
    if (inside(run.position)) cuts.push_back(run.position);
  for (const TextLink& link : links)
    for (qsizetype p : {link.start, link.end})
      if (inside(p)) cuts.push_back(p);
  if (inside(selected.first)) cuts.push_back(selected.first);
  if (inside(selected.second)) cuts.push_back(selected.second);
  std::sort(cuts.begin(), cuts.end());
  cuts.erase(std::unique(cuts.begin(), cuts.end()), cuts.end());

  std::vector<Segment> segments;
  for (size_t i = 0; i + 1 < cuts.size(); ++i) {
    const qsizetype start = cuts[i];
    const bool link = std::any_of(links.begin(), links.end(), [&](const TextLink& l) {
      return start >= l.start && start < l.end;
    });
    segments.push_back({start, cuts[i + 1], StyleAt(line, start),
                        start >= selected.first && start < selected.second, link});
  }
  return segments;
}

// The view font in its eight faces (bold, italic, monospace), each made when first used,
// with each character's advance remembered: a line is measured character by character
// when it is wrapped, and a flood wraps many of them.
struct ColorTextWidget::Fonts {
  explicit Fonts(QFont font) : normal(std::move(font)) {}

  const QFont& Face(int face) {
    std::optional<QFont>& made = faces[size_t(face)];
    if (!made) {
      QFont font = normal;
      if (face & kFaceMonospace) {
        font = QFontDatabase::systemFont(QFontDatabase::FixedFont);
        if (normal.pixelSize() > 0) font.setPixelSize(normal.pixelSize());
        else font.setPointSizeF(normal.pointSizeF());
      }
      // Without kerning a text is as wide as its characters added up, so wrapping,
      // painting and hit-testing agree to the pixel.
      font.setKerning(false);
      font.setBold(face & kFaceBold);
      font.setItalic(face & kFaceItalic);
      made = font;
    }
    return *made;
  }
  const QFontMetricsF& Metrics(int face) {
    std::optional<QFontMetricsF>& made = metrics[size_t(face)];
    if (!made) made.emplace(Face(face));
    return *made;
  }

  QFont normal;
  std::array<std::optional<QFont>, kFaceCount> faces;
  std::array<std::optional<QFontMetricsF>, kFaceCount> metrics;
  std::array<AdvanceTable, kFaceCount> advances;
};

// What the painter needs of one stored line.
struct ColorTextWidget::PaintedLine {
  qsizetype index;
  ParsedLine parsed;
  QList<TextLink> links;
  QColor colour;
  QColor background;
  const Palette16* codes;
};

ColorTextWidget::ColorTextWidget(TabBar& bar, TabId id, SettingsStore& settings,
                                 QWidget* parent)
    : QAbstractScrollArea(parent), id_(id), settings_(settings),
      tab_(bar.At(bar.FindTabByView(id))) {
  // A scroll bar that came and went would change the width and so re-wrap every line.
  setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
  setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  viewport()->setAttribute(Qt::WA_OpaquePaintEvent);
  // Tapping the text must not take the keyboard (and the soft keyboard) from the input line.
  setFocusPolicy(Qt::NoFocus);
  verticalScrollBar()->setSingleStep(1);
  SetTextFont(font());

  repaintTimer_.setSingleShot(true);
  repaintTimer_.setInterval(kFrameMilliseconds);
  connect(&repaintTimer_, &QTimer::timeout, this, &ColorTextWidget::ShowNewRows);
  holdTimer_.setSingleShot(true);
  holdTimer_.setInterval(kHoldMilliseconds);
  connect(&holdTimer_, &QTimer::timeout, this, &ColorTextWidget::OnHeld);

  const auto mine = [this](TabId id) { return id == id_; };
  connect(&bar, &TabBar::linesAppended, this,
          [=, this](TabId id, int) { if (mine(id)) OnLinesAppended(); });
  connect(&bar, &TabBar::linesCleared, this,
          [=, this](TabId id) { if (mine(id)) OnLinesCleared(); });
  connect(&bar, &TabBar::followChanged, this,
          [=, this](TabId id, bool follow) { if (mine(id) && follow) ScrollToEnd(); });
  connect(&bar, &TabBar::tabClosed, this,
          [=, this](TabId id, int) { if (mine(id)) OnTabClosed(); });
  // The tab bar's tabs are gone by the time it says so.
  connect(&bar, &QObject::destroyed, this, [this] { tab_ = nullptr; });
}

// The line store must not keep measuring with a widget that is gone.
ColorTextWidget::~ColorTextWidget() {
  if (tab_) tab_->lines->SetLayout(0, nullptr);
}

void ColorTextWidget::SetTextFont(const QFont& font) {
  fonts_ = std::make_unique<Fonts>(font);
  qreal spacing = 1;
  for (int face : {0, kFaceBold, kFaceMonospace})
    spacing = std::max(spacing, fonts_->Metrics(face).lineSpacing());
  rowHeight_ = int(std::ceil(spacing));
  scaledPictureKey_ = 0;
  if (layoutWidth_ > 0) Relayout(true);  // before the first show the width is not known
}

const QFont& ColorTextWidget::TextFont() const { return fonts_->normal; }

void ColorTextWidget::SetRepaintInterval(int milliseconds) {
  repaintTimer_.setInterval(std::max(0, milliseconds));
}

// --- Measuring ---------------------------------------------------------------------------

int ColorTextWidget::LeftMargin() const { return kLeftMargin; }

qreal ColorTextWidget::Advance(QStringView character, int face) const {
  const QFontMetricsF& metrics = fonts_->Metrics(face);
  if (character.size() != 1) return metrics.horizontalAdvance(character.toString());
  float& advance = fonts_->advances[size_t(face)][character[0].unicode()];
  if (advance < 0) advance = float(metrics.horizontalAdvance(character[0]));
  return advance;
}

qreal ColorTextWidget::TextAdvance(QStringView text, int face) const {
  qreal sum = 0;
  for (qsizetype i = 0; i < text.size();) {
    const qsizetype units = CharacterUnits(text, i);
    sum += Advance(text.sliced(i, units), face);
    i += units;
  }
  return sum;
}

qsizetype ColorTextWidget::FitCount(QStringView text, int width, int face) const {
  if (width < 0) return 0;
  qreal used = 0;
  qsizetype i = 0;
  while (i < text.size()) {
    const qsizetype units = CharacterUnits(text, i);
    used += Advance(text.sliced(i, units), face);
    if (used > width) break;
    i += units;
  }
  return i;
}

int ColorTextWidget::Width(QStringView text, int face) const {
  return int(std::ceil(TextAdvance(text, face)));
}

// --- Following the tab's lines -----------------------------------------------------------

void ColorTextWidget::OnLinesAppended() {
  if (repaintTimer_.interval() == 0) {
    ShowNewRows();
    return;
  }
  if (!repaintTimer_.isActive()) repaintTimer_.start();
}

// A reader who scrolled up keeps the place; one back at the last row is followed again.
void ColorTextWidget::ShowNewRows() {
  if (!tab_) return;
  const qsizetype knownBefore = shownRows_;
  const bool follow = Following();
  UpdateScrollRange();
  if (follow) ScrollToEnd();
  // Rows that land below a full page cost nothing until someone scrolls to them.
  if (verticalScrollBar()->value() + PageRows() + 1 > knownBefore) viewport()->update();
}

void ColorTextWidget::OnLinesCleared() {
  repaintTimer_.stop();
  ClearSelection();
  selecting_ = false;
  UpdateScrollRange();
  verticalScrollBar()->setValue(0);
  viewport()->update();
}

void ColorTextWidget::OnTabClosed() {
  tab_ = nullptr;
  repaintTimer_.stop();
  holdTimer_.stop();
  selecting_ = false;
  ClearSelection();
  UpdateScrollRange();
  viewport()->update();
}

void ColorTextWidget::ScrollToEnd() {
  UpdateScrollRange();
  verticalScrollBar()->setValue(verticalScrollBar()->maximum());
}

// "Scroll Off" never follows; "Scroll On" follows while the last row is in sight.
bool ColorTextWidget::Following() const {
  return tab_ && tab_->followNewLines &&
         verticalScrollBar()->value() >= verticalScrollBar()->maximum();
}

int ColorTextWidget::PageRows() const { return std::max(1, viewport()->height() / rowHeight_); }

void ColorTextWidget::UpdateScrollRange() {
  shownRows_ = tab_ ? tab_->lines->RowCount() : 0;
  const int page = PageRows();
  QScrollBar* bar = verticalScrollBar();
  bar->setPageStep(page);
  bar->setRange(0, int(std::clamp<qsizetype>(shownRows_ - page, 0, INT_MAX)));
}

void ColorTextWidget::resizeEvent(QResizeEvent* event) {
  QAbstractScrollArea::resizeEvent(event);
  Relayout(false);
}

// A new width or font wraps every line anew. A view that is not following keeps the
// line at its top in place; the row numbers under it have changed.
void ColorTextWidget::Relayout(bool rewrap) {
  if (!tab_) return;
  LineStore& store = *tab_->lines;
  const RowPosition top = store.RowToLine(verticalScrollBar()->value());
  const bool follow = Following();
  const int width = viewport()->width();
  if (rewrap || width != layoutWidth_) {
    layoutWidth_ = width;
    store.SetLayout(width, this);
  }
  UpdateScrollRange();
  if (follow) {
    ScrollToEnd();
  } else if (top.line >= 0) {
    const qsizetype row = store.FirstRowOf(top.line) +
                          std::min(top.row, store.RowsOf(top.line) - 1);
    verticalScrollBar()->setValue(int(std::min<qsizetype>(row, INT_MAX)));
  }
  viewport()->update();
}

void ColorTextWidget::scrollContentsBy(int, int) { viewport()->update(); }

// --- Painting ----------------------------------------------------------------------------

// The widget is painted into Qt's backing store, which already keeps the screen from
// flickering; only the rows in sight are decoded, parsed and wrapped.
void ColorTextWidget::paintEvent(QPaintEvent* event) {
  ++paintCount_;
  QPainter painter(viewport());
  PaintBackground(painter, event->rect());
  if (!tab_) return;
  const LineStore& store = *tab_->lines;
  const RowPosition first = store.RowToLine(verticalScrollBar()->value());
  if (first.line < 0) return;

  const Palette16 codes = CodeColours(settings_);
  const QColor text = palette().color(QPalette::Text);
  const QColor background = palette().color(QPalette::Base);
  const int height = viewport()->height();
  qreal y = 0;
  for (qsizetype i = first.line; i < store.LineCount() && y < height; ++i) {
    const StoredLine stored = store.Line(i);
    ParsedLine parsed = ParseFormatting(stored.text);
    QList<TextLink> links = FindLinks(parsed.text);
    const PaintedLine line{i, std::move(parsed), std::move(links),
                           stored.colour ? FromColourRef(stored.colour) : text, background,
                           &codes};
    const QList<TextRow> rows = WrapLine(line.parsed, layoutWidth_, this);
    for (qsizetype r = i == first.line ? first.row : 0; r < rows.size() && y < height; ++r) {
      PaintRow(painter, line, rows[r], y);
      y += rowHeight_;
    }
  }
}

void ColorTextWidget::PaintBackground(QPainter& painter, const QRect& area) {
  const QImage picture = BackgroundPicture(settings_);
  if (picture.isNull()) {
    painter.fillRect(area, palette().color(QPalette::Base));
    return;
  }
  const QSize size = viewport()->size();
  if (scaledPictureKey_ != picture.cacheKey() || scaledPicture_.size() != size) {
    scaledPicture_ = QPixmap::fromImage(
        picture.scaled(size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation));
    scaledPictureKey_ = picture.cacheKey();
  }
  painter.drawPixmap(area, scaledPicture_, area);
}

// A run's colours: a code's colour or the line's own, a cell background only when a code
// gave one; reverse swaps them, the selection overrides both.
ColorTextWidget::RunColours ColorTextWidget::ColoursOf(const Segment& segment,
                                                       const PaintedLine& line) const {
  const TextStyle& style = segment.style;
  if (segment.selected)
    return {palette().color(QPalette::HighlightedText), palette().color(QPalette::Highlight)};
  RunColours colours{line.colour, std::nullopt};
  if (style.foreground >= 0) colours.ink = CodeColour(*line.codes, style.foreground);
  if (style.background >= 0) colours.cell = CodeColour(*line.codes, style.background);
  if (style.reverse) colours = {colours.cell.value_or(line.background), colours.ink};
  return colours;
}

void ColorTextWidget::PaintRow(QPainter& painter, const PaintedLine& line, TextRow row,
                               qreal y) const {
  const QStringView plain(line.parsed.text);
  const qreal baseline = y + fonts_->Metrics(0).ascent();
  qreal x = LeftMargin();
  for (const Segment& segment :
       RowSegments(line.parsed, row, SelectedRange(line.index), line.links)) {
    const QStringView text = plain.sliced(segment.start, segment.end - segment.start);
    const int face = segment.style.Face();
    const qreal width = TextAdvance(text, face);
    const RunColours colours = ColoursOf(segment, line);
    if (colours.cell) painter.fillRect(QRectF(x, y, width, rowHeight_), *colours.cell);
    painter.setFont(fonts_->Face(face));
    painter.setPen(colours.ink);
    painter.drawText(QPointF(x, baseline), text.toString());
    const QFontMetricsF& metrics = fonts_->Metrics(face);
    const qreal stroke = std::max(1.0, metrics.lineWidth());
    if (segment.style.underline || segment.link)
      painter.fillRect(QRectF(x, baseline + metrics.underlinePos(), width, stroke), colours.ink);
    if (segment.style.strike)
      painter.fillRect(QRectF(x, baseline - metrics.strikeOutPos(), width, stroke), colours.ink);
    x += width;
  }
}

// --- Selection ---------------------------------------------------------------------------

std::pair<qsizetype, qsizetype> ColorTextWidget::SelectedRange(qsizetype line) const {
  const auto [from, to] = std::minmax(anchor_, caret_);
  if (from.line < 0 || from == to || line < from.line || line > to.line) return {0, 0};
  return {line == from.line ? from.position : 0,
          line == to.line ? to.position : std::numeric_limits<qsizetype>::max()};
}

// The caret nearest to a point, found with the same wrapping the painter used. Above the
// text is the start of the first line, below it the end of the last.
ColorTextWidget::TextPoint ColorTextWidget::HitTest(QPoint point) const {
  if (!tab_) return {};
  const LineStore& store = *tab_->lines;
  if (store.LineCount() == 0) return {};
  const qsizetype row = verticalScrollBar()->value() +
                        qsizetype(std::floor(qreal(point.y()) / rowHeight_));
  if (row < 0) return {0, 0};
  if (row >= store.RowCount()) {
    const qsizetype last = store.LineCount() - 1;
    return {last, StripFormatting(store.Line(last).text).size()};
  }
  const RowPosition at = store.RowToLine(row);
  const ParsedLine parsed = ParseFormatting(store.Line(at.line).text);
  const QList<TextRow> rows = WrapLine(parsed, layoutWidth_, this);
  const TextRow textRow = rows[std::min(at.row, rows.size() - 1)];
  return {at.line, CaretInRow(parsed, textRow, point.x() - LeftMargin())};
}

// The boundary before the character under x, or after it when x is past its middle.
qsizetype ColorTextWidget::CaretInRow(const ParsedLine& line, TextRow row, qreal x) const {
  const QStringView text(line.text);
  TextStyle style;
  qsizetype nextRun = 0;
  qreal left = 0;
  for (qsizetype i = row.start; i < row.end;) {
    while (nextRun < line.runs.size() && line.runs[nextRun].position <= i)
      ApplyRun(style, line.runs[nextRun++]);
    const qsizetype units = CharacterUnits(text, i);
    const qreal advance = Advance(text.sliced(i, units), style.Face());
    if (x < left + advance / 2) return i;
    left += advance;
    i += units;
  }
  return row.end;
}

void ColorTextWidget::mousePressEvent(QMouseEvent* event) {
  if (event->button() != Qt::LeftButton || !tab_) return;
  pressPoint_ = event->position().toPoint();
  anchor_ = caret_ = HitTest(pressPoint_);
  selecting_ = true;
  dragged_ = false;
  holdTimer_.start();
}

void ColorTextWidget::mouseMoveEvent(QMouseEvent* event) {
  if (!selecting_) return;
  const QPoint point = event->position().toPoint();
  if ((point - pressPoint_).manhattanLength() > QApplication::startDragDistance()) {
    holdTimer_.stop();
    dragged_ = true;
  }
  const TextPoint caret = HitTest(point);
  if (caret == caret_) return;
  caret_ = caret;
  viewport()->update();
}

void ColorTextWidget::mouseReleaseEvent(QMouseEvent* event) {
  if (event->button() != Qt::LeftButton || !selecting_) return;
  holdTimer_.stop();
  selecting_ = false;
  const QString link = dragged_ ? QString() : LinkAt(caret_);
  CopySelection();
  ClearSelection();
  if (!link.isEmpty()) emit linkActivated(link);
}

// The address around a caret; a caret at either end still counts, as a fingertip is wide.
QString ColorTextWidget::LinkAt(TextPoint point) const {
  if (!tab_ || point.line < 0 || point.line >= tab_->lines->LineCount()) return {};
  const QString plain = StripFormatting(tab_->lines->Line(point.line).text);
  for (const TextLink& link : FindLinks(plain))
    if (point.position >= link.start && point.position <= link.end)
      return plain.sliced(link.start, link.end - link.start);
  return {};
}

// Held without moving: a menu, not a selection; the release that follows copies nothing.
void ColorTextWidget::OnHeld() {
  selecting_ = false;
  ClearSelection();
  emit menuRequested(viewport()->mapToGlobal(pressPoint_));
}

void ColorTextWidget::contextMenuEvent(QContextMenuEvent* event) {
  emit menuRequested(event->globalPos());
}

void ColorTextWidget::ClearSelection() {
  if (anchor_ != caret_) viewport()->update();
  anchor_ = caret_ = TextPoint{};
}

// The lines are joined without a break: a copy mostly goes into the one-line input field,
// where a break would cut it short.
void ColorTextWidget::CopySelection() const {
  const auto [from, to] = std::minmax(anchor_, caret_);
  if (!tab_ || from.line < 0 || from == to) return;
  QString copied;
  for (qsizetype i = from.line; i <= to.line; ++i) {
    const QString plain = StripFormatting(tab_->lines->Line(i).text);
    const qsizetype start = std::min(i == from.line ? from.position : 0, plain.size());
    const qsizetype end = std::min(i == to.line ? to.position : plain.size(), plain.size());
    copied += QStringView(plain).sliced(start, std::max<qsizetype>(0, end - start));
  }
  QClipboard* clipboard = QGuiApplication::clipboard();
  clipboard->setText(copied, QClipboard::Clipboard);
  if (clipboard->supportsSelection()) clipboard->setText(copied, QClipboard::Selection);
}
