#pragma once
// The colour categories of output lines. Output takes a colour, not a style: callers
// look up the style's current colour, which the user may change at any time.

#include <QtGlobal>

class SettingsStore;

// In the order of their colours in "kolory" (from entry 7 on) and on the colour page.
enum class LineStyle : int {
  Action, Ping, Invite, Join, Part, Topic, Whois, Mode, Normal,
  Notice, Notify, Hlight, Nick, Kick, Quit, Info, Info2,
};

// The style's colour (0x00BBGGRR) from "kolory"; 0, the view's default, when unreadable.
quint32 StyleColour(const SettingsStore& settings, LineStyle style);
// Entry `index` (0..23) of "kolory"; 0 when unreadable.
quint32 ViewColour(const SettingsStore& settings, int index);
