#pragma once
// irssi as the other user in interop tests, in a pseudo-terminal of its own (it wants
// one) with a private home, connected to a test server; stopped by its PID.

#include <QByteArray>
#include <QSocketNotifier>
#include <QString>
#include <QTemporaryDir>

#include <memory>

class IrssiPeer {
 public:
  IrssiPeer(const QString& nick, int serverPort);
  ~IrssiPeer();
  IrssiPeer(const IrssiPeer&) = delete;
  IrssiPeer& operator=(const IrssiPeer&) = delete;

  // False when irssi is missing or did not start.
  bool Start();
  // Types a line, as at irssi's prompt.
  void Type(const QByteArray& line);
  // Everything irssi drew so far, escape sequences included.
  const QByteArray& Screen() const { return screen_; }
  QString Downloads() const { return home_.path() + QStringLiteral("/downloads/"); }

 private:
  void Drain();

  QString nick_;
  int port_;
  QTemporaryDir home_;
  int pid_ = -1;
  int terminal_ = -1;
  std::unique_ptr<QSocketNotifier> notifier_;
  QByteArray screen_;
};
