// The conversation model under load: the whole output path per line on a tab that holds
// a thousand or a million lines, and a channel of 100,000 nicks.
//
//   tolv_bench --benchmark_filter='PrintToTab|Nick'

#include "settings/settings_defaults.h"
#include "settings/settings_store.h"
#include "views/output_path.h"
#include "views/tab_bar.h"

#include <QRandomGenerator>
#include <QTemporaryDir>
#include <benchmark/benchmark.h>

using namespace Qt::StringLiterals;

namespace {

QString ChannelLine(qsizetype i) {
  return u"<nick%1> message text number %2 with some words"_s.arg(i % 50).arg(i);
}

// The output path with its settings reads, on a background channel (label colour and
// balloon switch checked every line), time stamps on, logging off.
void BM_PrintToTab(benchmark::State& state) {
  QTemporaryDir dir;
  SettingsStore settings(dir.path());
  InitialiseDefaults(settings);
  settings.SetDword(u"tstamps", 1);
  TabBar bar(settings);
  bar.OpenTab(u"Status", TabKind::Status);
  bar.OpenTab(u"#bench", TabKind::Channel);
  bar.ActivateTab(0);
  for (qsizetype i = 0; i < state.range(0); ++i) PrintToTab(bar, 1, ChannelLine(i), 0x00ff00);
  qsizetype i = 0;
  for (auto _ : state) benchmark::DoNotOptimize(PrintToTab(bar, 1, ChannelLine(i++), 0x00ff00));
  state.counters["lines_held"] = static_cast<double>(bar.At(1)->lines->LineCount());
}
BENCHMARK(BM_PrintToTab)->Arg(1000)->Arg(1000000)->Unit(benchmark::kNanosecond);

QStringList RandomNicks(int count) {
  QStringList nicks;
  QRandomGenerator random(42);
  for (int i = 0; i < count; ++i) {
    QString nick = u"n"_s + QString::number(random.generate(), 36) + QString::number(i);
    if (i % 50 == 0) nick.prepend(u'@');
    else if (i % 10 == 0) nick.prepend(u'+');
    nicks << nick;
  }
  return nicks;
}

// A names reply of 100,000 nicks into one channel, then the first look at the list.
void BM_NamesBurst(benchmark::State& state) {
  const QStringList nicks = RandomNicks(static_cast<int>(state.range(0)));
  QTemporaryDir dir;
  SettingsStore settings(dir.path());
  for (auto _ : state) {
    TabBar bar(settings);
    bar.OpenTab(u"#big", TabKind::Channel);
    for (const QString& nick : nicks) bar.AddNickUnchecked(u"#big", nick);
    benchmark::DoNotOptimize(bar.ChannelNickList(u"#big")->Count());
  }
}
BENCHMARK(BM_NamesBurst)->Arg(100000)->Unit(benchmark::kMillisecond);

struct BigChannel {
  QTemporaryDir dir;
  SettingsStore settings{dir.path()};
  TabBar bar{settings};
  QStringList nicks = RandomNicks(100000);
  BigChannel() {
    bar.OpenTab(u"#big", TabKind::Channel);
    for (const QString& nick : nicks) bar.AddNickUnchecked(u"#big", nick);
  }
};

BigChannel& Big() {
  static BigChannel big;
  return big;
}

void BM_FindNickIn100k(benchmark::State& state) {
  BigChannel& big = Big();
  qsizetype i = 0;
  for (auto _ : state) {
    benchmark::DoNotOptimize(big.bar.FindNick(u"#big", big.nicks[(i * 7919) % big.nicks.size()]));
    ++i;
  }
}
BENCHMARK(BM_FindNickIn100k);

// A join and a part in a channel of 100,000: one insertion in place and one removal.
void BM_JoinPartIn100k(benchmark::State& state) {
  BigChannel& big = Big();
  for (auto _ : state) {
    big.bar.AddNick(u"#big", u"newcomer");
    big.bar.RemoveNick(u"#big", u"newcomer");
  }
}
BENCHMARK(BM_JoinPartIn100k);

}  // namespace
