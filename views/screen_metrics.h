#pragma once
// The screen factor and the four font heights, from the window's logical size and the
// settings: a pocket screen 240 wide (320 in landscape) is factor 1, one twice as wide
// factor 2, and sizes grow with it.

class SettingsStore;

// Portrait (at least as tall as wide): 1 below 241 pixels wide, else width / 240;
// landscape: 1 below 321, else width / 320.
int ScreenFactor(int width, int height);

struct FontHeights {
  int tab = 13;
  int input = 13;
  int text = 13;  // the conversation views
  int list = 13;  // the nick lists
};

// "FontSize" holds the text and list heights minus 11 in its low two nibbles. With "VGA"
// on, only the input line follows the factor.
FontHeights PlanFontHeights(const SettingsStore& settings, int factor);
