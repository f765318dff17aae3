// Linked into every fuzz target. A fuzzer feeds the client millions of made-up server
// lines; some of them name addresses (a USERHOST reply is looked up backwards, a DCC
// offer names a host and port). None of that may leave this machine, so the name look-ups
// and outgoing connections the client could make are answered here, without the network.
// The server connection itself is a socket pair and needs none of them.

#include <netdb.h>
#include <sys/socket.h>

#include <cerrno>

extern "C" {

// A reverse look-up that finds no name: the client then shows the address as it is.
int getnameinfo(const sockaddr*, socklen_t, char*, socklen_t, char*, socklen_t, int) {
  return EAI_NONAME;
}

int getaddrinfo(const char*, const char*, const addrinfo*, addrinfo** result) {
  if (result) *result = nullptr;
  return EAI_NONAME;
}

int connect(int, const sockaddr*, socklen_t) {
  errno = ECONNREFUSED;
  return -1;
}

// Qt keeps some allocations for the life of the process (type and plugin registries,
// thread data); they are not ours to free and not findings.
const char* __lsan_default_suppressions() { return "leak:libQt6Core.so\n"; }

}  // extern "C"
