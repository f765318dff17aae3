#include "gui/dcc_progress_widget.h"

#include "dcc/dcc_engine.h"
#include "dcc/dcc_text.h"
#include "dcc/dcc_transfer.h"

#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QProgressBar>
#include <QPushButton>
#include <QToolButton>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace {

// Paths and file names are longer than a pocket screen is wide: the middle gives way.
class ElidedLabel : public QLabel {
 public:
  using QLabel::QLabel;
  QSize minimumSizeHint() const override { return {10, QLabel::minimumSizeHint().height()}; }

 protected:
  void paintEvent(QPaintEvent*) override {
    QPainter painter(this);
    painter.drawText(rect(), Qt::AlignLeft | Qt::AlignVCenter,
                     fontMetrics().elidedText(text(), Qt::ElideMiddle, width()));
  }
};

}  // namespace

DccProgressWidget::DccProgressWidget(DccEngine& engine, TabId tab, QWidget* parent)
    : QWidget(parent), engine_(engine), tab_(tab) {
  setObjectName(u"DCCFile"_s);
  auto* column = new QVBoxLayout(this);
  heading_ = new QLabel;
  QFont bold = heading_->font();
  bold.setBold(true);
  heading_->setFont(bold);
  column->addWidget(heading_);
  auto* grid = new QGridLayout;
  grid->setColumnStretch(1, 1);
  int row = 0;
  // Left-aligned values: an aligned item does not cap its column at its own width, so
  // the fixed-width peer button leaves the long values the whole column.
  const auto addRow = [&](const QString& label, QWidget* value) {
    auto* name = new QLabel(label);
    grid->addWidget(name, row, 0);
    grid->addWidget(value, row++, 1, value == peer_ ? Qt::AlignLeft : Qt::Alignment());
    return name;
  };
  peer_ = new QToolButton;
  peer_->setAutoRaise(true);
  peer_->setToolButtonStyle(Qt::ToolButtonTextOnly);
  peerLabel_ = addRow(QString(), peer_);
  connect(peer_, &QToolButton::clicked, this, [this] { emit menuRequested(peer_->mapToGlobal(QPoint(0, peer_->height()))); });
  for (const QString& label : {u"File:"_s, u"Size:"_s, u"Folder:"_s, u"Done:"_s}) {
    auto* value = new ElidedLabel;
    QLabel* name = addRow(label, value);
    if (label == u"Done:"_s) doneLabel_ = name;
    values_.emplace_back(label, value);
  }
  bar_ = new QProgressBar;
  bar_->setRange(0, 1000);
  bar_->setTextVisible(false);
  grid->addWidget(bar_, row++, 0, 1, 2);
  for (const QString& label : {u"Time left:"_s, u"Rate:"_s, u"Status:"_s}) {
    auto* value = new ElidedLabel;
    addRow(label, value);
    values_.emplace_back(label, value);
  }
  column->addLayout(grid);
  column->addStretch();
  auto* buttons = new QHBoxLayout;
  cancel_ = new QPushButton(u"Cancel"_s);
  close_ = new QPushButton(u"Close"_s);
  buttons->addStretch();
  buttons->addWidget(cancel_);
  buttons->addWidget(close_);
  column->addLayout(buttons);
  connect(cancel_, &QPushButton::clicked, this, [this] { engine_.CancelTransfer(tab_); });
  connect(close_, &QPushButton::clicked, this, [this] { engine_.CloseTab(tab_); });
  connect(&engine_, &DccEngine::transferChanged, this, [this](TabId changed) {
    if (changed == tab_) Refresh();
  });
  Refresh();
}

QString DccProgressWidget::Value(const QString& label) const {
  if (label == peerLabel_->text()) return peer_->text();
  const QString key = label == doneLabel_->text() ? u"Done:"_s : label;
  for (const auto& [name, value] : values_)
    if (name == key) return value->text();
  return {};
}

void DccProgressWidget::Refresh() {
  const DccTransfer* transfer = engine_.TransferOf(tab_);
  if (!transfer) return;
  const auto set = [this](const QString& label, const QString& text) {
    for (auto& [name, value] : values_)
      if (name == label && value->text() != text) value->setText(text), value->update();
  };
  heading_->setText(transfer->sending ? u"Sending File"_s : u"Receiving File"_s);
  peerLabel_->setText(transfer->sending ? u"To:"_s : u"From:"_s);
  peer_->setText(transfer->nick);
  doneLabel_->setText(transfer->sending ? u"Sent:"_s : u"Received:"_s);
  const qint64 position = transfer->Position();
  set(u"File:"_s, transfer->fileName);
  set(u"Size:"_s, SizeText(transfer->size));
  set(u"Folder:"_s, transfer->folder);
  set(u"Done:"_s, SizeText(position));
  bar_->setValue(transfer->size > 0 ? int(position * 1000 / transfer->size) : 0);
  const qint64 left = transfer->SecondsLeft();
  const bool moving = transfer->State() == TransferState::Transferring;
  set(u"Time left:"_s, moving && left >= 0 ? DurationText(left) : QString());
  set(u"Rate:"_s, transfer->Rate() > 0 ? RateText(transfer->Rate()) : QString());
  set(u"Status:"_s, transfer->Status());
  cancel_->setEnabled(transfer->State() == TransferState::Waiting || moving);
}
