// The dictionary on disk, 100,000 words in it: a lookup as every keystroke makes it, and
// teaching a sent line of 200 words. Every operation opens, walks and closes the file;
// only the system's page cache stands between it and the disk.
//
//   tolv_bench --benchmark_filter=Whisper

#include "bench/whisper_words.h"
#include "settings/settings_store.h"

#include <benchmark/benchmark.h>

#include <QTemporaryDir>

using namespace Qt::StringLiterals;

namespace {

struct BenchDictionary {
  BenchDictionary() {
    dictionary.EnsureDictionary(false);
    TeachAll(dictionary, words);
  }
  QTemporaryDir home;
  SettingsStore settings{home.path()};
  WhisperDictionary dictionary{settings, nullptr};
  QStringList words = DistinctWords(kBenchDictionaryWords, 17);
};

BenchDictionary& Dictionary() {
  static BenchDictionary shared;
  return shared;
}

// What a user types: the first 1 to 5 letters of taught words.
QStringList TypedPrefixes() {
  QStringList typed;
  const QStringList& words = Dictionary().words;
  for (int i = 0; i < 1000; ++i) typed << words[i * 97 % words.size()].left(1 + i % 5);
  return typed;
}

void BM_WhisperLookup(benchmark::State& state) {
  WhisperDictionary& dictionary = Dictionary().dictionary;
  const QStringList typed = TypedPrefixes();
  qsizetype next = 0;
  for (auto _ : state) {
    WhisperCompletions found = dictionary.FindCompletions(typed[next++ % typed.size()], int(state.range(0)));
    benchmark::DoNotOptimize(found);
  }
}
BENCHMARK(BM_WhisperLookup)->Arg(2)->Arg(15)->Unit(benchmark::kMicrosecond);

// 200 words the dictionary already holds: the usual line.
void BM_WhisperTeachKnownLine(benchmark::State& state) {
  WhisperDictionary& dictionary = Dictionary().dictionary;
  QStringList lines;
  for (qsizetype i = 0; i + 200 <= Dictionary().words.size(); i += 200)
    lines << Dictionary().words.mid(i, 200).join(u' ');
  qsizetype next = 0;
  for (auto _ : state) dictionary.TeachText(lines[next++ % lines.size()]);
}
BENCHMARK(BM_WhisperTeachKnownLine)->Unit(benchmark::kMicrosecond);

// 200 words it has never seen: each appends a branch. The file grows by the run.
void BM_WhisperTeachNewLine(benchmark::State& state) {
  WhisperDictionary& dictionary = Dictionary().dictionary;
  const QStringList fresh = DistinctWords(200 * int(state.max_iterations), 23,
                                          QSet<QString>(Dictionary().words.begin(), Dictionary().words.end()));
  QStringList lines;
  for (qsizetype i = 0; i < fresh.size(); i += 200) lines << fresh.mid(i, 200).join(u' ');
  qsizetype next = 0;
  for (auto _ : state) dictionary.TeachText(lines[next++]);
}
BENCHMARK(BM_WhisperTeachNewLine)->Iterations(500)->Unit(benchmark::kMicrosecond);

}  // namespace
