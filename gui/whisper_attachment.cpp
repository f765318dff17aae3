#include "gui/whisper_attachment.h"

#include "client/client_context.h"
#include "gui/whisper_popup_widget.h"
#include "settings/settings_flags.h"
#include "whispers/nick_completion.h"

#include <QApplication>
#include <QComboBox>
#include <QLineEdit>

namespace {

qsizetype SelectionEnd(const QLineEdit& edit) {
  return edit.hasSelectedText() ? edit.selectionEnd() : edit.cursorPosition();
}

}  // namespace

WhisperAttachment::WhisperAttachment(QLineEdit* edit, QWidget* placed, ClientContext& ctx,
                                     WhisperField kind)
    : QObject(edit), edit_(edit), placed_(placed), ctx_(ctx), kind_(kind) {
  connect(edit, &QLineEdit::textChanged, this, &WhisperAttachment::Refresh);
  connect(edit, &QLineEdit::cursorPositionChanged, this, &WhisperAttachment::FollowCaret);
  connect(edit, &QLineEdit::selectionChanged, this, &WhisperAttachment::FollowCaret);
  connect(qApp, &QApplication::focusChanged, this, &WhisperAttachment::FollowFocus);
}

WhisperAttachment::~WhisperAttachment() { delete popup_; }

WhisperPopup* WhisperAttachment::Popup() const { return popup_; }

// The pop-up may be the one reporting the tap that closes it: it goes once its event is
// done, out of sight at once.
void WhisperAttachment::DropPopup() {
  if (!popup_) return;
  popup_->hide();
  popup_->deleteLater();
  popup_ = nullptr;
}

void WhisperAttachment::Close() {
  DropPopup();
  if (edit_->window()->isActiveWindow()) edit_->setFocus();
}

// The start of the word is taken afresh at every refresh, so a paste that brings a new
// word while the pop-up is open still picks into the right place.
void WhisperAttachment::Refresh() {
  if (!ctx_.tabs.At(ctx_.tabs.Current()) || !TestFlag(ctx_.settings, u"Files", kWhispersEnable))
    return;
  const bool inputLine = kind_ == WhisperField::InputLine;
  const int limit = inputLine ? GetNibble(ctx_.settings, u"Files", kWhispersCountShift) : 1;
  const QString text = edit_->text();
  const qsizetype caret = SelectionEnd(*edit_);
  QStringList nicks;
  if (const std::optional<TypedWord> typed = WordBeforeCaret(text, caret); typed && inputLine)
    nicks = NicksFor(typed->word, limit);
  const WhisperPlan plan = PlanWhisperRefresh(ctx_.whispers, text, caret, limit, nicks);
  if (plan.step == WhisperStep::Keep) return;
  if (plan.step == WhisperStep::Close) return DropPopup();
  if (!popup_) {
    QWidget* host = placed_->window();
    const QRect field(placed_->mapTo(host, QPoint(0, 0)), placed_->size());
    popup_ = new WhisperPopup(host, field, ctx_.tabs.ScaleFactor(), edit_->font());
    connect(popup_, &WhisperPopup::picked, this, &WhisperAttachment::Pick);
    connect(popup_, &WhisperPopup::closeRequested, this, &WhisperAttachment::Close);
  }
  wordStart_ = plan.wordStart;
  popup_->SetRows(plan.rows);
}

// As many nicks as dictionary words at most, the typed word itself not among them.
QStringList WhisperAttachment::NicksFor(QStringView word, int limit) const {
  QStringList nicks = CompletingNicks(ctx_, word, limit + 1);
  nicks.removeIf([&](const QString& nick) { return word.compare(nick, Qt::CaseInsensitive) == 0; });
  return nicks.mid(0, limit);
}

// A caret moved before the word closes at once; no lookup is needed to know that.
void WhisperAttachment::FollowCaret() {
  if (popup_ && !WordBeforeCaret(edit_->text(), SelectionEnd(*edit_))) DropPopup();
}

void WhisperAttachment::FollowFocus(QWidget* old, QWidget* now) {
  const auto inField = [&](QWidget* widget) { return widget && (widget == edit_ || widget == placed_); };
  if (popup_ && inField(old) && !inField(now) && now != popup_) DropPopup();
}

void WhisperAttachment::Pick(int row) {
  if (!popup_ || row < 0 || row >= popup_->Rows().size()) return;
  const QString text = TextAfterPick(edit_->text(), wordStart_, popup_->Rows()[row]);
  edit_->setText(text);
  edit_->setCursorPosition(int(text.size()));
  Close();
}

WhisperAttachment* AttachWhispers(QLineEdit* field, ClientContext& ctx, WhisperField kind) {
  return new WhisperAttachment(field, field, ctx, kind);
}

WhisperAttachment* AttachWhispers(QComboBox* field, ClientContext& ctx, WhisperField kind) {
  return new WhisperAttachment(field->lineEdit(), field, ctx, kind);
}
