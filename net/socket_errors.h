#pragma once
// Socket failures are shown with the error number the user of the pocket device saw,
// the Winsock one, so the messages read as they always did.

// The Winsock number for a POSIX errno value (ECONNREFUSED gives 10061, ...); errno
// values without a Winsock twin are shown as 10000 + errno.
int WinsockErrorNumber(int posixErrno);

// What the pocket device's resolver reported for a name it could not find
// (WSAHOST_NOT_FOUND), and Winsock's time-out (WSAETIMEDOUT).
inline constexpr int kWinsockHostNotFound = 11001;
inline constexpr int kWinsockTimedOut = 10060;
