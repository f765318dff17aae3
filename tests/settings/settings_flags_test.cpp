#include "settings/settings_flags.h"
#include "settings/settings_store.h"

#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace {

TEST(SettingsFlags, ControlIdentifiersMapToTheirMasks) {
  const std::pair<quint32, quint32> cases[] = {
      {1201, 0x1},   {1202, 0x2},   {1203, 0x4},   {1204, 0x200},       {1205, 0x400},
      {1208, 0x80},  {1215, 0x100}, {1218, 0x8},   {1219, 0x10},        {1220, 0x20},
      {1221, 0x40},  {1113, 0x01000000},           {1616, 0x1000},      {1801, 0x1},
      {1802, 0x2},   {1803, 0x4},   {1818, 0x8},   {1809, 0x100},       {1810, 0x200},
      {1811, 0x400}, {0x40, 0x40},  {1200, 1200},  {0xffffffff, 0xffffffff},
  };
  for (const auto& [control, mask] : cases) EXPECT_EQ(MaskForControl(control), mask) << control;
}

TEST(SettingsFlags, PackedWordsReadAndWriteBitByBit) {
  QTemporaryDir dir;
  SettingsStore store(dir.path());
  // A missing packed word reads as -1: every flag tests as set.
  EXPECT_TRUE(TestOption(store, kOptReconnect));
  EXPECT_EQ(GetNibble(store, u"Files", kWhispersCountShift), 15);

  store.SetDword(u"Options", 0x010001C0);
  EXPECT_TRUE(TestOption(store, 1221));   // "Splash at startup"
  EXPECT_FALSE(TestOption(store, 1218));  // "Reconnect"
  SetFlag(store, u"Options", 1218, true);
  SetFlag(store, u"Options", kOptSplash, false);
  EXPECT_EQ(store.GetDword(u"Options"), 0x01000188);

  store.SetDword(u"Files", 0x2100);
  EXPECT_EQ(GetNibble(store, u"Files", 12), 2);
  SetNibble(store, u"Files", 12, 15);
  EXPECT_EQ(store.GetDword(u"Files"), 0xF100);
  SetNibble(store, u"DCC", kDccSendPolicyShift, 2);  // on a missing word: all bits but the nibble
  EXPECT_EQ(store.GetDword(u"DCC"), static_cast<qint32>(0xFFFFFF2F));
  EXPECT_TRUE(TestFlag(store, u"Files", 1809));
}

}  // namespace
