// The word lists run on every incoming message: IsIgnored for each sender and
// HighlightStyle for each text, here with 50 words in each list and no hit, the cost
// every ordinary line pays.
//
//   tolv_bench --benchmark_filter='Ignored|Highlight'

#include "client/client_context.h"
#include "bench/null_shell.h"
#include "irc/word_lists.h"
#include "settings/settings_defaults.h"
#include "settings/settings_store.h"

#include <QTemporaryDir>
#include <benchmark/benchmark.h>

using namespace Qt::StringLiterals;

namespace {

// 50 words of 6 to 9 letters, each with its blank.
QString FiftyWords(QStringView stem) {
  QString list;
  for (int i = 0; i < 50; ++i) list += stem.toString() + QString::number(i * 37) + u' ';
  return list;
}

struct Lists {
  Lists() {
    InitialiseDefaults(settings);
    settings.SetDword(u"en_ignore", 1);
    settings.SetDword(u"en_hlights", 1);
    settings.SetString(u"ignore", FiftyWords(u"troll"), 2002);
    settings.SetString(u"hlights", FiftyWords(u"word"), 2002);
  }
  QTemporaryDir dir;
  SettingsStore settings{dir.path()};
  NullShell shell;
  ClientContext ctx{settings, shell};
};

const QString kText = u"well, I think the new release fixes that crash, try it and tell me"_s;

void BM_IsIgnored(benchmark::State& state) {
  Lists lists;
  for (auto _ : state) benchmark::DoNotOptimize(IsIgnored(lists.ctx, u"somebody"));
}
BENCHMARK(BM_IsIgnored);

void BM_HighlightStyle(benchmark::State& state) {
  Lists lists;
  for (auto _ : state)
    benchmark::DoNotOptimize(HighlightStyle(lists.ctx, kText, LineStyle::Normal));
}
BENCHMARK(BM_HighlightStyle);

// What one channel line costs in the two lists together.
void BM_IgnoredAndHighlightPerLine(benchmark::State& state) {
  Lists lists;
  for (auto _ : state) {
    benchmark::DoNotOptimize(IsIgnored(lists.ctx, u"somebody"));
    benchmark::DoNotOptimize(HighlightStyle(lists.ctx, kText, LineStyle::Normal));
  }
}
BENCHMARK(BM_IgnoredAndHighlightPerLine);

}  // namespace
