// The dictionary on disk, 100,000 words in it: a lookup as every keystroke makes it, and
// teaching a sent line of 200 words. Every operation opens, walks and closes the file;
// only the system's page cache stands between it and the disk.
//
// Teaching writes behind: a Teach benchmark times what the user's thread spends (the
// writer is let finish between lines, outside the timing, as between sent lines), and
// its Drained twin times the line until its bytes are in the file (wall time).
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
    dictionary.WaitForWrites();
  }
  QTemporaryDir home;
  SettingsStore settings{home.path()};
  WhisperDictionary dictionary{settings, nullptr};
  QStringList words = DistinctWords(kBenchDictionaryWords, 17);
  QSet<QString> taught{words.begin(), words.end()};
  unsigned freshSets = 0;
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

QStringList KnownLines() {
  QStringList lines;
  for (qsizetype i = 0; i + 200 <= Dictionary().words.size(); i += 200)
    lines << Dictionary().words.mid(i, 200).join(u' ');
  return lines;
}

// 200 words it has never seen: each appends a branch and sets a link. The file grows.
QStringList NewLines(int count) {
  BenchDictionary& shared = Dictionary();
  const QStringList fresh = DistinctWords(200 * count, 23 + shared.freshSets++, shared.taught);
  for (const QString& word : fresh) shared.taught.insert(word);
  QStringList lines;
  for (qsizetype i = 0; i < fresh.size(); i += 200) lines << fresh.mid(i, 200).join(u' ');
  return lines;
}

void TeachLines(benchmark::State& state, const QStringList& lines, bool drained) {
  WhisperDictionary& dictionary = Dictionary().dictionary;
  qsizetype next = 0;
  for (auto _ : state) {
    dictionary.TeachText(lines[next++ % lines.size()]);
    if (drained) {
      dictionary.WaitForWrites();
    } else {
      state.PauseTiming();
      dictionary.WaitForWrites();
      state.ResumeTiming();
    }
  }
}

// 200 words the dictionary already holds: the usual line. Nothing is left to write.
void BM_WhisperTeachKnownLine(benchmark::State& state) { TeachLines(state, KnownLines(), false); }
BENCHMARK(BM_WhisperTeachKnownLine)->Unit(benchmark::kMicrosecond);

void BM_WhisperTeachKnownLineDrained(benchmark::State& state) { TeachLines(state, KnownLines(), true); }
BENCHMARK(BM_WhisperTeachKnownLineDrained)->UseRealTime()->Unit(benchmark::kMicrosecond);

void BM_WhisperTeachNewLine(benchmark::State& state) {
  TeachLines(state, NewLines(int(state.max_iterations)), false);
}
BENCHMARK(BM_WhisperTeachNewLine)->Iterations(500)->Unit(benchmark::kMicrosecond);

void BM_WhisperTeachNewLineDrained(benchmark::State& state) {
  TeachLines(state, NewLines(int(state.max_iterations)), true);
}
BENCHMARK(BM_WhisperTeachNewLineDrained)->Iterations(500)->UseRealTime()->Unit(benchmark::kMicrosecond);

}  // namespace
