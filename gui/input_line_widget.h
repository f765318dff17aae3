#pragma once
// The input line: an editable drop-down of earlier lines. Enter hands the text on; the
// arrows step through the tabs while the line is empty (Alt with an arrow always does),
// so that the caret still moves through a typed line; Up and Down step through the
// earlier lines, keeping the one being typed; Tab completes a nick; a held press or
// right click opens the edit menu.

#include "commands/history_walk.h"
#include "whispers/nick_completion.h"

#include <QComboBox>

#include <functional>

class QAbstractItemModel;

class InputLineWidget : public QComboBox {
  Q_OBJECT

 public:
  explicit InputLineWidget(QWidget* parent = nullptr);

  void SetHistory(QAbstractItemModel* history);
  // A favourite goes in at the caret, replacing any selection.
  void InsertAtCaret(const QString& text);
  // Builds the edit menu with its items greyed as the selection and clipboard say.
  QMenu* MakeEditMenu(QWidget* parent);
  // The edit menu is sized for a finger at this screen factor.
  void SetScaleFactor(int factor) { factor_ = factor; }
  // The typed text's colour (0x00BBGGRR; 0 is the usual text colour), on the field's
  // own background.
  void SetTextColour(quint32 colourRef);
  // What Tab does with the text and the caret: the completed line, or nothing to do.
  using TabCompletion = std::function<std::optional<CompletedLine>(const QString& text, int caret)>;
  void SetTabCompletion(TabCompletion completion) { tabCompletion_ = std::move(completion); }

 signals:
  void submitted(const QString& text);
  void stepTab(int keyCode);  // 37 left, 39 right

 protected:
  // Keys reach either the field itself or the box, which hands them to the field
  // directly: both roads end in HandleKey.
  bool eventFilter(QObject* watched, QEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;

 private:
  bool HandleKey(const QKeyEvent& key);
  void Submit();
  void CompleteNick();
  void StepHistory(bool older);
  void ShowLine(const QString& text, int caret);

  int factor_ = 1;
  TabCompletion tabCompletion_;
  HistoryWalk historyWalk_;
};
