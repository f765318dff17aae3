#pragma once
// The two generated palettes of the "Select color" dialog: the big palette of hues that
// fade toward middle grey row by row, and the strip of tints and shades of one colour.
// Colours are 0x00BBGGRR, red in the low byte, as the colour scheme stores them.

#include <QtGlobal>

#include <array>

inline constexpr int kBigPaletteColumns = 24;
inline constexpr int kBigPaletteRows = 10;
inline constexpr int kShadeCells = 16;
inline constexpr int kPaletteCellPixels = 8;  // at screen factor 1

// The cell selected when the dialog opens: the one under (129, 73), a dark blue-violet.
inline constexpr int kInitialPaletteColumn = 129 / kPaletteCellPixels;
inline constexpr int kInitialPaletteRow = 73 / kPaletteCellPixels;

constexpr quint32 ColourRef(int red, int green, int blue) {
  return quint32(red & 0xff) | quint32(green & 0xff) << 8 | quint32(blue & 0xff) << 16;
}
constexpr int RedOf(quint32 colour) { return int(colour & 0xff); }
constexpr int GreenOf(quint32 colour) { return int((colour >> 8) & 0xff); }
constexpr int BlueOf(quint32 colour) { return int((colour >> 16) & 0xff); }

// Column 0..23 runs red, yellow, green, cyan, blue, magenta in six segments of four
// steps; row 0..9 pulls the hue 10 % further toward (128, 128, 128) each.
quint32 BigPaletteColour(int column, int row);

// Cells 0..7 tint `colour` toward white (cell 7 is the colour itself), cells 8..15 shade
// it toward black.
std::array<quint32, kShadeCells> ShadeStrip(quint32 colour);
