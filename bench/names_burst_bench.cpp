// Joining a channel of 50,000 users: the server's names reply arrives as about 1,800
// lines of roughly 400 bytes (read in 16 KiB chunks on the SplitAndDispatch road). Each
// line is shown raw on Status and its nicks go into the channel's nick list, which is
// sorted once, on the first look at it (included in the time). Time stamps on, logging
// off.
//
// The own JOIN is written by the channel handlers; here the channel tab is opened and
// `actionChannel` set as that JOIN leaves them.
//
//   tolv_bench --benchmark_filter='NamesBurst50k'

#include "client/client_context.h"
#include "bench/null_shell.h"
#include "irc/dispatch.h"
#include "irc/line_assembly.h"
#include "irc/notify_list.h"
#include "irc/numeric_handlers.h"
#include "irc/registration.h"
#include "irc/server_message.h"
#include "settings/settings_defaults.h"
#include "settings/settings_store.h"
#include "views/tab_bar.h"

#include <QTemporaryDir>
#include <benchmark/benchmark.h>

#include <memory>
#include <vector>

using namespace Qt::StringLiterals;

namespace {

constexpr int kNicks = 50000;
constexpr qsizetype kLineBytes = 400;

QByteArray NamesBurst() {
  QByteArray stream;
  const QByteArray head = ":irc.test 353 me = #big :";
  QByteArray line = head;
  for (int i = 0; i < kNicks; ++i) {
    QByteArray nick = "user" + QByteArray::number(i * 7919 % 100003, 36) + QByteArray::number(i);
    if (i % 97 == 0)
      nick.prepend('@');
    else if (i % 13 == 0)
      nick.prepend('+');
    if (line.size() + nick.size() + 1 > kLineBytes) {
      stream += line + "\r\n";
      line = head;
    }
    if (line.size() > head.size()) line += ' ';
    line += nick;
  }
  stream += line + "\r\n:irc.test 366 me #big :End of NAMES list\r\n";
  return stream;
}

std::vector<QByteArray> Reads(const QByteArray& stream) {
  std::vector<QByteArray> reads;
  for (qsizetype at = 0; at < stream.size(); at += 16384) reads.push_back(stream.mid(at, 16384));
  return reads;
}

// A registered client that has just joined #big.
struct Scene {
  explicit Scene(SettingsStore& settings) : ctx(settings, shell) {
    ctx.tabs.OpenTab(u"Status", TabKind::Status);
    ctx.tabs.ActivateTab(ctx.tabs.OpenTab(u"#big", TabKind::Channel));
    ctx.session.currentNick = u"me"_s;
    ctx.session.connected = true;
    ctx.actionChannel = u"#big"_s;
  }
  NullShell shell;
  ClientContext ctx;
  NotifyList notify;
  BanList banList;
  NumericState numeric{notify, banList, {}};
};

// What the line assembly does with each line, with the numeric handler called directly
// while the dispatch table has no numeric row yet.
void FeedToNumericHandler(Scene& scene, const QByteArray& stream) {
  for (QByteArrayView rest = stream; !rest.isEmpty();) {
    const qsizetype lf = rest.indexOf('\n');
    QByteArrayView bytes = rest.first(lf);
    rest = rest.sliced(lf + 1);
    if (bytes.endsWith('\r')) bytes.chop(1);
    QString line = QString::fromUtf8(bytes);
    TrimTrailingBlanks(line);
    const ServerMessage message = ParseServerLine(line, scene.ctx.session.serverHost);
    if (!message.target.isEmpty() && message.target != u"*") RegistrationGate(scene.ctx, message);
    HandleNumeric(scene.ctx, scene.numeric, message);
  }
}

SettingsStore& BenchSettings() {
  static QTemporaryDir dir;
  static SettingsStore settings(dir.path());
  static const bool ready = [] {
    InitialiseDefaults(settings);
    settings.SetDword(u"tstamps", 1);
    settings.SetDword(u"Files", 0);
    return true;
  }();
  (void)ready;
  return settings;
}

int CheckedNickCount(benchmark::State& state, Scene& scene) {
  const int count = scene.ctx.tabs.ChannelNickList(u"#big")->Count();
  if (count != kNicks) state.SkipWithError("the nick list is incomplete");
  return count;
}

void BM_NamesBurst50kNumericHandler(benchmark::State& state) {
  const QByteArray stream = NamesBurst();
  for (auto _ : state) {
    state.PauseTiming();
    auto scene = std::make_unique<Scene>(BenchSettings());
    state.ResumeTiming();
    FeedToNumericHandler(*scene, stream);
    benchmark::DoNotOptimize(CheckedNickCount(state, *scene));
    state.PauseTiming();
    scene.reset();
    state.ResumeTiming();
  }
  state.counters["lines"] = static_cast<double>(stream.count('\n'));
}
BENCHMARK(BM_NamesBurst50kNumericHandler)->Unit(benchmark::kMillisecond);

// The whole road from the socket's reads, once the numeric row is plugged into the
// dispatch table.
void BM_NamesBurst50kSplitAndDispatch(benchmark::State& state) {
  const ServerMessage probe{{}, u"353"_s, u"me"_s, {}};
  const DispatchRow* row = FindDispatchRow(probe);
  if (row == nullptr || row->handler == nullptr) {
    state.SkipWithError("the dispatch table has no numeric handler yet");
    return;
  }
  const std::vector<QByteArray> reads = Reads(NamesBurst());
  for (auto _ : state) {
    state.PauseTiming();
    auto scene = std::make_unique<Scene>(BenchSettings());
    state.ResumeTiming();
    for (const QByteArray& read : reads) SplitAndDispatch(scene->ctx, read);
    benchmark::DoNotOptimize(CheckedNickCount(state, *scene));
    state.PauseTiming();
    scene.reset();
    state.ResumeTiming();
  }
}
BENCHMARK(BM_NamesBurst50kSplitAndDispatch)->Unit(benchmark::kMillisecond);

}  // namespace
