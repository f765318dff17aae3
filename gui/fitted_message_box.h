#pragma once
// A message box never wider than the window it belongs to. QMessageBox sizes itself from
// the screen, so on a desktop a long unbroken word (a certificate's fingerprint) made it
// wider than a pocket-sized window, pushing its buttons out of sight.

#include <QMessageBox>

class FittedMessageBox : public QMessageBox {
 public:
  using QMessageBox::QMessageBox;

 protected:
  // QMessageBox sizes itself again at every layout request: the fit follows each time.
  bool event(QEvent* event) override;

 private:
  void FitWindow();
};

// `text` with a place to wrap after each ":", "/" or "," inside runs longer than a narrow
// line (a fingerprint "AB:CD:..."); shorter words are left as they are.
QString WrappableText(const QString& text);
