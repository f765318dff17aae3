// Linked into every fuzz target. Made-up server lines name addresses (a USERHOST reply is
// looked up backwards, a DCC offer names a host and port); none of that may leave this
// machine, so the look-ups and outgoing connects the client could make fail here. The
// server connection itself is a socket pair.

#include <netdb.h>
#include <sys/socket.h>

#include <cerrno>

extern "C" {

int getnameinfo(const sockaddr*, socklen_t, char*, socklen_t, char*, socklen_t, int) { return EAI_NONAME; }

int getaddrinfo(const char*, const char*, const addrinfo*, addrinfo** result) {
  if (result) *result = nullptr;
  return EAI_NONAME;
}

int connect(int, const sockaddr*, socklen_t) { return errno = ECONNREFUSED, -1; }

// Qt keeps some allocations for the life of the process; they are not findings.
const char* __lsan_default_suppressions() { return "leak:libQt6Core.so\n"; }

}  // extern "C"
