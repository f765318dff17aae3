#include "gui/balloon_widget.h"

#include "gui/tab_strip_widget.h"
#include "gui/text_view_look.h"
#include "views/line_wrap.h"

#include <QFontMetricsF>
#include <QMouseEvent>
#include <QPainter>
#include <QPen>
#include <QPolygon>
#include <QRegion>

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>
#include <tuple>
#include <utility>
#include <vector>

using namespace Qt::StringLiterals;

namespace {

// A surrogate pair is one character; anything else one unit.
qsizetype CharacterUnits(QStringView text, qsizetype i) {
  return i + 1 < text.size() && text[i].isHighSurrogate() && text[i + 1].isLowSurrogate() ? 2
                                                                                            : 1;
}

QString BoldTitle(const QString& name) {
  return QChar(formatting::kBold) + name + QChar(formatting::kBold);
}

// A w x h rectangle with its corners cut off.
QPolygon CutCorners(int w, int h, int cut) {
  return QPolygon({QPoint(cut, 0), QPoint(w - cut, 0), QPoint(w, cut), QPoint(w, h - cut),
                   QPoint(w - cut, h), QPoint(cut, h), QPoint(0, h - cut), QPoint(0, cut)});
}

// Without kerning a text is as wide as its characters added up, so wrapping and painting
// agree to the pixel.
QFont Variant(QFont font, bool bold) {
  font.setKerning(false);
  font.setBold(bold);
  return font;
}

}  // namespace

// The balloon's font and its bold variant, measured character by character so that
// wrapping and painting agree to the pixel, as in the text view.
class BalloonMeasure final : public TextMeasure {
 public:
  explicit BalloonMeasure(const QFont& font) : normal_(Variant(font, false)), bold_(Variant(font, true)) {}
  int LeftMargin() const override { return 0; }
  // Bold is the one face the balloon draws apart; italic and monospace show upright.
  qsizetype FitCount(QStringView text, int width, int face) const override {
    const bool bold = face & kFaceBold;
    if (width < 0) return 0;
    qreal used = 0;
    qsizetype i = 0;
    while (i < text.size()) {
      const qsizetype units = CharacterUnits(text, i);
      used += Metrics(bold).horizontalAdvance(text.sliced(i, units).toString());
      if (used > width) break;
      i += units;
    }
    return i;
  }
  int Width(QStringView text, int face) const override {
    return int(std::ceil(Advance(text, face & kFaceBold)));
  }
  qreal Advance(QStringView text, bool bold) const {
    qreal sum = 0;
    for (qsizetype i = 0; i < text.size();) {
      const qsizetype units = CharacterUnits(text, i);
      sum += Metrics(bold).horizontalAdvance(text.sliced(i, units).toString());
      i += units;
    }
    return sum;
  }
  const QFont& Font(bool bold) const { return bold ? bold_ : normal_; }
  const QFontMetricsF& Metrics(bool bold) const { return bold ? boldMetrics_ : normalMetrics_; }
  int RowHeight() const {
    return std::max(1, int(std::ceil(std::max(normalMetrics_.lineSpacing(),
                                              boldMetrics_.lineSpacing()))));
  }

 private:
  QFont normal_;
  QFont bold_;
  QFontMetricsF normalMetrics_{normal_};
  QFontMetricsF boldMetrics_{bold_};
};

namespace {

struct RowInks {
  Palette16 codes;
  QColor own;  // the line's colour
  QColor background;
};

// The row is cut wherever a run starts; each piece is drawn in its own style, as the
// text view draws it.
void PaintRow(QPainter& painter, const BalloonMeasure& measure, const RowInks& inks,
              const ParsedLine& line, TextRow row, QPointF at) {
  std::vector<qsizetype> cuts{row.start, row.end};
  for (const FormatRun& run : line.runs)
    if (run.position > row.start && run.position < row.end) cuts.push_back(run.position);
  std::sort(cuts.begin(), cuts.end());
  const qreal baseline = at.y() + measure.Metrics(false).ascent();
  qreal x = at.x();
  for (size_t i = 0; i + 1 < cuts.size(); ++i) {
    const QStringView text = QStringView(line.text).sliced(cuts[i], cuts[i + 1] - cuts[i]);
    const TextStyle style = StyleAt(line, cuts[i]);
    QColor ink = style.foreground >= 0 ? CodeColour(inks.codes, style.foreground) : inks.own;
    std::optional<QColor> cell;
    if (style.background >= 0) cell = CodeColour(inks.codes, style.background);
    if (style.reverse) std::tie(ink, cell) = std::pair{cell.value_or(inks.background), ink};
    const qreal advance = measure.Advance(text, style.bold);
    if (cell) painter.fillRect(QRectF(x, at.y(), advance, measure.RowHeight()), *cell);
    painter.setFont(measure.Font(style.bold));
    painter.setPen(ink);
    painter.drawText(QPointF(x, baseline), text.toString());
    const QFontMetricsF& metrics = measure.Metrics(style.bold);
    if (style.underline)
      painter.fillRect(QRectF(x, baseline + metrics.underlinePos(), advance,
                              std::max(1.0, metrics.lineWidth())), ink);
    x += advance;
  }
}

}  // namespace

BalloonWidget::BalloonWidget(const SettingsStore& settings, const BalloonRequest& request,
                             const QFont& font, int factor, int width, int mostHeight,
                             QWidget* parent)
    : QWidget(parent), settings_(settings), title_(BoldTitle(request.name)),
      body_(request.line), colour_(request.colour), margin_(3 * factor), corner_(4 * factor),
      measure_(std::make_unique<BalloonMeasure>(font)), parsedTitle_(ParseFormatting(title_)),
      parsedBody_(ParseFormatting(body_)) {
  setObjectName(u"TolvBaloon"_s);
  setAttribute(Qt::WA_OpaquePaintEvent);
  const int textWidth = width - 2 * margin_;
  const qsizetype rows = CountRows(parsedTitle_, textWidth, measure_.get()) +
                         CountRows(parsedBody_, textWidth, measure_.get());
  const qsizetype wanted = 2 * margin_ + rows * measure_->RowHeight();
  resize(width, int(std::clamp<qsizetype>(wanted, 2 * corner_ + 1, std::max(mostHeight, 2 * corner_ + 1))));
  setMask(QRegion(CutCorners(this->width(), height(), corner_)));
}

BalloonWidget::~BalloonWidget() = default;

void BalloonWidget::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  const QImage picture = BackgroundPicture(settings_);
  if (picture.isNull())
    painter.fillRect(rect(), palette().color(QPalette::Base));
  else
    painter.drawImage(rect(), picture.scaled(size(), Qt::IgnoreAspectRatio, Qt::SmoothTransformation));

  const RowInks inks{CodeColours(settings_),
                     colour_ ? ColourFromRef(colour_) : palette().color(QPalette::Text),
                     palette().color(QPalette::Base)};
  const int textWidth = width() - 2 * margin_;
  qreal y = margin_;
  for (const ParsedLine* line : {&parsedTitle_, &parsedBody_}) {
    for (const TextRow& row : WrapLine(*line, textWidth, measure_.get())) {
      if (y >= height()) break;
      PaintRow(painter, *measure_, inks, *line, row, QPointF(margin_, y));
      y += measure_->RowHeight();
    }
  }
  // The mask takes the right and bottom edges of the polygon, so the frame is drawn one
  // pixel inside them.
  painter.setPen(QPen(palette().color(QPalette::Shadow), 1));
  painter.setBrush(Qt::NoBrush);
  painter.drawPolygon(CutCorners(width() - 1, height() - 1, corner_));
}

// The press is taken so that it does not fall through to what lies beneath.
void BalloonWidget::mousePressEvent(QMouseEvent* event) { event->accept(); }

void BalloonWidget::mouseReleaseEvent(QMouseEvent* event) {
  event->accept();
  if (rect().contains(event->position().toPoint())) emit closeRequested();
}
