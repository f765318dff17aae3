#pragma once
// The text of one conversation tab: its stored lines wrapped to the view's width and drawn
// with their IRC colours and styles over the view colour or the background picture. Only
// the rows on screen are ever decoded and painted. New lines keep the last row in sight
// unless the reader has scrolled up. Dragging selects characters, and lifting the
// pointer copies them; holding still opens the tab's menu instead. Web addresses are
// drawn underlined, and a tap on one (not a drag, not a hold) asks for it to be opened.

#include <QAbstractScrollArea>
#include <QPixmap>
#include <QTimer>

#include <array>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include "views/conversation_tab.h"
#include "views/line_wrap.h"
#include "views/text_links.h"

class SettingsStore;
class TabBar;

class ColorTextWidget : public QAbstractScrollArea, public TextMeasure {
  Q_OBJECT

 public:
  ColorTextWidget(TabBar& bar, TabId id, SettingsStore& settings, QWidget* parent = nullptr);
  ~ColorTextWidget() override;

  // The window sizes the font; every line is wrapped anew.
  void SetTextFont(const QFont& font);
  const QFont& TextFont() const;
  void ScrollToEnd();

  // Paints of the text area so far. A flood of lines must cost about one per frame.
  int PaintCount() const { return paintCount_; }
  // New lines wait this long for company before they are shown; 0 shows each at once
  // and leaves merging the repaints to QWidget::update.
  void SetRepaintInterval(int milliseconds);

  // How the view's fonts measure text; the tab's line store wraps with it.
  int LeftMargin() const override;
  qsizetype FitCount(QStringView text, int width, int face) const override;
  int Width(QStringView text, int face) const override;
  int RowHeight() const { return rowHeight_; }

 signals:
  // A held press or a context-menu request: the window shows the tab kind's menu.
  void menuRequested(QPoint globalPos);
  // A tap on a web address; the window hands it to the desktop.
  void linkActivated(const QString& url);

 protected:
  void paintEvent(QPaintEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void scrollContentsBy(int dx, int dy) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void contextMenuEvent(QContextMenuEvent* event) override;

 private:
  // A caret between characters of a line's plain text.
  struct TextPoint {
    qsizetype line = -1;
    qsizetype position = 0;
    friend auto operator<=>(const TextPoint&, const TextPoint&) = default;
  };
  struct Fonts;
  struct PaintedLine;
  struct Segment;
  struct RunColours {
    QColor ink;
    std::optional<QColor> cell;  // none: the background shows through
  };

  void OnLinesAppended();
  void OnLinesCleared();
  void OnTabClosed();
  void ShowNewRows();
  void Relayout(bool rewrap);
  void UpdateScrollRange();
  bool Following() const;
  int PageRows() const;

  qreal Advance(QStringView character, int face) const;
  qreal TextAdvance(QStringView text, int face) const;

  void PaintBackground(QPainter& painter, const QRect& area);
  static std::vector<Segment> RowSegments(const ParsedLine& line, TextRow row,
                                          std::pair<qsizetype, qsizetype> selected,
                                          const QList<TextLink>& links);
  void PaintRow(QPainter& painter, const PaintedLine& line, TextRow row, qreal y) const;
  RunColours ColoursOf(const Segment& segment, const PaintedLine& line) const;
  std::pair<qsizetype, qsizetype> SelectedRange(qsizetype line) const;

  TextPoint HitTest(QPoint point) const;
  qsizetype CaretInRow(const ParsedLine& line, TextRow row, qreal x) const;
  void CopySelection() const;
  QString LinkAt(TextPoint point) const;
  void ClearSelection();
  void OnHeld();

  const TabId id_;
  SettingsStore& settings_;
  ConversationTab* tab_ = nullptr;  // null once the tab is gone
  std::unique_ptr<Fonts> fonts_;
  int rowHeight_ = 1;
  int layoutWidth_ = 0;        // the width the line store was wrapped for; 0 before
  qsizetype shownRows_ = 0;    // rows the scroll bar knows of
  QTimer repaintTimer_;
  int paintCount_ = 0;

  QPixmap scaledPicture_;
  qint64 scaledPictureKey_ = 0;

  QTimer holdTimer_;
  QPoint pressPoint_;
  bool selecting_ = false;
  bool dragged_ = false;  // the press moved: a selection, not a tap
  TextPoint anchor_;
  TextPoint caret_;
};
