#include "gui/input_line_widget.h"

#include "gui/touch_targets_widget.h"

#include <QAbstractItemModel>
#include <QApplication>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMenu>
#include <QMimeData>

using namespace Qt::StringLiterals;

namespace {

constexpr int kLeftArrow = 37;
constexpr int kRightArrow = 39;

bool ClipboardHasText() {
  const QMimeData* data = QGuiApplication::clipboard()->mimeData();
  return !data || data->hasText();  // a clipboard that cannot be read leaves Paste on
}

}  // namespace

InputLineWidget::InputLineWidget(QWidget* parent) : QComboBox(parent) {
  setEditable(true);
  setInsertPolicy(QComboBox::NoInsert);
  setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
  setMinimumContentsLength(4);
  lineEdit()->setMaxLength(32767);
  lineEdit()->installEventFilter(this);
  lineEdit()->setContextMenuPolicy(Qt::DefaultContextMenu);
  // Choosing an earlier line puts it into the field for editing, not sending.
  connect(this, &QComboBox::textActivated, this, [this](const QString& text) { setEditText(text); });
  // Typing starts the walk through the earlier lines afresh from the typed line.
  connect(lineEdit(), &QLineEdit::textEdited, this, [this] { historyWalk_.Reset(); });
}

void InputLineWidget::SetHistory(QAbstractItemModel* history) {
  setModel(history);
  setCurrentIndex(-1);
  clearEditText();
}

void InputLineWidget::InsertAtCaret(const QString& text) {
  lineEdit()->insert(text);
  lineEdit()->setFocus();
}

QMenu* InputLineWidget::MakeEditMenu(QWidget* parent) {
  QLineEdit* edit = lineEdit();
  auto* menu = new QMenu(parent);
  const bool selected = edit->hasSelectedText();
  menu->addAction(u"Cut"_s, edit, &QLineEdit::cut)->setEnabled(selected);
  menu->addAction(u"Copy"_s, edit, &QLineEdit::copy)->setEnabled(selected);
  menu->addAction(u"Paste"_s, edit, &QLineEdit::paste)->setEnabled(ClipboardHasText());
  menu->addAction(u"Delete"_s, edit, &QLineEdit::del)->setEnabled(selected);
  FitForTouch(menu, factor_);
  return menu;
}

void InputLineWidget::SetTextColour(quint32 colourRef) {
  QPalette palette = lineEdit()->palette();
  palette.setColor(QPalette::Text, colourRef == 0 ? this->palette().color(QPalette::Text)
                                                  : QColor(int(colourRef & 0xff),
                                                           int((colourRef >> 8) & 0xff),
                                                           int((colourRef >> 16) & 0xff)));
  lineEdit()->setPalette(palette);
}

void InputLineWidget::Submit() {
  historyWalk_.Reset();
  const QString text = currentText();
  clearEditText();
  if (!text.isEmpty()) emit submitted(text);
  setCurrentIndex(-1);  // the history grew; the field stays empty for the next line
  clearEditText();
}

bool InputLineWidget::HandleKey(const QKeyEvent& key) {
  if (key.key() == Qt::Key_Return || key.key() == Qt::Key_Enter) {
    Submit();
    return true;
  }
  // Tab never leaves the line: it is the completion key here, as in every IRC client.
  if (key.key() == Qt::Key_Tab && !(key.modifiers() & (Qt::ControlModifier | Qt::AltModifier))) {
    CompleteNick();
    return true;
  }
  if ((key.key() == Qt::Key_Up || key.key() == Qt::Key_Down) && (key.modifiers() & ~Qt::KeypadModifier) == Qt::NoModifier) {
    StepHistory(key.key() == Qt::Key_Up);
    return true;
  }
  const bool arrow = key.key() == Qt::Key_Left || key.key() == Qt::Key_Right;
  if (arrow && (lineEdit()->text().isEmpty() || key.modifiers() & Qt::AltModifier)) {
    emit stepTab(key.key() == Qt::Key_Left ? kLeftArrow : kRightArrow);
    return true;
  }
  return false;
}

void InputLineWidget::ShowLine(const QString& text, int caret) {
  lineEdit()->setText(text);
  lineEdit()->setCursorPosition(caret);
}

void InputLineWidget::CompleteNick() {
  if (!tabCompletion_) return;
  if (const std::optional<CompletedLine> line = tabCompletion_(lineEdit()->text(), lineEdit()->cursorPosition()))
    ShowLine(line->text, int(line->caret));
}

// The same lines the drop-down shows, newest first.
void InputLineWidget::StepHistory(bool older) {
  QStringList entries;
  for (int row = 0; model() && row < model()->rowCount(); ++row)
    entries << model()->index(row, 0).data().toString();
  const std::optional<QString> line =
      older ? historyWalk_.Older(entries, lineEdit()->text()) : historyWalk_.Newer(entries);
  if (line) ShowLine(*line, int(line->size()));
}

void InputLineWidget::keyPressEvent(QKeyEvent* event) {
  if (!HandleKey(*event)) QComboBox::keyPressEvent(event);
}

bool InputLineWidget::eventFilter(QObject* watched, QEvent* event) {
  if (watched == lineEdit() && event->type() == QEvent::ContextMenu) {
    QMenu* menu = MakeEditMenu(this);
    menu->exec(static_cast<QContextMenuEvent*>(event)->globalPos());
    menu->deleteLater();
    return true;
  }
  if (watched == lineEdit() && event->type() == QEvent::KeyPress &&
      HandleKey(*static_cast<QKeyEvent*>(event)))
    return true;
  return QComboBox::eventFilter(watched, event);
}
