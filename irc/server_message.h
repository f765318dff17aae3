#pragma once
// One line from the server cut into its four texts. Nothing here knows the connection:
// the parser is a pure function of the line and the host that stands in for a missing
// prefix, so it can be tested without a socket.

#include <QString>
#include <QStringView>

struct ServerMessage {
  QString prefix;   // "nick!user@host" or a server name, without the ":"
  QString command;  // the command word or numeric, case kept
  QString target;   // the first parameter; empty when missing or when it starts with ":"
  QString rest;     // everything behind the first parameter, one leading ":" removed
};

// Cuts `line` into the four fields; missing ones are empty. A line without a prefix gets
// `defaultPrefix` (the selected server's host). `fieldCount`, when given, receives the
// number of fields found in the text (0 to 4).
ServerMessage ParseServerLine(QStringView line, const QString& defaultPrefix,
                              int* fieldCount = nullptr);

// Removes trailing blanks (U+0020 only; tabs and other spaces stay).
void TrimTrailingBlanks(QString& line);

// The leading decimal digits of a command word as a number ("001" is 1); 0 when the word
// does not start with a digit. Saturates rather than overflowing on absurdly long runs.
int CommandNumber(QStringView command);
