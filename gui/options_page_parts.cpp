#include "gui/options_page_parts.h"

#include "gui/folder_browser_dialog.h"
#include "gui/shell_window.h"
#include "gui/touch_targets_widget.h"
#include "gui/whisper_attachment.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QComboBox>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

}  // namespace

// Margins stay small: on a pocket screen every pixel of width is text.
constexpr int kMargin = 4;

QVBoxLayout* AddGroup(QVBoxLayout* page, const QString& title) {
  auto* group = new QGroupBox(title);
  page->addWidget(group);
  auto* layout = new QVBoxLayout(group);
  layout->setContentsMargins(kMargin, kMargin, kMargin, kMargin);
  return layout;
}

QPushButton* MakeRowButton(const QString& text) {
  auto* button = new QPushButton(text);
  button->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
  return button;
}

QLineEdit* MakeField(const OptionsPageEnv& env, int limit) {
  auto* field = new QLineEdit;
  field->setMaxLength(limit);
  AttachWhispers(field, env.ctx);
  return field;
}

QLineEdit* AddField(const OptionsPageEnv& env, QVBoxLayout* layout, const QString& label, int limit) {
  QLineEdit* field = MakeField(env, limit);
  AddWrappedLabel(layout, label, field);
  layout->addWidget(field);
  return field;
}

QCheckBox* AddCheck(QVBoxLayout* layout, const QString& label) {
  auto* box = new QCheckBox(label);
  layout->addWidget(box);
  return box;
}

QCheckBox* AddCheck(QVBoxLayout* layout, const FlagCheck& check) {
  return AddCheck(layout, QString::fromUtf16(check.label));
}

QButtonGroup* AddRadioRow(QVBoxLayout* layout, const QString& label,
                          std::initializer_list<const char16_t*> choices) {
  auto* caption = new QLabel(label);
  layout->addWidget(caption);
  auto* row = new QHBoxLayout;
  auto* group = new QButtonGroup(caption);
  int id = 0;
  for (const char16_t* choice : choices) {
    auto* radio = new QRadioButton(QString::fromUtf16(choice));
    group->addButton(radio, id++);
    row->addWidget(radio);
  }
  row->addStretch();
  layout->addLayout(row);
  return group;
}

QLineEdit* AddPathRow(const OptionsPageEnv& env, QVBoxLayout* layout, const QString& label, int limit) {
  QLineEdit* field = MakeField(env, limit);
  AddWrappedLabel(layout, label, field);
  auto* row = new QHBoxLayout;
  auto* browse = new QPushButton(u"..."_s);
  browse->setFixedWidth(TouchHeight(env.factor) * 3 / 2);
  row->addWidget(field, 1);
  row->addWidget(browse);
  layout->addLayout(row);
  WindowShell* shell = &env.shell;
  const int factor = env.factor;
  QObject::connect(browse, &QPushButton::clicked, field, [shell, field, factor] {
    FolderBrowserDialog dialog(field->text(), factor, field->window());
    if (shell->Run(dialog) == QDialog::Accepted && !dialog.ChosenPath().isEmpty())
      field->setText(dialog.ChosenPath());
  });
  return field;
}

QComboBox* AddCombo(QVBoxLayout* layout, const QString& label) {
  auto* combo = new QComboBox;
  if (!label.isEmpty()) AddWrappedLabel(layout, label, combo);
  layout->addWidget(combo);
  return combo;
}

void EnableWith(QCheckBox* box, std::initializer_list<QWidget*> dependents) {
  const std::vector<QWidget*> widgets(dependents);
  const auto apply = [widgets](bool on) {
    for (QWidget* w : widgets) w->setEnabled(on);
  };
  QObject::connect(box, &QCheckBox::toggled, box, apply);
  apply(box->isChecked());
}

void ShowChecks(const CheckBoxes& boxes, const CheckStates& states) {
  for (const auto& [control, box] : boxes) {
    const auto found = states.find(control);
    box->setChecked(found != states.end() && found->second);
  }
}

CheckStates ReadChecks(const CheckBoxes& boxes) {
  CheckStates states;
  for (const auto& [control, box] : boxes) states[control] = box->isChecked();
  return states;
}

QVBoxLayout* StartPage(OptionsPage* page) {
  auto* layout = new QVBoxLayout(page);
  layout->setContentsMargins(kMargin, kMargin, kMargin, kMargin);
  return layout;
}

// Fields and lists are fitted here; buttons, checks and radios by FitForTouch.
void FinishPage(OptionsPage* page, QVBoxLayout* layout, int factor) {
  layout->addStretch();
  FitForTouch(page, factor);
  // The style draws the boxes and dots at one size whatever the text's: they grow too.
  // Each box gets its own sheet; one on the page would stop its fonts reaching the labels.
  const QString indicator = u"::indicator { width: %1px; height: %1px; }"_s.arg(13 * std::max(factor, 1));
  for (QCheckBox* box : page->findChildren<QCheckBox*>()) box->setStyleSheet(u"QCheckBox"_s + indicator);
  for (QRadioButton* radio : page->findChildren<QRadioButton*>()) radio->setStyleSheet(u"QRadioButton"_s + indicator);
  for (QLineEdit* field : page->findChildren<QLineEdit*>()) field->setMinimumHeight(TouchHeight(factor));
  for (QComboBox* combo : page->findChildren<QComboBox*>()) combo->setMinimumHeight(TouchHeight(factor));
}
