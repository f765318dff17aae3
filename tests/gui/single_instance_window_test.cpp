// A second start with the same home folder finds the running window and raises it;
// another home folder is another instance.

#include "gui/single_instance_window.h"
#include "support/test_app.h"

#include <QTemporaryDir>
#include <QWidget>
#include <gtest/gtest.h>

namespace {

TEST(SingleInstance, ASecondStartRaisesTheRunningWindow) {
  QTemporaryDir home, otherHome;
  QWidget window;
  SingleInstance running(home.path());
  ASSERT_TRUE(running.Listen(&window));
  EXPECT_FALSE(SingleInstance(otherHome.path()).RaiseRunningInstance());
  EXPECT_TRUE(SingleInstance(home.path()).RaiseRunningInstance());
  EXPECT_TRUE(RunUntil([&] { return window.isVisible(); }, 3000));
}

// A socket left behind by a crashed instance is taken over, not obeyed.
TEST(SingleInstance, AStaleSocketIsTakenOver) {
  QTemporaryDir home;
  QWidget window;
  {
    SingleInstance crashed(home.path());
    ASSERT_TRUE(crashed.Listen(&window));
  }
  SingleInstance next(home.path());
  EXPECT_FALSE(next.RaiseRunningInstance());
  EXPECT_TRUE(next.Listen(&window));
}

}  // namespace
