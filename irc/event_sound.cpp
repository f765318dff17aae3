#include "irc/event_sound.h"

#include "client/client_context.h"
#include "settings/settings_paths.h"
#include "settings/settings_store.h"

void PlayEventSound(ClientContext& ctx, QStringView event) {
  if (ctx.settings.GetDword(u"snd_enable") == 0) return;
  QString file;
  if (GetSoundFile(ctx.settings, event, file)) ctx.shell.PlaySound(file);
}
