#include "whispers/whisper_actions.h"

#include "client/client_context.h"
#include "settings/settings_flags.h"

using namespace Qt::StringLiterals;

namespace {

constexpr QStringView kWarningTitle = u"Warning";

}  // namespace

void StartWhispers(ClientContext& ctx) {
  if (TestFlag(ctx.settings, u"Files", kWhispersBackup)) ctx.whispers.BackupDictionary();
  ctx.whispers.EnsureDictionary(false);
  ctx.wordTeacher = &ctx.whispers;
}

// Both act at once, whatever the dialog they were asked from does afterwards.
void AskAndFlushWhispers(ClientContext& ctx) {
  if (ctx.shell.AskYesNo(kWarningTitle.toString(), u"Erase current whispers?"_s))
    ctx.whispers.EnsureDictionary(true);
}

void AskAndRestoreWhispers(ClientContext& ctx) {
  if (ctx.shell.AskYesNo(kWarningTitle.toString(), u"Restore previous whispers?"_s))
    ctx.whispers.RestoreDictionary();
}
