// The colour picker's palettes, the picture's blend, and the View values in the settings.

#include "settings/colour_palette.h"
#include "settings/look_options.h"
#include "settings/settings_store.h"

#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace {

struct PaletteCell {
  const char* name;
  int column, row;
  quint32 colour;
};

class BigPalette : public testing::TestWithParam<PaletteCell> {};

TEST_P(BigPalette, CellColour) {
  EXPECT_EQ(BigPaletteColour(GetParam().column, GetParam().row), GetParam().colour);
}

INSTANTIATE_TEST_SUITE_P(
    Cells, BigPalette,
    testing::Values(PaletteCell{"TopLeftIsPureRed", 0, 0, ColourRef(255, 0, 0)},
                    PaletteCell{"RowNineOfRedTruncatesTowardZero", 0, 9, ColourRef(140, 116, 116)},
                    PaletteCell{"YellowSegmentStepsDown", 5, 0, ColourRef(192, 255, 0)},
                    PaletteCell{"GreenSegmentStepsUp", 11, 0, ColourRef(0, 255, 192)},
                    PaletteCell{"CyanSegmentStepsDown", 14, 5, ColourRef(64, 128, 191)},
                    PaletteCell{"BlueSegmentStepsUp", 18, 0, ColourRef(128, 0, 255)},
                    PaletteCell{"MagentaLastColumn", 23, 2, ColourRef(229, 26, 77)}),
    [](const auto& info) { return std::string(info.param.name); });

struct Strip {
  const char* name;
  quint32 colour;
  std::array<quint32, kShadeCells> cells;
};

constexpr quint32 Grey(int v) { return ColourRef(v, v, v); }

class ShadeStripOf : public testing::TestWithParam<Strip> {};

TEST_P(ShadeStripOf, Cells) { EXPECT_EQ(ShadeStrip(GetParam().colour), GetParam().cells); }

INSTANTIATE_TEST_SUITE_P(
    Colours, ShadeStripOf,
    testing::Values(
        Strip{"Black", Grey(0),
              {Grey(217), Grey(186), Grey(155), Grey(124), Grey(93), Grey(62), Grey(31), Grey(0),
               Grey(0), Grey(0), Grey(0), Grey(0), Grey(0), Grey(0), Grey(0), Grey(0)}},
        Strip{"White", Grey(255),
              {Grey(255), Grey(255), Grey(255), Grey(255), Grey(255), Grey(255), Grey(255), Grey(255),
               Grey(224), Grey(193), Grey(162), Grey(131), Grey(100), Grey(69), Grey(38), Grey(7)}}),
    [](const auto& info) { return std::string(info.param.name); });

struct Blend {
  const char* name;
  int byte, level, blended;
};

class BlendOf : public testing::TestWithParam<Blend> {};

TEST_P(BlendOf, Byte) {
  EXPECT_EQ(BlendByte(quint8(GetParam().byte), GetParam().level), GetParam().blended);
}

INSTANTIATE_TEST_SUITE_P(Bytes, BlendOf,
                         testing::Values(Blend{"NearWhiteAtSix", 250, 6, 253},
                                         Blend{"LevelZeroKeeps", 37, 0, 37},
                                         Blend{"LevelTenWhitens", 0, 10, 255},
                                         Blend{"TruncatesAtOne", 100, 1, 115}),
                         [](const auto& info) { return std::string(info.param.name); });

TEST(LookOptions, SizesAreBroughtInAndFacesFitTheirValue) {
  QTemporaryDir home;
  SettingsStore store(home.path());
  ViewOptions view = DefaultViewOptions();
  view.faces[size_t(FontElement::List)] = QString(40, u'x');
  view.textSize = 30;
  view.listSize = 2;
  SaveViewOptions(store, view);
  EXPECT_EQ(store.GetDword(u"FontSize"), 0x0f | 0x00 << 4);
  EXPECT_EQ(LoadViewOptions(store).faces[size_t(FontElement::List)], QString(34, u'x'));
}

}  // namespace
