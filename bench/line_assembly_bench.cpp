// Server lines per second through line assembly: typical channel PRIVMSG lines arriving
// in 16 KiB reads, lines cut across read boundaries, each decoded, parsed, gated and
// dispatched (to the Status tab while no message handler is plugged in: a fair stand-in
// for the cost of the real one). Time stamps on, logging off.
//
//   tolv_bench --benchmark_filter='SplitAndDispatch|ParseServerLine'

#include "client/client_context.h"
#include "bench/null_shell.h"
#include "irc/line_assembly.h"
#include "irc/server_message.h"
#include "settings/settings_defaults.h"
#include "settings/settings_store.h"
#include "views/tab_bar.h"

#include <QTemporaryDir>
#include <benchmark/benchmark.h>

#include <vector>

using namespace Qt::StringLiterals;

namespace {

QByteArray ChannelLine(int i, bool accented) {
  const QString text = accented ? u"ça va très bien, merci — und dir? %1"_s.arg(i)
                                : u"message text number %1 with some words in it"_s.arg(i);
  return (u":nick%1!~user%1@host-%1.example.net PRIVMSG #bench :"_s.arg(i % 50) + text)
             .toUtf8() + "\r\n";
}

// The stream cut into 16 KiB reads; returns the reads and the line count.
std::vector<QByteArray> Reads(int lines, bool accented) {
  QByteArray stream;
  for (int i = 0; i < lines; ++i) stream += ChannelLine(i, accented);
  std::vector<QByteArray> reads;
  for (qsizetype at = 0; at < stream.size(); at += 16384) reads.push_back(stream.mid(at, 16384));
  return reads;
}

void BM_SplitAndDispatch(benchmark::State& state) {
  constexpr int kLines = 20000;
  const std::vector<QByteArray> reads = Reads(kLines, state.range(0) != 0);
  QTemporaryDir dir;
  SettingsStore settings(dir.path());
  InitialiseDefaults(settings);
  settings.SetDword(u"tstamps", 1);
  NullShell shell;
  ClientContext ctx(settings, shell);
  ctx.tabs.OpenTab(u"Status", TabKind::Status);
  ctx.tabs.ActivateTab(0);
  ctx.session.currentNick = u"me"_s;
  ctx.session.serverHost = u"irc.example.net"_s;

  qint64 lines = 0;
  for (auto _ : state) {
    for (const QByteArray& read : reads) SplitAndDispatch(ctx, read);
    lines += kLines;
    state.PauseTiming();
    ctx.tabs.At(0)->lines->Clear();  // keep memory flat over long runs
    state.ResumeTiming();
  }
  state.SetItemsProcessed(lines);
  state.counters["lines/s"] = benchmark::Counter(double(lines), benchmark::Counter::kIsRate);
}
BENCHMARK(BM_SplitAndDispatch)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);

void BM_ParseServerLine(benchmark::State& state) {
  const QString line = QString::fromUtf8(ChannelLine(7, false)).trimmed();
  const QString host = u"irc.example.net"_s;
  for (auto _ : state) benchmark::DoNotOptimize(ParseServerLine(line, host));
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_ParseServerLine);

}  // namespace
