#include "net/socket_errors.h"

#include <cerrno>

namespace {

struct ErrnoTwin {
  int posix;
  int winsock;
};

// Winsock numbered its errors after the BSD ones; the Linux values differ, so each one
// the user can meet is listed. EPIPE is what a send on a shut connection gives here;
// Winsock said WSAESHUTDOWN for it.
constexpr ErrnoTwin kTwins[] = {
    {EINTR, 10004},           {EBADF, 10009},           {EACCES, 10013},
    {EFAULT, 10014},          {EINVAL, 10022},          {EMFILE, 10024},
    {EAGAIN, 10035},          {EINPROGRESS, 10036},     {EALREADY, 10037},
    {ENOTSOCK, 10038},        {EDESTADDRREQ, 10039},    {EMSGSIZE, 10040},
    {EPROTOTYPE, 10041},      {ENOPROTOOPT, 10042},     {EPROTONOSUPPORT, 10043},
    {ESOCKTNOSUPPORT, 10044}, {EOPNOTSUPP, 10045},      {EPFNOSUPPORT, 10046},
    {EAFNOSUPPORT, 10047},    {EADDRINUSE, 10048},      {EADDRNOTAVAIL, 10049},
    {ENETDOWN, 10050},        {ENETUNREACH, 10051},     {ENETRESET, 10052},
    {ECONNABORTED, 10053},    {ECONNRESET, 10054},      {ENOBUFS, 10055},
    {EISCONN, 10056},         {ENOTCONN, 10057},        {EPIPE, 10058},
    {ETOOMANYREFS, 10059},    {ETIMEDOUT, 10060},       {ECONNREFUSED, 10061},
    {ELOOP, 10062},           {ENAMETOOLONG, 10063},    {EHOSTDOWN, 10064},
    {EHOSTUNREACH, 10065},    {ENOTEMPTY, 10066},       {EUSERS, 10068},
    {EDQUOT, 10069},          {ESTALE, 10070},          {EREMOTE, 10071},
#if EWOULDBLOCK != EAGAIN
    {EWOULDBLOCK, 10035},
#endif
};

}  // namespace

int WinsockErrorNumber(int posixErrno) {
  for (const ErrnoTwin& twin : kTwins)
    if (twin.posix == posixErrno) return twin.winsock;
  return 10000 + posixErrno;
}
