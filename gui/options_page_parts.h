#pragma once
// The pieces the pages of the "Settings" dialog are built from: titled groups, labelled
// fields with the whisper pop-up, check boxes standing for a bit, radio rows, path rows
// with "...", and the rule that an "Enable" box greys what depends on it. Everything a
// finger taps is at least TouchHeight(factor) tall.

#include "gui/options_page.h"
#include "settings/option_pages.h"

#include <QString>

#include <initializer_list>
#include <map>

class QButtonGroup;
class QCheckBox;
class QComboBox;
class QGroupBox;
class QLineEdit;
class QPushButton;
class QVBoxLayout;

// A titled group added to `page`; its controls go into the returned layout.
QVBoxLayout* AddGroup(QVBoxLayout* page, const QString& title);

// A label over a one-line field that takes at most `limit` units.
QLineEdit* AddField(const OptionsPageEnv& env, QVBoxLayout* layout, const QString& label, int limit);
// A field without a label, the whisper pop-up attached.
QLineEdit* MakeField(const OptionsPageEnv& env, int limit);

QCheckBox* AddCheck(QVBoxLayout* layout, const FlagCheck& check);
QCheckBox* AddCheck(QVBoxLayout* layout, const QString& label);

// A button that shares its row equally with the others, however narrow the screen.
QPushButton* MakeRowButton(const QString& text);

// A label over the radios "Ask" / "Auto" / "Ignore" or the like on one row; the group's
// ids are the choices' positions.
QButtonGroup* AddRadioRow(QVBoxLayout* layout, const QString& label,
                          std::initializer_list<const char16_t*> choices);

// A path field with "..." beside it, which opens the folder browser.
QLineEdit* AddPathRow(const OptionsPageEnv& env, QVBoxLayout* layout, const QString& label, int limit);

// A combo as tall as a finger needs.
QComboBox* AddCombo(QVBoxLayout* layout, const QString& label);

// `box` enables `dependents` while it is checked, now and whenever it changes.
void EnableWith(QCheckBox* box, std::initializer_list<QWidget*> dependents);

// Check boxes by control identifier, for CheckStates in and out.
using CheckBoxes = std::map<int, QCheckBox*>;
void ShowChecks(const CheckBoxes& boxes, const CheckStates& states);
CheckStates ReadChecks(const CheckBoxes& boxes);

// The page's own layout, touch-sized; call FinishPage when every control is in.
QVBoxLayout* StartPage(OptionsPage* page);
void FinishPage(OptionsPage* page, QVBoxLayout* layout, int factor);
