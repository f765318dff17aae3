#include "irc/event_sound.h"
#include "support/irc_client_fixture.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

TEST(PlayEventSound, PlaysTheConfiguredFileWhenSoundsAreOn) {
  IrcClientFixture f;
  const QString home = f.settings.HomeDir() + u'/';
  PlayEventSound(f.ctx, u"join");
  PlayEventSound(f.ctx, u"query");  // no file by default
  f.settings.SetString(u"query", u"mine.wav", 250, SettingsKey::Sounds);
  f.ctx.tabs.OpenTab(u"bob", TabKind::Chat);  // a new chat announces itself
  f.ctx.tabs.OpenTab(u"#chan", TabKind::Channel);  // a channel does not
  f.settings.SetDword(u"snd_enable", 0);
  PlayEventSound(f.ctx, u"join");
  EXPECT_EQ(f.shell.sounds, (QStringList{home + u"join.wav"_s, home + u"mine.wav"_s}));
}

}  // namespace
