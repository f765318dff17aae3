#include "views/line_style.h"

#include "settings/settings_store.h"

quint32 ViewColour(const SettingsStore& settings, int index) {
  QByteArray colours;
  if (!settings.GetBinary(u"kolory", colours, 96) || index < 0 || (index + 1) * 4 > colours.size())
    return 0;
  const auto byte = [&](int i) { return static_cast<quint32>(static_cast<quint8>(colours[index * 4 + i])); };
  return byte(0) | (byte(1) << 8) | (byte(2) << 16) | (byte(3) << 24);
}

quint32 StyleColour(const SettingsStore& settings, LineStyle style) {
  return ViewColour(settings, 7 + static_cast<int>(style));
}
