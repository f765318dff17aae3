// The "Screen" page: the picture behind the conversations (on or off, which file, how
// far it is blended toward white) and whether sizes follow the screen factor.

#include "client/client_context.h"
#include "gui/look_page_parts.h"
#include "gui/options_page.h"
#include "settings/look_options.h"

#include <QCheckBox>
#include <QComboBox>
#include <QGroupBox>
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
    QVBoxLayout* column = ScrollingColumn(this, env.factor);
    column->addWidget(BuildBitmapGroup());
    column->addWidget(BuildResolutionGroup());
    column->addStretch();
    FitControlsForTouch(this, env.factor);
  }

  void Load() override {
    const ScreenOptions options = LoadScreenOptions(env_.ctx.settings);
    enable_->setChecked(options.bitmap);
    file_->clear();
    file_->addItems(ListInstallFiles(env_.ctx.settings, PicturePatterns()));
    file_->setCurrentIndex(std::max(file_->findText(options.file), 0));
    blend_->setValue(options.blend);
    (options.realVga ? realVga_ : qvga_)->setChecked(true);
    FollowEnable();
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
  QGroupBox* BuildBitmapGroup() {
    auto* group = new QGroupBox(u"Bitmap"_s);
    auto* layout = new QVBoxLayout(group);
    enable_ = new QCheckBox(u"Enable"_s, group);
    file_ = new QComboBox(group);
    file_->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    file_->setMinimumContentsLength(8);
    blendLabel_ = new QLabel(BlendText(0), group);
    blend_ = new QSlider(Qt::Horizontal, group);
    blend_->setRange(0, 10);
    blend_->setPageStep(1);
    blend_->setTickPosition(QSlider::TicksBelow);
    for (QWidget* w : std::initializer_list<QWidget*>{enable_, file_, blendLabel_, blend_})
      layout->addWidget(w);
    connect(enable_, &QCheckBox::toggled, this, [this] { FollowEnable(); });
    connect(blend_, &QSlider::valueChanged, this,
            [this](int position) { blendLabel_->setText(BlendText(position)); });
    return group;
  }

  QGroupBox* BuildResolutionGroup() {
    auto* group = new QGroupBox(u"Resolution"_s);
    auto* layout = new QHBoxLayout(group);
    qvga_ = new QRadioButton(u"QVGA"_s, group);
    realVga_ = new QRadioButton(u"Real-VGA"_s, group);
    layout->addWidget(qvga_);
    layout->addWidget(realVga_);
    layout->addStretch();
    return group;
  }

  void FollowEnable() {
    for (QWidget* w : std::initializer_list<QWidget*>{file_, blendLabel_, blend_})
      w->setEnabled(enable_->isChecked());
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
