#pragma once
// One window per user and home folder: a second start asks the running one to come to
// the front and ends. The running window listens on a local socket named after the user
// and the home folder.

#include <QObject>
#include <QString>

class QLocalServer;
class QWidget;

class SingleInstance : public QObject {
  Q_OBJECT

 public:
  explicit SingleInstance(const QString& homeDir, QObject* parent = nullptr);

  // True when another instance answered and was asked to come to the front.
  bool RaiseRunningInstance() const;
  // Starts listening; each later start raises `window`.
  bool Listen(QWidget* window);
  const QString& Name() const { return name_; }

 private:
  QString name_;
  QLocalServer* server_ = nullptr;
};
