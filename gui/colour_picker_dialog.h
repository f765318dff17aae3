#pragma once
// "Select color": any colour for an entry of the colour scheme, from the big palette of
// hues and the strip of tints and shades of the hue picked there, or typed as red, green
// and blue. Opened with the entry's colour ("Old:"); OK hands back "New:".

#include <QDialog>

#include <array>

class QDialogButtonBox;
class QLineEdit;
class QPushButton;
class PaletteGridWidget;
class OldNewSwatchWidget;

class ColourPickerDialog : public QDialog {
 public:
  // `colour` is 0x00BBGGRR; sizes follow the screen factor.
  ColourPickerDialog(quint32 colour, int factor, QWidget* parent = nullptr);

  quint32 NewColour() const { return newColour_; }

  // For tests: the controls a finger reaches.
  QWidget* BigPalette() const;
  QWidget* ShadeStrip() const;
  QLineEdit* ChannelField(int channel) const { return fields_[size_t(channel)]; }  // R, G, B
  QPushButton* OkButton() const;
  QPushButton* CancelButton() const;

 private:
  void OnPaletteCell(int column, int row);
  void OnShadeCell(int cell);
  void OnChannelEdited();
  void SetNewColour(quint32 colour, bool updateFields);

  quint32 newColour_;
  PaletteGridWidget* bigPalette_ = nullptr;
  PaletteGridWidget* shadeStrip_ = nullptr;
  OldNewSwatchWidget* swatch_ = nullptr;
  std::array<QLineEdit*, 3> fields_{};
  QDialogButtonBox* buttons_ = nullptr;
};
