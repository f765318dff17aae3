#include "settings/colour_palette.h"

namespace {

constexpr std::array<int, 4> kUp{0, 64, 128, 192};
constexpr std::array<int, 4> kDown{255, 192, 128, 64};

// C++ division truncates toward zero, as the palette's arithmetic wants for the
// channels below middle grey.
int TowardGrey(int channel, int percent) { return 128 + ((channel - 128) * percent) / 100; }

}  // namespace

quint32 BigPaletteColour(int column, int row) {
  const int segment = column / 4;
  const int up = kUp[size_t(column % 4)];
  const int down = kDown[size_t(column % 4)];
  struct Base {
    int r, g, b;
  };
  const std::array<Base, 6> bases{{{255, up, 0},
                                   {down, 255, 0},
                                   {0, 255, up},
                                   {0, down, 255},
                                   {up, 0, 255},
                                   {255, 0, down}}};
  const Base base = bases[size_t(segment)];
  const int percent = 100 - 10 * row;
  return ColourRef(TowardGrey(base.r, percent), TowardGrey(base.g, percent),
                   TowardGrey(base.b, percent));
}

std::array<quint32, kShadeCells> ShadeStrip(quint32 colour) {
  const std::array<int, 3> channels{RedOf(colour), GreenOf(colour), BlueOf(colour)};
  std::array<quint32, kShadeCells> cells{};
  for (int i = 0; i < 8; ++i) {
    std::array<int, 3> tint{}, shade{};
    for (size_t c = 0; c < 3; ++c) {
      tint[c] = channels[c] + ((255 - channels[c]) >> 3) * (7 - i);
      shade[c] = channels[c] - (channels[c] >> 3) * (i + 1);
    }
    cells[size_t(i)] = ColourRef(tint[0], tint[1], tint[2]);
    cells[size_t(8 + i)] = ColourRef(shade[0], shade[1], shade[2]);
  }
  return cells;
}
