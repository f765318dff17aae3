#include "client/client_context.h"

#include "irc/dcc_ctcp.h"
#include "irc/event_sound.h"
#include "irc/word_lists.h"
#include "settings/settings_store.h"
#include "views/output_path.h"

using namespace Qt::StringLiterals;

ClientContext::ClientContext(SettingsStore& store, Shell& userShell)
    : settings(store),
      shell(userShell),
      tabs(store),
      whispers(store, [this](const QString& line) { PrintStatus(line, LineStyle::Info); }) {
  // The tab bar announces a new chat with the "query" sound; the settings pick the file.
  QObject::connect(&tabs, &TabBar::eventSound, &tabs,
                   [this](const QString& event) { PlayEventSound(*this, event); });
  notify.Load(settings);
}

void ClientContext::ReportSocketError(int winsockError) {
  PrintStatus(u"* ["_s + QString::number(winsockError) + u"] Software caused connection abort"_s,
              LineStyle::Info);
  session.connected = false;
}

void ClientContext::SendToServer(QStringView line) {
  if (session.serverSocket == kNoSocket) return;
  SendLineIfAny(session.serverSocket, line, *this);
}

void ClientContext::PrintStatus(QStringView text, LineStyle style) {
  PrintToTab(tabs, 0, text, Colour(style));
}

quint32 ClientContext::Colour(LineStyle style) const { return StyleColour(settings, style); }

void ClientContext::SendDccRequest(const QString& nick, const DccRequest& request) {
  ::SendDccRequest(*this, nick, request);
}

// Before registration the server has given us no nick yet; the one we asked for is ours.
QString ClientContext::OwnNick() const {
  if (!session.currentNick.isEmpty()) return session.currentNick;
  QString nick;
  settings.GetString(u"nick", nick, 120);
  return nick;
}

bool ClientContext::IsIgnoredNick(QStringView nick) { return IsIgnored(*this, nick); }

quint32 ClientContext::ServerSideAddress() const { return ServerLinkAddress(session); }
