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
  do {  // at least one pass, however late a loaded machine lets us in
    if (done()) return true;
    QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
    QThread::msleep(1);
  } while (!deadline.hasExpired());
  return done();
}

// Lets a window finish what it posted to itself (layouts, queued rebuilds, each of which
// may post the next): a few passes whatever the load, then whatever comes within 50 ms.
inline void Settle() {
  for (int pass = 0; pass < 5; ++pass) RunUntil([] { return false; }, 0);
  RunUntil([] { return false; }, 50);
}
