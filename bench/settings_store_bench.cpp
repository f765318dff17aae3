// Settings are read at the moment of use, for every line the client shows (time stamps,
// logging bits, colours), so a read must cost far less than a microsecond.

#include "settings/settings_defaults.h"
#include "settings/settings_flags.h"
#include "settings/settings_store.h"

#include <QTemporaryDir>
#include <benchmark/benchmark.h>

namespace {

struct Fixture {
  QTemporaryDir dir;
  SettingsStore store{dir.path()};
  Fixture() { InitialiseDefaults(store); }
};

Fixture& Shared() {
  static Fixture fixture;
  return fixture;
}

void BM_GetDword(benchmark::State& state) {
  SettingsStore& store = Shared().store;
  for (auto _ : state) benchmark::DoNotOptimize(store.GetDword(u"tstamps"));
}
BENCHMARK(BM_GetDword);

void BM_TestOption(benchmark::State& state) {
  SettingsStore& store = Shared().store;
  for (auto _ : state) benchmark::DoNotOptimize(TestOption(store, kOptHidePingPong));
}
BENCHMARK(BM_TestOption);

void BM_GetString(benchmark::State& state) {
  SettingsStore& store = Shared().store;
  QString buffer;
  for (auto _ : state) {
    store.GetString(u"logpath", buffer, 250);
    benchmark::DoNotOptimize(buffer);
  }
}
BENCHMARK(BM_GetString);

void BM_GetStringWordList(benchmark::State& state) {
  SettingsStore& store = Shared().store;
  store.SetString(u"hlights", QString(1500, u'w'), 2002);
  QString buffer;
  for (auto _ : state) {
    store.GetString(u"hlights", buffer, 2002);
    benchmark::DoNotOptimize(buffer);
  }
}
BENCHMARK(BM_GetStringWordList);

}  // namespace
