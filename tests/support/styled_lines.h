#pragma once
// Lets protocol tests see a line's style in its colour: every "kolory" entry gets its own
// colour (entry i is i + 1), so the colour a line was printed in names its style.

#include "support/irc_client_fixture.h"

inline constexpr const char* kStyleNames[] = {"Action", "Ping",   "Invite", "Join",  "Part",  "Topic",
                                               "Whois",  "Mode",   "Normal", "Notice", "Notify", "Hlight",
                                               "Nick",   "Kick",   "Quit",   "Info",   "Info2"};

// A registered client ("me") whose lines read back as "tab|text|style", tabs in bar order;
// a colour that is no style shows as "colour N".
class StyledClient : public IrcClientFixture {
 public:
  StyledClient() {
    QByteArray colours(96, '\0');
    for (int i = 0; i < 24; ++i) colours[i * 4] = static_cast<char>(i + 1);
    settings.SetBinary(u"kolory", colours);
    settings.SetDword(u"DCC", 0);  // no USERHOST when the gate registers
    ctx.session.currentNick = QStringLiteral("me");
    ctx.session.connected = true;
  }

  QStringList Shown() const {
    QStringList out;
    for (int p = 0; p < ctx.tabs.Count(); ++p) {
      const ConversationTab* tab = ctx.tabs.At(p);
      for (qsizetype i = 0; i < tab->lines->LineCount(); ++i) {
        const StoredLine line = tab->lines->Line(i);
        const int style = static_cast<int>(line.colour) - 8;
        out << tab->name + u'|' + line.text + u'|' +
                   (style >= 0 && style < 17 ? QString::fromLatin1(kStyleNames[style])
                                             : QStringLiteral("colour ") + QString::number(line.colour));
      }
    }
    return out;
  }
};
