// The "Screen" page: the picture behind the conversations (on or off, which file, how
// far it is blended toward white) and whether sizes follow the screen factor.

#include "client/client_context.h"
#include "gui/options_page.h"
#include "gui/options_page_parts.h"
#include "gui/touch_targets_widget.h"
#include "settings/look_options.h"

#include <QCheckBox>
#include <QComboBox>
#include <QHBoxLayout>
#include <QImageReader>
#include <QLabel>
#include <QRadioButton>
#include <QSlider>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace {

// "*.bmp" always (the picture is silently absent when it cannot be read), PNG and JPEG
// where this system's Qt reads them.
QStringList PicturePatterns() {
  QStringList patterns{u"*.bmp"_s};
  const QList<QByteArray> formats = QImageReader::supportedImageFormats();
  if (formats.contains("png")) patterns << u"*.png"_s;
  if (formats.contains("jpeg")) patterns << u"*.jpg"_s << u"*.jpeg"_s;
  return patterns;
}

QString BlendText(int position) { return u"Blend: "_s + QString::number(position * 10) + u'%'; }

class ScreenPage : public OptionsPage {
 public:
  ScreenPage(const OptionsPageEnv& env, QWidget* parent) : OptionsPage(parent), env_(env) {
    QVBoxLayout* column = StartPage(this);
    BuildBitmapGroup(AddGroup(column, u"Bitmap"_s));
    BuildResolutionGroup(AddGroup(column, u"Resolution"_s));
    FinishPage(this, column, env.factor);
    blend_->setMinimumHeight(TouchHeight(env.factor));
  }

  void Load() override {
    const ScreenOptions options = LoadScreenOptions(env_.ctx.settings);
    enable_->setChecked(options.bitmap);
    file_->clear();
    file_->addItems(ListInstallFiles(env_.ctx.settings, PicturePatterns()));
    file_->setCurrentIndex(std::max(file_->findText(options.file), 0));
    blend_->setValue(options.blend);
    (options.realVga ? realVga_ : qvga_)->setChecked(true);
  }

  void Save() override {
    ScreenOptions options;
    options.bitmap = enable_->isChecked();
    options.file = file_->currentText();
    options.blend = blend_->value();
    options.realVga = realVga_->isChecked();
    SaveScreenOptions(env_.ctx.settings, options);
  }

 private:
  void BuildBitmapGroup(QVBoxLayout* layout) {
    enable_ = AddCheck(layout, u"Enable"_s);
    file_ = AddCombo(layout, QString());
    file_->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    file_->setMinimumContentsLength(8);
    blendLabel_ = new QLabel(BlendText(0));
    blend_ = new QSlider(Qt::Horizontal);
    blend_->setRange(0, 10);
    blend_->setPageStep(1);
    blend_->setTickPosition(QSlider::TicksBelow);
    layout->addWidget(blendLabel_);
    layout->addWidget(blend_);
    connect(blend_, &QSlider::valueChanged, this,
            [this](int position) { blendLabel_->setText(BlendText(position)); });
    EnableWith(enable_, {file_, blendLabel_, blend_});
  }

  void BuildResolutionGroup(QVBoxLayout* layout) {
    auto* row = new QHBoxLayout;
    qvga_ = new QRadioButton(u"QVGA"_s);
    realVga_ = new QRadioButton(u"Real-VGA"_s);
    row->addWidget(qvga_);
    row->addWidget(realVga_);
    row->addStretch();
    layout->addLayout(row);
  }

  OptionsPageEnv env_;
  QCheckBox* enable_ = nullptr;
  QComboBox* file_ = nullptr;
  QLabel* blendLabel_ = nullptr;
  QSlider* blend_ = nullptr;
  QRadioButton* qvga_ = nullptr;
  QRadioButton* realVga_ = nullptr;
};

}  // namespace

OptionsPage* MakeScreenPage(const OptionsPageEnv& env, QWidget* parent) {
  return new ScreenPage(env, parent);
}
