#include "gui/colour_picker_dialog.h"

#include "gui/look_page_parts.h"
#include "gui/touch_targets_widget.h"
#include "settings/colour_palette.h"

#include <QDialogButtonBox>
#include <QGridLayout>
#include <QGuiApplication>
#include <QIntValidator>
#include <QLabel>
#include <QLineEdit>
#include <QMouseEvent>
#include <QPainter>
#include <QPushButton>
#include <QScreen>
#include <QScrollArea>
#include <QVBoxLayout>

#include <algorithm>
#include <functional>
#include <vector>

using namespace Qt::StringLiterals;

namespace {

constexpr auto kTitle = u"Select color";
constexpr std::array<const char16_t*, 3> kChannelLabels{u"R:", u"G:", u"B:"};
constexpr int kSwatchSide = 40;  // at factor 1, as the old and new colours stand
constexpr int kShadeStripWidth = 24;
constexpr int kNoCell = -1;

// Dark on light colours, light on dark ones, so the frame shows on any cell.
QColor FrameColourOn(quint32 colour) {
  const int brightness = RedOf(colour) * 30 + GreenOf(colour) * 59 + BlueOf(colour) * 11;
  return brightness > 128 * 100 ? Qt::black : Qt::white;
}

}  // namespace

// A grid of square cells, one of them framed; a tap reports the cell under it.
class PaletteGridWidget : public QWidget {
 public:
  PaletteGridWidget(int columns, int rows, QSize cell, QWidget* parent)
      : QWidget(parent), columns_(columns), rows_(rows), cell_(cell), colours_(size_t(columns * rows)) {
    setFixedSize(columns * cell.width(), rows * cell.height());
  }

  std::function<void(int column, int row)> tapped;

  void SetColour(int column, int row, quint32 colour) { colours_[Index(column, row)] = colour; }
  quint32 Colour(int column, int row) const { return colours_[Index(column, row)]; }
  void Select(int column, int row) {
    selected_ = column == kNoCell ? kNoCell : int(Index(column, row));
    update();
  }

 protected:
  void paintEvent(QPaintEvent*) override {
    QPainter painter(this);
    for (int row = 0; row < rows_; ++row)
      for (int column = 0; column < columns_; ++column)
        painter.fillRect(CellRect(column, row), ColourOf(Colour(column, row)));
    if (selected_ == kNoCell) return;
    const int column = selected_ / rows_, row = selected_ % rows_;
    painter.setPen(FrameColourOn(Colour(column, row)));
    painter.drawRect(CellRect(column, row).adjusted(0, 0, -1, -1));
  }

  void mousePressEvent(QMouseEvent* event) override {
    const QPoint at = event->position().toPoint();
    const int column = std::clamp(at.x() / cell_.width(), 0, columns_ - 1);
    const int row = std::clamp(at.y() / cell_.height(), 0, rows_ - 1);
    if (tapped) tapped(column, row);
  }

 private:
  size_t Index(int column, int row) const { return size_t(column * rows_ + row); }
  QRect CellRect(int column, int row) const {
    return {QPoint(column * cell_.width(), row * cell_.height()), cell_};
  }

  int columns_, rows_;
  QSize cell_;
  std::vector<quint32> colours_;
  int selected_ = kNoCell;
};

// The colour given at opening above the one chosen now.
class OldNewSwatchWidget : public QWidget {
 public:
  OldNewSwatchWidget(quint32 oldColour, int side, QWidget* parent)
      : QWidget(parent), old_(oldColour), new_(oldColour) {
    setFixedSize(side, side);
  }
  void SetNew(quint32 colour) {
    new_ = colour;
    update();
  }

 protected:
  void paintEvent(QPaintEvent*) override {
    QPainter painter(this);
    const int half = height() / 2;
    painter.fillRect(0, 0, width(), half, ColourOf(old_));
    painter.fillRect(0, half, width(), height() - half, ColourOf(new_));
    painter.setPen(QColor(64, 64, 64));
    painter.drawRect(rect().adjusted(0, 0, -1, -1));
  }

 private:
  quint32 old_, new_;
};

ColourPickerDialog::ColourPickerDialog(quint32 colour, int factor, QWidget* parent)
    : QDialog(parent), newColour_(colour & 0xffffff) {
  setWindowTitle(QString::fromUtf16(kTitle));
  factor = std::max(factor, 1);
  const int cell = kPaletteCellPixels * factor;
  const int stripWidth = kShadeStripWidth * factor;
  auto* content = new QWidget;
  auto* grid = new QGridLayout(content);
  grid->setContentsMargins(4 * factor, 4 * factor, 4 * factor, 4 * factor);
  grid->setSpacing(4 * factor);

  bigPalette_ = new PaletteGridWidget(kBigPaletteColumns, kBigPaletteRows, QSize(cell, cell), content);
  bigPalette_->setObjectName(u"BigPal"_s);
  for (int column = 0; column < kBigPaletteColumns; ++column)
    for (int row = 0; row < kBigPaletteRows; ++row)
      bigPalette_->SetColour(column, row, BigPaletteColour(column, row));
  bigPalette_->tapped = [this](int column, int row) { OnPaletteCell(column, row); };
  shadeStrip_ = new PaletteGridWidget(1, kShadeCells, QSize(stripWidth, cell), content);
  shadeStrip_->setObjectName(u"GreyPal"_s);
  shadeStrip_->tapped = [this](int, int row) { OnShadeCell(row); };
  grid->addWidget(bigPalette_, 0, 0, 1, 2, Qt::AlignLeft | Qt::AlignTop);
  grid->addWidget(shadeStrip_, 0, 2, 2, 1, Qt::AlignTop);

  auto* channels = new QGridLayout;
  for (int c = 0; c < 3; ++c) {
    channels->addWidget(new QLabel(QString::fromUtf16(kChannelLabels[size_t(c)]), content), c, 0);
    fields_[size_t(c)] = new QLineEdit(content);
    fields_[size_t(c)]->setValidator(new QIntValidator(0, 255, fields_[size_t(c)]));
    fields_[size_t(c)]->setInputMethodHints(Qt::ImhDigitsOnly);
    fields_[size_t(c)]->setMaximumWidth(40 * factor);
    connect(fields_[size_t(c)], &QLineEdit::textEdited, this, [this] { OnChannelEdited(); });
    channels->addWidget(fields_[size_t(c)], c, 1);
  }
  grid->addLayout(channels, 1, 0, Qt::AlignTop | Qt::AlignLeft);

  auto* swatchColumn = new QGridLayout;
  swatch_ = new OldNewSwatchWidget(newColour_, kSwatchSide * factor, content);
  swatch_->setObjectName(u"OldNew"_s);
  swatchColumn->addWidget(new QLabel(u"Old:"_s, content), 0, 0, Qt::AlignTop);
  swatchColumn->addWidget(new QLabel(u"New:"_s, content), 1, 0, Qt::AlignBottom);
  swatchColumn->addWidget(swatch_, 0, 1, 2, 1);
  grid->addLayout(swatchColumn, 1, 1, Qt::AlignTop | Qt::AlignRight);

  auto* scroll = new QScrollArea(this);
  scroll->setFrameShape(QFrame::NoFrame);
  scroll->setWidgetResizable(true);
  scroll->setWidget(content);
  buttons_ = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
  connect(buttons_, &QDialogButtonBox::accepted, this, &QDialog::accept);
  connect(buttons_, &QDialogButtonBox::rejected, this, &QDialog::reject);
  auto* column = new QVBoxLayout(this);
  column->setContentsMargins(0, 0, 0, 4 * factor);
  column->addWidget(scroll);
  column->addWidget(buttons_);
  FitForTouch(this, factor);
  for (QLineEdit* field : fields_) field->setMinimumHeight(TouchHeight(factor));

  SetNewColour(newColour_, true);
  OnPaletteCell(kInitialPaletteColumn, kInitialPaletteRow);

  // The whole dialog when it fits; on a smaller screen the palettes scroll.
  content->ensurePolished();
  content->layout()->activate();
  const QSize wanted = content->sizeHint() + QSize(0, buttons_->sizeHint().height() + 8 * factor);
  const QScreen* screen = parent ? parent->screen() : QGuiApplication::primaryScreen();
  QSize room = screen ? screen->availableSize() : wanted;
  if (parent) room = room.boundedTo(parent->window()->size());
  resize(wanted.boundedTo(room));
}

QWidget* ColourPickerDialog::BigPalette() const { return bigPalette_; }
QWidget* ColourPickerDialog::ShadeStrip() const { return shadeStrip_; }
QPushButton* ColourPickerDialog::OkButton() const { return buttons_->button(QDialogButtonBox::Ok); }
QPushButton* ColourPickerDialog::CancelButton() const {
  return buttons_->button(QDialogButtonBox::Cancel);
}

// The palette only hands its hue to the strip; the strip's cell is what gets chosen.
void ColourPickerDialog::OnPaletteCell(int column, int row) {
  bigPalette_->Select(column, row);
  const auto shades = ::ShadeStrip(bigPalette_->Colour(column, row));
  for (int i = 0; i < kShadeCells; ++i) shadeStrip_->SetColour(0, i, shades[size_t(i)]);
  shadeStrip_->Select(kNoCell, 0);
}

void ColourPickerDialog::OnShadeCell(int cell) {
  shadeStrip_->Select(0, cell);
  SetNewColour(shadeStrip_->Colour(0, cell), true);
}

void ColourPickerDialog::OnChannelEdited() {
  std::array<int, 3> values{};
  for (size_t c = 0; c < 3; ++c) values[c] = std::clamp(fields_[c]->text().toInt(), 0, 255);
  SetNewColour(ColourRef(values[0], values[1], values[2]), false);
}

void ColourPickerDialog::SetNewColour(quint32 colour, bool updateFields) {
  newColour_ = colour;
  swatch_->SetNew(colour);
  if (!updateFields) return;
  const std::array<int, 3> values{RedOf(colour), GreenOf(colour), BlueOf(colour)};
  for (size_t c = 0; c < 3; ++c) fields_[c]->setText(QString::number(values[c]));
}
