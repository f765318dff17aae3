#pragma once
// The balloon that tells of a line in a tab the user is not looking at: the tab's name in
// bold over the line, in the line's colour with its formatting codes, on the view's
// background, inside a frame with cut corners. It is as tall as its wrapped text needs.
// It only shows; the tab strip decides when it comes and goes, and a tap on it asks the
// strip to close it.

#include "views/formatted_text.h"

#include <QFont>
#include <QString>
#include <QWidget>

#include <memory>

class BalloonMeasure;
class SettingsStore;

struct BalloonRequest {
  QString name;  // the tab's
  QString line;
  quint32 colour = 0;  // 0x00BBGGRR; 0 is the view's text colour
};

class BalloonWidget : public QWidget {
  Q_OBJECT

 public:
  // `width` is kept; the height follows the text, up to `mostHeight`.
  BalloonWidget(const SettingsStore& settings, const BalloonRequest& request, const QFont& font,
                int factor, int width, int mostHeight, QWidget* parent);
  ~BalloonWidget() override;

  // The name between two bold codes, and the line as it came.
  const QString& Title() const { return title_; }
  const QString& Body() const { return body_; }
  quint32 Colour() const { return colour_; }

 signals:
  void closeRequested();

 protected:
  void paintEvent(QPaintEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;

 private:
  const SettingsStore& settings_;
  const QString title_;
  const QString body_;
  const quint32 colour_;
  const int margin_;
  const int corner_;
  std::unique_ptr<BalloonMeasure> measure_;
  ParsedLine parsedTitle_;
  ParsedLine parsedBody_;
};
