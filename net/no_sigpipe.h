#pragma once
// OpenSSL writes to its socket with write(), which raises SIGPIPE when the server has gone,
// and SIGPIPE ends the program. While a guard lives, the signal is held back on the
// calling thread (the write then fails with EPIPE, which OpenSSL reports); one that was
// raised is taken away before the thread's old mask returns.

#include <csignal>
#include <ctime>
#include <pthread.h>

class NoSigpipe {
 public:
  NoSigpipe() {
    sigemptyset(&pipe_);
    sigaddset(&pipe_, SIGPIPE);
    pthread_sigmask(SIG_BLOCK, &pipe_, &old_);
  }
  ~NoSigpipe() {
    const timespec now{};
    while (sigtimedwait(&pipe_, nullptr, &now) > 0) {
    }
    pthread_sigmask(SIG_SETMASK, &old_, nullptr);
  }
  NoSigpipe(const NoSigpipe&) = delete;
  NoSigpipe& operator=(const NoSigpipe&) = delete;

 private:
  sigset_t pipe_{}, old_{};
};
