#pragma once
// The program's state in one object, owned by the main window (or the headless front
// end) and passed explicitly: the settings, the tabs, the session, and the pending-request
// flags the handlers share. Tests build as many as they like.

#include "client/shell.h"
#include "commands/input_history.h"
#include "dcc/dcc_engine.h"
#include "dcc/dcc_link.h"
#include "favorites/favorite_list.h"
#include "irc/notify_list.h"
#include "irc/numeric_handlers.h"
#include "irc/word_matchers.h"
#include "net/session.h"
#include "net/socket_transport.h"
#include "views/line_style.h"
#include "views/tab_bar.h"
#include "whispers/whisper_dictionary.h"

#include <QString>
#include <functional>

class SettingsStore;
class WordTeacher;

class ClientContext : public SocketErrorSink, public DccLink {
 public:
  ClientContext(SettingsStore& settings, Shell& shell);

  SettingsStore& settings;
  Shell& shell;
  TabBar tabs;
  Session session;

  // Shared by the channel, numeric and pop-up menu handlers.
  QString actionChannel;     // the channel whose names reply fills its nick list
  bool userhostRequested = false;
  bool isonRequested = false;
  QString pendingKickLine;   // sent once the ban of a ban-kick is set
  bool optionsDialogOpen = false;
  bool dccOfferBusy = false;
  NotifyList notify;  // the watched nicks and which of them are on IRC
  BanList banList;    // a ban list the user asked for, until its chooser takes it
  // The reverse look-up of the own address; tests replace it so that no test ever asks
  // a name server. Empty: the system resolver.
  std::function<QString(const QString& address)> lookUpHostName;
  IgnoreMatcher ignoreMatcher;        // the ignore list, prepared
  HighlightMatcher highlightMatcher;  // the highlight list, prepared
  InputHistory history;               // the input line's earlier lines
  FavoriteList favorites;             // the Favorites menu; the front end loads it
  WhisperDictionary whispers;         // word completion; the front end prepares the file
  DccEngine dccEngine{settings, tabs, shell, *this};  // chats and transfers, tied to tabs
  DccStarter* dcc = &dccEngine;  // what the commands ask of DCC; tests may record it instead
  // Attached by the front end once it exists; commands cope without it.
  WordTeacher* wordTeacher = nullptr;

  // "* [N] Software caused connection abort" on Status in the Info colour; the connection
  // then ends on the next tick.
  void ReportSocketError(int winsockError) override;
  // Sends one line to the server (nothing when it is empty or there is no connection).
  void SendToServer(QStringView line);
  // Writes a line on Status (position 0) in the style's colour.
  void PrintStatus(QStringView text, LineStyle style);
  quint32 Colour(LineStyle style) const;

  // DCC's view of the IRC side.
  void SendDccRequest(const QString& nick, const DccRequest& request) override;
  QString OwnNick() const override;
  bool IsIgnoredNick(QStringView nick) override;
  quint32 ServerSideAddress() const override;
};
