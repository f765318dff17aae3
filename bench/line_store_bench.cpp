// The cost of keeping a tab's lines: appending must not slow down as the tab fills, and a
// million ordinary lines must stay small.
//
//   tolv_bench --benchmark_filter=LineStore

#include <benchmark/benchmark.h>

#include <QFile>
#include <QStringList>
#include <chrono>
#include <unistd.h>

#include "views/line_store.h"
#include "views/line_wrap.h"

using namespace Qt::StringLiterals;

namespace {

// About a pocket screen's width in a small font: lines of 60-75 characters wrap to two rows.
const FixedTextMeasure kMeasure(6, 7, 2);
constexpr int kWidth = 300;
constexpr qsizetype kPoolSize = 4096;

// Channel lines as the view stores them, 60 characters each, a few with colour codes.
const QStringList& Pool() {
  static const QStringList pool = [] {
    QStringList lines;
    for (int i = 0; i < kPoolSize; ++i) {
      QString line = u"<nick%1> message text number %2 with some words"_s
                         .arg(i % 50, 2, 10, QChar(u'0'))
                         .arg(100000 + i);
      if (i % 8 == 0) line.replace(u"some"_s, u"\x03" "4some\x03"_s);
      lines.append(line.leftJustified(60, u'.'));
    }
    return lines;
  }();
  return pool;
}

void Fill(LineStore& store, qsizetype count) {
  const QStringList& pool = Pool();
  for (qsizetype i = 0; i < count; ++i) store.Append(pool[i % kPoolSize], 0);
}

qsizetype ResidentBytes() {
  QFile statm(u"/proc/self/statm"_s);
  if (!statm.open(QIODevice::ReadOnly)) return 0;
  const QList<QByteArray> fields = statm.readAll().split(' ');
  return fields.size() > 1 ? fields[1].toLongLong() * sysconf(_SC_PAGESIZE) : 0;
}

// A million lines first, so the heap is fresh when the resident size is compared.
void BM_LineStoreMemory(benchmark::State& state) {
  const qsizetype lines = state.range(0);
  Pool();
  for (auto _ : state) {
    const qsizetype before = ResidentBytes();
    LineStore store;
    store.SetLayout(kWidth, &kMeasure);
    Fill(store, lines);
    state.counters["bytes_per_line"] = double(store.MemoryBytes()) / double(lines);
    state.counters["rss_bytes_per_line"] = double(ResidentBytes() - before) / double(lines);
    state.counters["rows_per_line"] = double(store.RowCount()) / double(lines);
  }
}
BENCHMARK(BM_LineStoreMemory)->Arg(1000000)->Iterations(1)->Unit(benchmark::kMillisecond);

// Appends batches onto a store that holds about `base` lines: the store is refilled
// (outside the timed part) before it grows past a tenth over its size.
void BM_LineStoreAppend(benchmark::State& state) {
  constexpr int kBatch = 1000;
  const qsizetype base = state.range(0);
  const QStringList& pool = Pool();
  LineStore store;
  store.SetLayout(kWidth, &kMeasure);
  Fill(store, base);
  qsizetype next = 0;
  for (auto _ : state) {
    const auto start = std::chrono::steady_clock::now();
    for (int i = 0; i < kBatch; ++i)
      benchmark::DoNotOptimize(store.Append(pool[next++ % kPoolSize], 0));
    state.SetIterationTime(
        std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count());
    if (store.LineCount() > base + base / 10 + kBatch) {
      store.Clear();
      Fill(store, base);
    }
  }
  state.SetItemsProcessed(state.iterations() * kBatch);
  state.counters["time_per_line"] = benchmark::Counter(
      double(state.iterations() * kBatch),
      benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}
BENCHMARK(BM_LineStoreAppend)->Arg(1000)->Arg(1000000)->UseManualTime()->Iterations(300);

// A width or font change re-wraps every line once.
void BM_LineStoreRelayout(benchmark::State& state) {
  LineStore store;
  Fill(store, state.range(0));
  int width = kWidth;
  for (auto _ : state) {
    width = width == kWidth ? kWidth + 60 : kWidth;
    store.SetLayout(width, &kMeasure);
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_LineStoreRelayout)->Arg(1000000)->Iterations(3)->Unit(benchmark::kMillisecond);

// Scrolling and hit-testing find the line of a row.
void BM_LineStoreRowToLine(benchmark::State& state) {
  LineStore store;
  store.SetLayout(kWidth, &kMeasure);
  Fill(store, state.range(0));
  const qsizetype rows = store.RowCount();
  qsizetype row = 0;
  for (auto _ : state) {
    row = (row + 7919) % rows;
    benchmark::DoNotOptimize(store.RowToLine(row));
  }
}
BENCHMARK(BM_LineStoreRowToLine)->Arg(1000000);

}  // namespace
