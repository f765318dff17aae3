#include "dcc/dcc_offer.h"

#include "client/client_context.h"

using namespace Qt::StringLiterals;

// Deliberately a stand-in: it reports the offer and accepts nothing. It must not claim
// to receive or chat, and it must not leave dccOfferBusy set, since nothing would clear
// it again.
void HandleDccOffer(ClientContext& ctx, QStringView nick, QStringView argument) {
  if (ctx.dccOfferBusy) return;  // an earlier offer is still being dealt with
  if (argument.indexOf(u' ') <= 0) return;  // every request type takes arguments
  ctx.PrintStatus(QString(u"* DCC offer from "_s + nick.toString() + u": "_s +
                          argument.toString() + u" (not accepted: DCC is not available yet)"_s),
                  LineStyle::Info2);
}
