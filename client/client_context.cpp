#include "client/client_context.h"

#include "irc/event_sound.h"
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
