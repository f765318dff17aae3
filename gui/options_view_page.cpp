// The "View" page: the colour of every kind of line and of the nick list's and input
// line's text, and the face and size of the conversation text, the nick list and the
// input line. A tap on a colour row opens "Select color"; the sixteen-colour bar sets
// the selected row at once.

#include "client/client_context.h"
#include "gui/colour_picker_dialog.h"
#include "gui/look_page_parts.h"
#include "gui/options_page.h"
#include "gui/options_page_parts.h"
#include "gui/touch_targets_widget.h"
#include "settings/look_options.h"
#include "settings/settings_defaults.h"
#include "settings/settings_store.h"

#include <QComboBox>
#include <QFontDatabase>
#include <QFormLayout>
#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QToolButton>
#include <QVBoxLayout>

#include <array>

using namespace Qt::StringLiterals;

namespace {

// A row of the colour list and the entry of "kolory" it edits.
struct ColourRow {
  const char16_t* label;
  int entry;
};

// The seventeen line styles in their order (entries 7 to 23), then the nick list's three
// kinds of nick and the input line's text.
constexpr std::array<ColourRow, 21> kColourRows{{
    {u"Action", 7},  {u"Ping", 8},    {u"Invite", 9},  {u"Join", 10},  {u"Part", 11},
    {u"Topic", 12},  {u"Whois", 13},  {u"Mode", 14},   {u"Normal", 15}, {u"Notice", 16},
    {u"Notify", 17}, {u"Hlight", 18}, {u"Nick", 19},   {u"Kick", 20},  {u"Quit", 21},
    {u"Info", 22},   {u"Info2", 23},  {u"User color", 3}, {u"Voice color", 4},
    {u"Operator", 5}, {u"Input color", 1},
}};

// Per element: the entries its "TxtCol" and "BgCol" choose (the normal lines, the
// plain nicks and the input line's text; the three backgrounds).
struct ElementColours {
  const char16_t* label;
  int text, background;
};
constexpr std::array<ElementColours, kFontElements> kElements{{
    {u"Text", 15, 0}, {u"List", 3, 2}, {u"Input line", 1, 6}}};

constexpr auto kSampleText = u"Tolv 0123 AaBbGgYy";

QString ColourText(quint32 colour) {
  return ColourOf(colour).name(QColor::HexRgb).toUpper();
}

class ViewPage : public OptionsPage {
 public:
  ViewPage(const OptionsPageEnv& env, QWidget* parent) : OptionsPage(parent), env_(env) {
    palette_ = LoadCodeColours(env.ctx.settings);
    QVBoxLayout* column = StartPage(this);
    column->addWidget(BuildColourGroup());
    column->addWidget(BuildFontGroup());
    FinishPage(this, column, env.factor);
    RefreshColourRows();
  }

  void Load() override {
    options_ = LoadViewOptions(env_.ctx.settings);
    // What is saved is what is shown: a face this system lacks becomes "Tahoma".
    for (QString& face : options_.faces)
      if (face_->findText(face, Qt::MatchFixedString) < 0) face = QString::fromUtf16(kFallbackFace);
    ShowElement();
  }

  void Save() override { SaveViewOptions(env_.ctx.settings, options_); }

 private:
  int Side() const { return TouchHeight(env_.factor) - 4 * env_.factor; }

  QGroupBox* BuildColourGroup() {
    auto* group = new QGroupBox(u"Colors"_s);
    auto* layout = new QVBoxLayout(group);
    list_ = new QListWidget(group);
    list_->setObjectName(u"colourList"_s);
    list_->setIconSize(QSize(Side(), Side()));
    list_->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    list_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    for (const ColourRow& row : kColourRows) {
      auto* item = new QListWidgetItem(QString::fromUtf16(row.label), list_);
      item->setSizeHint(QSize(0, TouchHeight(env_.factor)));
    }
    // The page scrolls, not the list: one scroll bar is what a thumb expects.
    list_->setFixedHeight(int(kColourRows.size()) * TouchHeight(env_.factor) + 2 * list_->frameWidth());
    list_->setCurrentRow(0);
    connect(list_, &QListWidget::itemClicked, this, [this] { OpenPicker(); });
    layout->addWidget(list_);
    layout->addWidget(BuildColourBar(group));
    return group;
  }

  // Sixteen buttons in two rows of eight, as many as fit 240 pixels with a finger's
  // width each, and "More colors" below them.
  QWidget* BuildColourBar(QWidget* parent) {
    auto* bar = new QWidget(parent);
    bar->setObjectName(u"colourBar"_s);
    auto* grid = new QGridLayout(bar);
    grid->setContentsMargins(0, 0, 0, 0);
    grid->setSpacing(env_.factor);
    for (int i = 0; i < kCodeColourCount; ++i) {
      auto* button = new QToolButton(bar);
      button->setIcon(SwatchIcon(palette_[size_t(i)], Side()));
      button->setIconSize(QSize(Side(), Side()));
      button->setFixedSize(TouchHeight(env_.factor), TouchHeight(env_.factor));
      button->setToolTip(ColourText(palette_[size_t(i)]));
      connect(button, &QToolButton::clicked, this, [this, i] { SetColour(palette_[size_t(i)]); });
      grid->addWidget(button, i / 8, i % 8);
    }
    auto* more = new QPushButton(u"More colors"_s, bar);
    more->setObjectName(u"moreColours"_s);
    connect(more, &QPushButton::clicked, this, [this] { OpenPicker(); });
    grid->addWidget(more, 2, 0, 1, 8);
    grid->setColumnStretch(8, 1);
    return bar;
  }

  QGroupBox* BuildFontGroup() {
    auto* group = new QGroupBox(u"Font"_s);
    auto* form = new QFormLayout(group);
    form->setRowWrapPolicy(QFormLayout::WrapLongRows);
    element_ = AddFormCombo(form, u"Edit"_s, u"element"_s);
    for (const ElementColours& e : kElements) element_->addItem(QString::fromUtf16(e.label));
    face_ = AddFormCombo(form, u"Font name"_s, u"fontName"_s);
    face_->addItems(QFontDatabase::families());
    // A face the system lacks still shows its name; Qt draws it with a fallback.
    if (face_->findText(QString::fromUtf16(kFallbackFace), Qt::MatchFixedString) < 0)
      face_->insertItem(0, QString::fromUtf16(kFallbackFace));
    size_ = AddFormCombo(form, u"Size"_s, u"fontSize"_s);
    for (int size = kSmallestFontSize; size <= kLargestFontSize; ++size)
      size_->addItem(QString::number(size), size);
    textColour_ = AddFormCombo(form, u"TxtCol"_s, u"txtCol"_s);
    backgroundColour_ = AddFormCombo(form, u"BgCol"_s, u"bgCol"_s);
    for (QComboBox* combo : {textColour_, backgroundColour_}) {
      combo->setIconSize(QSize(Side(), Side()));
      for (quint32 colour : palette_) combo->addItem(SwatchIcon(colour, Side()), ColourText(colour), colour);
    }
    sample_ = new QLabel(QString::fromUtf16(kSampleText), group);
    sample_->setObjectName(u"sample"_s);
    sample_->setAutoFillBackground(true);
    sample_->setFrameShape(QFrame::StyledPanel);
    form->addRow(sample_);
    auto* defaults = new QPushButton(u"Default"_s, group);
    defaults->setObjectName(u"default"_s);
    form->addRow(defaults);

    connect(element_, &QComboBox::currentIndexChanged, this, [this] { ShowElement(); });
    connect(face_, &QComboBox::activated, this, [this] {
      options_.faces[size_t(Element())] = face_->currentText();
      ShowSample();
    });
    connect(size_, &QComboBox::activated, this, [this] {
      (Element() == FontElement::Text ? options_.textSize : options_.listSize) = size_->currentData().toInt();
      ShowSample();
    });
    connect(textColour_, &QComboBox::activated, this, [this] {
      options_.colours[size_t(kElements[size_t(Element())].text)] = textColour_->currentData().toUInt();
      ShowElement();
    });
    connect(backgroundColour_, &QComboBox::activated, this, [this] {
      options_.colours[size_t(kElements[size_t(Element())].background)] =
          backgroundColour_->currentData().toUInt();
      ShowElement();
    });
    connect(defaults, &QPushButton::clicked, this, [this] {
      options_ = DefaultViewOptions();
      ShowElement();
    });
    return group;
  }

  QComboBox* AddFormCombo(QFormLayout* form, const QString& label, const QString& name) {
    auto* combo = new QComboBox;
    combo->setObjectName(name);
    combo->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    combo->setMinimumContentsLength(8);
    form->addRow(label, combo);
    return combo;
  }

  FontElement Element() const { return FontElement(std::max(element_->currentIndex(), 0)); }

  // Every control shows the element being edited, from the page's copy of the values.
  void ShowElement() {
    const FontElement element = Element();
    face_->setCurrentIndex(face_->findText(options_.faces[size_t(element)], Qt::MatchFixedString));
    const int size = element == FontElement::Text  ? options_.textSize
                     : element == FontElement::List ? options_.listSize
                                                    : kInputFontSize;
    size_->setCurrentIndex(size - kSmallestFontSize);
    size_->setEnabled(element != FontElement::Input);  // the input line is always 13 high
    ShowColourChoice(textColour_, kElements[size_t(element)].text);
    ShowColourChoice(backgroundColour_, kElements[size_t(element)].background);
    RefreshColourRows();
    ShowSample();
  }

  // A colour outside the sixteen keeps an entry of its own at the end of the combo.
  void ShowColourChoice(QComboBox* combo, int entry) {
    const quint32 colour = options_.colours[size_t(entry)];
    while (combo->count() > kCodeColourCount) combo->removeItem(kCodeColourCount);
    int at = combo->findData(colour);
    if (at < 0) {
      combo->addItem(SwatchIcon(colour, Side()), ColourText(colour), colour);
      at = combo->count() - 1;
    }
    combo->setCurrentIndex(at);
  }

  void ShowSample() {
    const FontElement element = Element();
    QFont font(face_->currentText());
    // As the window scales them: the input line always, the others unless "Real-VGA".
    const bool realVga = env_.ctx.settings.GetDword(u"VGA") != 0;
    const int scaled = realVga && element != FontElement::Input ? 1 : env_.factor;
    font.setPixelSize(size_->currentData().toInt() * scaled);
    sample_->setFont(font);
    QPalette colours = sample_->palette();
    const quint32 text = options_.colours[size_t(kElements[size_t(element)].text)];
    colours.setColor(QPalette::WindowText, text ? ColourOf(text) : palette().color(QPalette::Text));
    colours.setColor(QPalette::Window, ColourOf(options_.colours[size_t(kElements[size_t(element)].background)]));
    sample_->setPalette(colours);
  }

  void RefreshColourRows() {
    for (size_t i = 0; i < kColourRows.size(); ++i)
      list_->item(int(i))->setIcon(SwatchIcon(options_.colours[size_t(kColourRows[i].entry)], Side()));
  }

  int SelectedEntry() const { return kColourRows[size_t(std::max(list_->currentRow(), 0))].entry; }

  void SetColour(quint32 colour) {
    options_.colours[size_t(SelectedEntry())] = colour;
    ShowElement();
  }

  // Opened as a window-modal sheet, so the page's own loop keeps running.
  void OpenPicker() {
    const int entry = SelectedEntry();
    auto* picker = new ColourPickerDialog(options_.colours[size_t(entry)], env_.factor, this);
    picker->setAttribute(Qt::WA_DeleteOnClose);
    connect(picker, &QDialog::accepted, this, [this, picker, entry] {
      options_.colours[size_t(entry)] = picker->NewColour();
      ShowElement();
    });
    picker->open();
  }

  OptionsPageEnv env_;
  ViewOptions options_;
  std::array<quint32, kCodeColourCount> palette_{};
  QListWidget* list_ = nullptr;
  QComboBox* element_ = nullptr;
  QComboBox* face_ = nullptr;
  QComboBox* size_ = nullptr;
  QComboBox* textColour_ = nullptr;
  QComboBox* backgroundColour_ = nullptr;
  QLabel* sample_ = nullptr;
};

}  // namespace

OptionsPage* MakeViewPage(const OptionsPageEnv& env, QWidget* parent) {
  return new ViewPage(env, parent);
}
