#pragma once
// One QCoreApplication for a test process, and a bounded way to run its event loop.

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QThread>

#include <functional>

inline QCoreApplication& TestApp() {
  static int argc = 1;
  static char name[] = "tolv_tests";
  static char* argv[] = {name, nullptr};
  static QCoreApplication* app =
      QCoreApplication::instance() ? QCoreApplication::instance() : new QCoreApplication(argc, argv);
  return *app;
}

// Runs the event loop until `done` holds or `milliseconds` pass; returns `done()`.
inline bool RunUntil(const std::function<bool()>& done, int milliseconds = 5000) {
  TestApp();
  const QDeadlineTimer deadline(milliseconds);
  while (!done() && !deadline.hasExpired()) {
    QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
    QThread::msleep(1);
  }
  return done();
}
