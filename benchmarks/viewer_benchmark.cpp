// SPDX-License-Identifier: BSD-3-Clause
// How long a hand waits in the window: from a mouse's move to the picture on the screen, which has
// no screen behind it here.
//
//   QT_QPA_PLATFORM=offscreen build/release/bin/viewer_benchmark
//
// The picture has noise, since zeros flatter everyone, and lights; radius 40 pixels, emphasis 20. A
// time is from the event to the first image that was made with its values, the true frame or a
// proxy. The counters: median_ms of these; proxies as a part of all; longest_gap_ms, for which the
// window's thread did not look for events; and longest_busy_ms, the processor time that it spent in
// one such gap: what the code itself is to blame for on a machine that has other work, too. The
// machine's load is the first thing to note down.
#include <benchmark/benchmark.h>

#include <QApplication>
#include <QEventLoop>
#include <QMouseEvent>
#include <QSettings>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <algorithm>
#include <chrono>
#include <cstdint>
#include <ctime>
#include <memory>
#include <random>
#include <vector>

#include "host/looks/keys.h"
#include "host/looks/page_file.h"
#include "host/module/module_choice.h"
#include "host/pictures/picture_file.h"
#include "host/viewer/picture/picture_view.h"
#include "host/viewer/window/main_window.h"

namespace {

using namespace glimmerhost;
using Clock = std::chrono::steady_clock;

double Milliseconds(Clock::duration time) {
  return std::chrono::duration<double, std::milli>(time).count();
}

// Noise in the lower eighth, and a light in every 10,000 pixels.
Picture Noise(int width, int height) {
  Picture picture;
  picture.width = width;
  picture.height = height;
  std::mt19937 random(1);
  picture.samples.resize(picture.PixelCount() * 4);
  for (std::size_t i = 0; i < picture.samples.size(); i += 4) {
    const bool isLight = random() % 10000 == 0;
    for (std::size_t c = 0; c < 3; ++c) {
      picture.samples[i + c] =
          isLight ? std::uint16_t{65535} : static_cast<std::uint16_t>(random() % 8192);
    }
    picture.samples[i + 3] = 65535;
  }
  return picture;
}

// The processor time of this thread.
double BusyMilliseconds() {
  timespec time{};
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
  return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_nsec) / 1e6;
}

// The longest time in which no event was looked for.
class Gap {
 public:
  Gap() {
    QObject::connect(&timer_, &QTimer::timeout, [this] { Note(); });
  }

  void Begin() {
    Note();
    longest = 0.0;
    longestBusy = 0.0;
    timer_.start(0);
  }

  void End() { timer_.stop(); }

  double longest = 0.0;  // milliseconds
  double longestBusy = 0.0;

 private:
  void Note() {
    const Clock::time_point now = Clock::now();
    const double busy = BusyMilliseconds();
    longest = std::max(longest, Milliseconds(now - last_));
    longestBusy = std::max(longestBusy, busy - lastBusy_);
    last_ = now;
    lastBusy_ = busy;
  }

  QTimer timer_;
  Clock::time_point last_;
  double lastBusy_ = 0.0;
};

class Desk {
 public:
  Desk(int width, int height, const char* shape)
      : module_(std::make_shared<const EffectModule>(ChooseModule("", ""))),
        window_(page_, module_, {"", std::filesystem::path(folder_.path().toStdString())}) {
    const QString file = folder_.filePath("noise.tif");
    PictureOutput(file.toStdString(), false).Write(Noise(width, height), 16);
    window_.resize(1600, 1000);
    window_.show();
    view_ = window_.findChild<PictureView*>();
    Viewing* const viewing = window_.Shown();
    window_.Open(file);
    window_.Document()->SetText("shape", shape, "");
    window_.Document()->SetText("emphasis", "20", "");
    window_.Document()->SetText("radius-x", "40px", "");
    window_.Document()->SetText("radius-psf1", "30px", "");
    window_.Document()->SetText("radius-psf2", "40px", "");
    while (!viewing->Loaded() || !viewing->IsSettled() ||
           view_->ComposedAfter() != viewing->Result()) {
      QApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
  }

  PictureView* View() { return view_; }
  MainWindow* Window() { return &window_; }

  // Until an image is shown whose values are the look's of now.
  void WaitForPicture() {
    Viewing* const viewing = window_.Shown();
    while (viewing->State() == ShownState::kWorking ||
           view_->ComposedAfter() != viewing->Result()) {
      QApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
  }

 private:
  QTemporaryDir folder_;
  Page page_ = LoadPage();
  std::shared_ptr<const EffectModule> module_;
  MainWindow window_;
  PictureView* view_;
};

void Report(benchmark::State& state, std::vector<double> waits, int proxies, const Gap& gap) {
  std::nth_element(waits.begin(), waits.begin() + static_cast<std::ptrdiff_t>(waits.size() / 2),
                   waits.end());
  state.counters["median_ms"] = waits[waits.size() / 2];
  state.counters["proxies"] = static_cast<double>(proxies) / static_cast<double>(waits.size());
  state.counters["longest_gap_ms"] = gap.longest;
  state.counters["longest_busy_ms"] = gap.longestBusy;
}

// Each step waits for its picture, and is measured.
template <class Step>
void Drag(benchmark::State& state, Desk* desk, const Step& step) {
  Gap gap;
  std::vector<double> waits;
  int proxies = 0;
  gap.Begin();
  int number = 0;
  for ([[maybe_unused]] auto each : state) {
    const Clock::time_point start = Clock::now();
    step(++number);
    desk->WaitForPicture();
    const double wait = Milliseconds(Clock::now() - start);
    state.SetIterationTime(wait / 1000.0);
    waits.push_back(wait);
    proxies += desk->Window()->Shown()->Rendered().isProxy ? 1 : 0;
  }
  gap.End();
  Report(state, waits, proxies, gap);
}

void BM_DragCrosshair(benchmark::State& state) {
  Desk desk(static_cast<int>(state.range(0)), static_cast<int>(state.range(1)), "image");
  PictureView* const view = desk.View();
  const QPoint middle =
      view->Corner() + QPoint(view->ScreenSize().width() / 2, view->ScreenSize().height() / 2);
  QTest::mousePress(view, Qt::LeftButton, {}, middle);
  Drag(state, &desk,
       [&](int number) { QTest::mouseMove(view, middle + QPoint(number % 200, number % 120)); });
  QTest::mouseRelease(view, Qt::LeftButton, {}, middle);
}

void BM_DragRadius(benchmark::State& state) {
  Desk desk(static_cast<int>(state.range(0)), static_cast<int>(state.range(1)), "polygon");
  const int gesture = LookDocument::NewGesture();
  Drag(state, &desk, [&](int number) {
    const double radius = (40.0 + number % 40 * 0.1) * 2.0 / static_cast<double>(state.range(0));
    desk.Window()->Document()->SetValues({{kRadiusXKey, radius}, {kRadiusYKey, radius}}, 1, "",
                                         gesture);
  });
}

BENCHMARK(BM_DragCrosshair)
    ->Args({1920, 1080})
    ->Args({3840, 2160})
    ->Iterations(60)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK(BM_DragRadius)
    ->Args({1920, 1080})
    ->Args({3840, 2160})
    ->Iterations(60)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);

}  // namespace

int main(int argc, char** argv) {
  const QTemporaryDir settings;
  QSettings::setDefaultFormat(QSettings::IniFormat);
  QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, settings.path());
  const QApplication application(argc, argv);
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
  return 0;
}
