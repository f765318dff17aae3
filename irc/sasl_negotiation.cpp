#include "irc/sasl_negotiation.h"

#include "client/client_context.h"
#include "irc/server_message.h"

#include <QFileInfo>

using namespace Qt::StringLiterals;

namespace {

using Step = SaslState::Step;

constexpr auto kNotOfferedText = "* SASL not attempted: the server does not offer it";
constexpr auto kNoMechanismText = "* SASL not attempted: the server offers only %1";
constexpr auto kNoCapText = "* SASL not attempted: the server does not know CAP (%1)";
constexpr auto kRegisteredText = "* SASL not attempted: the server registered us without answering CAP";
constexpr auto kPlainLinkText = "* SASL not attempted: the connection is not encrypted (the Server dialog can allow it)";
constexpr auto kCertificateLinkText = "* SASL not attempted: a client certificate needs a TLS connection (a port with \"+\")";
constexpr auto kNoCertificateText = "* SASL not attempted: can't read the client certificate %1";
constexpr auto kRefusedText = "* SASL failed: the server refused %1";
constexpr auto kFailedText = "* SASL failed: %1";
constexpr auto kMechanismsText = "* SASL failed: the server offers only %1";
constexpr auto kOverdueText = "* SASL failed: no answer from the server in %1 seconds";
constexpr auto kLoggedInText = "* SASL: %1";
constexpr int kPieceLength = 400;  // the longest AUTHENTICATE argument the protocol allows

// The human part of a numeric: behind " :" when the server put words before it.
QString Trailing(const QString& rest) {
  const qsizetype colon = rest.indexOf(u" :"_s);
  return colon < 0 ? rest : rest.mid(colon + 2);
}

// The reason on Status, then CAP END (when the server speaks CAP and has not registered
// us already), or QUIT when the user would rather not be on unauthenticated.
void Finish(ClientContext& ctx, const QString& line, bool failed, bool sendCapEnd = true) {
  SaslState& state = ctx.session.sasl;
  state.step = Step::Finished;
  if (!line.isEmpty()) ctx.PrintStatus(line, LineStyle::Info);
  if (failed && state.account.disconnectOnFailure) {
    ctx.SendToServer(u"QUIT");
    ctx.session.connected = false;
    ctx.session.userQuit = true;  // no automatic reconnect: it would fail the same way
    return;
  }
  if (sendCapEnd) ctx.SendToServer(u"CAP END");
}

QString ValueOf(const QStringList& caps, QStringView name) {
  for (const QString& cap : caps)
    if (cap.section(u'=', 0, 0).compare(name, Qt::CaseInsensitive) == 0) return cap.section(u'=', 1);
  return u"-"_s;  // not offered at all
}

// "LS * :a b=c", "LS :a", "ACK :sasl multi-prefix": the sub-command, whether more lines
// of it follow, and the capabilities.
struct CapLine {
  QString sub;
  bool more = false;
  QStringList caps;
};

CapLine ReadCapLine(const QString& rest) {
  CapLine line;
  line.sub = rest.section(u' ', 0, 0).toUpper();
  QString list = rest.section(u' ', 1);
  if (list.startsWith(u"* "_s)) line.more = true, list = list.mid(2);
  if (list.startsWith(u':')) list = list.mid(1);
  line.caps = list.split(u' ', Qt::SkipEmptyParts);
  return line;
}

QString Mechanism(const SaslAccount& account) { return account.External() ? u"EXTERNAL"_s : u"PLAIN"_s; }

void AfterListing(ClientContext& ctx) {
  SaslState& state = ctx.session.sasl;
  const QString sasl = ValueOf(state.offered, u"sasl");
  if (sasl == u"-") return Finish(ctx, QString::fromLatin1(kNotOfferedText), true);
  // A bare "sasl" (CAP 3.1) names no mechanisms: ours is worth a try.
  if (!sasl.isEmpty() && !sasl.split(u',').contains(Mechanism(state.account), Qt::CaseInsensitive))
    return Finish(ctx, QString::fromLatin1(kNoMechanismText).arg(sasl), true);
  const bool multiPrefix = ValueOf(state.offered, u"multi-prefix") != u"-";
  state.step = Step::Requesting;
  ctx.SendToServer(multiPrefix ? u"CAP REQ :sasl multi-prefix" : u"CAP REQ :sasl");
}

void OnCap(ClientContext& ctx, const ServerMessage& message) {
  SaslState& state = ctx.session.sasl;
  const CapLine line = ReadCapLine(message.rest);
  if (state.step == Step::Listing && line.sub == u"LS") {
    state.offered += line.caps;
    if (!line.more) AfterListing(ctx);
  } else if (state.step == Step::Requesting && line.sub == u"ACK" && line.caps.contains(u"sasl"_s, Qt::CaseInsensitive)) {
    state.step = Step::Authenticating;
    ctx.SendToServer(u"AUTHENTICATE "_s + Mechanism(state.account));
  } else if (state.step == Step::Requesting && line.sub == u"NAK") {
    Finish(ctx, QString::fromLatin1(kRefusedText).arg(line.caps.join(u' ')), true);
  }  // NEW, DEL, LIST and late lines change nothing for us
}

// 900 logged in, 903 done; 902, 904 to 907 failed; 908 lists the mechanisms the server
// has, sent when ours is not one of them.
void OnSaslNumeric(ClientContext& ctx, int number, const QString& rest) {
  SaslState& state = ctx.session.sasl;
  if (!SaslInProgress(state)) return;  // the rest of a verdict already taken
  if (number == 900 || (number == 903 && !state.loginShown)) {
    state.loginShown = true;
    ctx.PrintStatus(QString::fromLatin1(kLoggedInText).arg(Trailing(rest)), LineStyle::Info);
  }
  if (number == 903) return Finish(ctx, {}, false);
  if (number == 908) return Finish(ctx, QString::fromLatin1(kMechanismsText).arg(rest.section(u' ', 0, 0)), true);
  if (number != 900 && number != 901) Finish(ctx, QString::fromLatin1(kFailedText).arg(Trailing(rest)), true);
}

bool IsCommand(const ServerMessage& message, QStringView word) {
  return message.command.compare(word, Qt::CaseInsensitive) == 0;
}

}  // namespace

bool SaslInProgress(const SaslState& state) {
  return state.step != Step::Off && state.step != Step::Finished;
}

void BeginSasl(ClientContext& ctx, const SaslAccount& account) {
  ctx.session.sasl = SaslState{Step::Listing, account, {}, false};
  ctx.SendToServer(u"CAP LS 302");
}

bool SaslTakesLine(ClientContext& ctx, const ServerMessage& message) {
  SaslState& state = ctx.session.sasl;
  if (state.step == Step::Off) return false;
  if (IsCommand(message, u"CAP")) return OnCap(ctx, message), true;
  if (IsCommand(message, u"AUTHENTICATE")) {
    // EXTERNAL asks for no authorization identity: the server takes the certificate's.
    if (state.step == Step::Authenticating && message.target == u"+" && state.account.External())
      ctx.SendToServer(u"AUTHENTICATE +");
    else if (state.step == Step::Authenticating && message.target == u"+")
      for (const QString& line : SaslPlainLines(state.account.account, state.account.password)) ctx.SendToServer(line);
    return true;
  }
  const int number = CommandNumber(message.command);
  if (number >= 900 && number <= 908) return OnSaslNumeric(ctx, number, message.rest), true;
  if (!SaslInProgress(state)) return false;
  if (number == 421 && message.rest.startsWith(u"CAP", Qt::CaseInsensitive)) {
    Finish(ctx, QString::fromLatin1(kNoCapText).arg(Trailing(message.rest)), true, false);
    return true;
  }
  if (number >= 1 && number <= 99) {  // registered: CAP END would only puzzle the server
    Finish(ctx, QString::fromLatin1(kRegisteredText), true, false);
    return !ctx.session.connected;
  }
  return false;
}

void SaslOverdue(ClientContext& ctx, int seconds) {
  Finish(ctx, QString::fromLatin1(kOverdueText).arg(seconds), true);
}

QString SaslUnusableText(const SaslAccount& account, bool tls, const QString& certificatePath) {
  if (account.External() && !tls) return QString::fromLatin1(kCertificateLinkText);
  if (account.External() && !QFileInfo(certificatePath).isReadable())
    return QString::fromLatin1(kNoCertificateText).arg(certificatePath);
  if (!account.External() && !tls && !account.allowPlain) return QString::fromLatin1(kPlainLinkText);
  return {};
}

QStringList SaslPlainLines(const QString& account, const QString& password) {
  const QByteArray encoded = (account.toUtf8() + '\0' + account.toUtf8() + '\0' + password.toUtf8()).toBase64();
  QStringList lines;
  for (qsizetype at = 0; at < encoded.size(); at += kPieceLength)
    lines << u"AUTHENTICATE "_s + QString::fromLatin1(encoded.mid(at, kPieceLength));
  if (encoded.size() % kPieceLength == 0) lines << u"AUTHENTICATE +"_s;
  return lines;
}
