// One keystroke in the input line with the whisper pop-up open over a dictionary of
// 100,000 words: the lookup on disk and the pop-up's new rows and size. With "Paint" the
// pop-up is also painted at once, as the next frame would.
//
//   tolv_gui_bench --benchmark_filter=WhisperRefresh

#include "bench/null_shell.h"
#include "bench/whisper_words.h"
#include "client/client_context.h"
#include "gui/whisper_attachment.h"
#include "gui/whisper_popup_widget.h"
#include "settings/settings_defaults.h"
#include "settings/settings_flags.h"
#include "settings/settings_store.h"

#include <benchmark/benchmark.h>

#include <QApplication>
#include <QLineEdit>
#include <QTemporaryDir>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace {

void EnsureApplication() {
  if (QApplication::instance()) return;
  if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
  static int argc = 1;
  static char name[] = "tolv_gui_bench";
  static char* argv[] = {name, nullptr};
  new QApplication(argc, argv);
}

// A 480 x 640 window with one field at its bottom, whispering as the input line does.
struct Scene {
  Scene() {
    InitialiseDefaults(settings);
    SetNibble(settings, u"Files", kWhispersCountShift, 4);
    ctx.tabs.OpenTab(u"Status", TabKind::Status);
    ctx.tabs.ActivateTab(0);
    ctx.tabs.SetScaleFactor(2);
    ctx.whispers.EnsureDictionary(false);
    TeachAll(ctx.whispers, words);
    auto* column = new QVBoxLayout(&window);
    column->addStretch();
    field = new QLineEdit(&window);
    column->addWidget(field);
    window.resize(480, 640);
    window.show();
    attachment = AttachWhispers(field, ctx, WhisperField::InputLine);
  }
  bool application = (EnsureApplication(), true);  // before the first widget member
  QTemporaryDir home;
  SettingsStore settings{home.path()};
  NullShell shell;
  ClientContext ctx{settings, shell};
  QStringList words = DistinctWords(kBenchDictionaryWords, 17);
  QWidget window;
  QLineEdit* field = nullptr;
  WhisperAttachment* attachment = nullptr;
};

// Typing on: each step is one more letter of a taught word, so the pop-up stays open.
void BM_WhisperRefresh(benchmark::State& state) {
  static Scene scene;
  QStringList typed;
  for (int i = 0; i < 1000; ++i) typed << u"say "_s + scene.words[i * 97].left(1 + i % 4);
  qsizetype next = 0;
  qsizetype shown = 0;
  for (auto _ : state) {
    scene.field->setText(typed[next++ % typed.size()]);
    if (WhisperPopup* popup = scene.attachment->Popup()) {
      if (state.range(0)) popup->repaint();
      ++shown;
    }
  }
  state.counters["open"] = benchmark::Counter(double(shown) / double(state.iterations()));
}
BENCHMARK(BM_WhisperRefresh)->ArgName("Paint")->Arg(0)->Arg(1)->Unit(benchmark::kMicrosecond);

}  // namespace
