#include "net/socket_errors.h"

#include <gtest/gtest.h>

#include <cerrno>

namespace {

struct ErrnoCase {
  int posix;
  int winsock;
};

class SocketErrorsTest : public testing::TestWithParam<ErrnoCase> {};

TEST_P(SocketErrorsTest, ShowsTheWinsockNumber) {
  EXPECT_EQ(WinsockErrorNumber(GetParam().posix), GetParam().winsock)
      << "errno " << GetParam().posix;
}

INSTANTIATE_TEST_SUITE_P(
    SocketErrors, SocketErrorsTest,
    testing::Values(ErrnoCase{ECONNREFUSED, 10061}, ErrnoCase{ETIMEDOUT, 10060},
                    ErrnoCase{ECONNRESET, 10054}, ErrnoCase{EHOSTUNREACH, 10065},
                    ErrnoCase{ENETUNREACH, 10051}, ErrnoCase{ENETDOWN, 10050},
                    ErrnoCase{ECONNABORTED, 10053}, ErrnoCase{EPIPE, 10058},
                    ErrnoCase{ENOTCONN, 10057}, ErrnoCase{EADDRINUSE, 10048},
                    ErrnoCase{EADDRNOTAVAIL, 10049}, ErrnoCase{EAFNOSUPPORT, 10047},
                    ErrnoCase{EINTR, 10004}, ErrnoCase{EBADF, 10009}, ErrnoCase{EACCES, 10013},
                    ErrnoCase{EFAULT, 10014}, ErrnoCase{EINVAL, 10022}, ErrnoCase{EMFILE, 10024},
                    ErrnoCase{EWOULDBLOCK, 10035}, ErrnoCase{EAGAIN, 10035},
                    ErrnoCase{EINPROGRESS, 10036}, ErrnoCase{EALREADY, 10037},
                    ErrnoCase{ENOTSOCK, 10038}, ErrnoCase{EMSGSIZE, 10040},
                    ErrnoCase{ENOBUFS, 10055}, ErrnoCase{EISCONN, 10056},
                    ErrnoCase{EHOSTDOWN, 10064},
                    // Without a Winsock twin: 10000 + errno.
                    ErrnoCase{ENOENT, 10000 + ENOENT}, ErrnoCase{ENOMEM, 10000 + ENOMEM}));

}  // namespace
