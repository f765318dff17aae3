// How long a shown tab takes to show a flood of lines, and how many paints it spends on
// them. The lines go through the real output path into the tab the view shows; the
// clock stops at the first paint that shows the last line at the bottom of the view.
//
//   tolv_gui_bench --benchmark_filter=TextView
//
// Arguments: lines printed between two turns of the event loop (100000: all at once, as
// fast as possible; 10: a steady stream, as when a socket brings a few lines per read),
// then the view's repaint interval (16: at most one repaint a frame; 0: every change
// asks QWidget::update, which merges only what piles up before the loop turns).

#include <benchmark/benchmark.h>

#include <QApplication>
#include <QElapsedTimer>
#include <QScrollBar>
#include <QStringList>
#include <QTemporaryDir>

#include <memory>

#include "settings/settings_defaults.h"
#include "settings/settings_store.h"
#include "gui/color_text_widget.h"
#include "views/output_path.h"
#include "views/tab_bar.h"

using namespace Qt::StringLiterals;

namespace {

constexpr int kLines = 100000;

void EnsureApplication() {
  if (QApplication::instance()) return;
  if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
  static int argc = 1;
  static char name[] = "tolv_gui_bench";
  static char* argv[] = {name, nullptr};
  new QApplication(argc, argv);  // lives as long as the process
}

// Channel lines of 50-70 characters, some coloured: at 480 pixels a few wrap.
const QStringList& Pool() {
  static const QStringList pool = [] {
    QStringList lines;
    for (int i = 0; i < 1024; ++i) {
      QString line = u"<nick%1> message number %2 with some words in it"_s
                         .arg(i % 50, 2, 10, QChar(u'0')).arg(100000 + i);
      if (i % 8 == 0) line.replace(u"some"_s, u"\x03" "4,12some\x03"_s);
      if (i % 5 == 0) line += u" and a bit more to say"_s;
      lines.append(line);
    }
    return lines;
  }();
  return pool;
}

// One shown 480 x 640 view of a fresh Status tab.
struct Scene {
  Scene() {
    InitialiseDefaults(store);
    store.SetDword(u"tstamps", 0);
    bar.OpenTab(u"Status", TabKind::Status);
    bar.ActivateTab(0);
    view = std::make_unique<ColorTextWidget>(bar, bar.At(0)->id, store);
    view->resize(480, 640);
    view->show();
    while (view->PaintCount() == 0) QCoreApplication::processEvents();
  }
  // Whether the view's last paint had the tab's last row on screen.
  bool LastLineShown() const {
    const QScrollBar* scroll = view->verticalScrollBar();
    const qsizetype rows = bar.At(0)->lines->RowCount();
    return shownAtPaint == rows &&
           scrollAtPaint == std::max<qsizetype>(0, rows - scroll->pageStep());
  }

  QTemporaryDir dir;
  SettingsStore store{dir.path()};
  TabBar bar{store};
  std::unique_ptr<ColorTextWidget> view;
  qsizetype shownAtPaint = -1;
  qsizetype scrollAtPaint = -1;
};

// Remembers what each paint is about to show: the paint reads the same state.
class PaintWatcher : public QObject {
 public:
  explicit PaintWatcher(Scene& scene) : scene_(scene) {
    scene.view->viewport()->installEventFilter(this);
  }
  bool eventFilter(QObject*, QEvent* event) override {
    if (event->type() == QEvent::Paint) {
      scene_.shownAtPaint = scene_.bar.At(0)->lines->RowCount();
      scene_.scrollAtPaint = scene_.view->verticalScrollBar()->value();
    }
    return false;
  }

 private:
  Scene& scene_;
};

void BM_TextViewFlood(benchmark::State& state) {
  EnsureApplication();
  const int batch = int(state.range(0));
  const QStringList& pool = Pool();
  double paints = 0;
  double rows = 0;
  for (auto _ : state) {
    Scene scene;
    scene.view->SetRepaintInterval(int(state.range(1)));
    PaintWatcher watcher(scene);
    const int before = scene.view->PaintCount();
    QElapsedTimer clock;
    clock.start();
    for (int i = 0; i < kLines; ++i) {
      PrintToTab(scene.bar, 0, pool[i % pool.size()], 0);
      if ((i + 1) % batch == 0) QCoreApplication::processEvents();
    }
    while (!scene.LastLineShown()) QCoreApplication::processEvents();
    state.SetIterationTime(double(clock.nsecsElapsed()) / 1e9);
    paints += scene.view->PaintCount() - before;
    rows += double(scene.bar.At(0)->lines->RowCount());
  }
  state.counters["paints"] = benchmark::Counter(paints, benchmark::Counter::kAvgIterations);
  state.counters["rows"] = benchmark::Counter(rows, benchmark::Counter::kAvgIterations);
  state.counters["lines/s"] =
      benchmark::Counter(double(kLines) * double(state.iterations()), benchmark::Counter::kIsRate);
}
BENCHMARK(BM_TextViewFlood)
    ->ArgsProduct({{kLines, 10}, {16, 0}})
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond)
    ->Iterations(3);

// A new width wraps every stored line again: the cost of turning the device.
void BM_TextViewRewrap(benchmark::State& state) {
  EnsureApplication();
  Scene scene;
  for (int i = 0; i < state.range(0); ++i) PrintToTab(scene.bar, 0, Pool()[i % 1024], 0);
  bool narrow = false;
  for (auto _ : state) {
    narrow = !narrow;
    scene.view->resize(narrow ? 360 : 480, 640);
  }
  state.counters["lines"] = double(state.range(0));
}
BENCHMARK(BM_TextViewRewrap)->Arg(kLines)->Unit(benchmark::kMillisecond)->Iterations(4);

}  // namespace
