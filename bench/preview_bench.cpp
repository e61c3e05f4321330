// Paging through a report in the preview: each page shown lays the whole
// report out again and paints that one page on the preview's picture, as the
// desktop program does (the window itself, its scaling and the status
// window's repaints are not counted). The reading HIF is given on the
// command line; bench/preview_bench.sh makes one of 32,600 meters.
//
//   preview/next   ten pages shown one after the other from page 1
//   preview/last   the last page, then the one before it
//
// The counter ms_per_page is the mean time from one page shown to the next.
#include <benchmark/benchmark.h>

#include <chrono>
#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include "base/Clock.h"
#include "base/Shell.h"
#include "base/UserSettings.h"
#include "reports/clsReport.h"
#include "reports/qt/QtRptDevice.h"

#include <QtGui/QImage>

namespace {

std::string gReading;

// A window that answers each page with the next action and counts pages.
class BenchPreview final : public hifx::IRptPreview {
 public:
  BenchPreview(std::vector<std::string> actions, int& shown) : actions_(std::move(actions)), shown_(shown) {}
  hifx::IRptDevice& Picture() override { return picture_; }
  void SizePicture(double width, double length) override { picture_.Resize(width, length); }
  void ClearPicture() override { picture_.Clear(); }
  std::string Display(const std::string& caption) override {
    benchmark::DoNotOptimize(picture_.Image().constBits());
    lastCaption = caption;
    return static_cast<size_t>(shown_++) < actions_.size() ? actions_[static_cast<size_t>(shown_ - 1)] : "CLOSE";
  }
  std::string lastCaption;

 private:
  hifx::QtImageDevice picture_{8.5, 11.0, 96};
  std::vector<std::string> actions_;
  int& shown_;
};

void Page(benchmark::State& state, std::vector<std::string> actions) {
  hifx::QtReportSession qt;
  hifx::SilentShell shell;
  hifx::SystemClock clock;
  hifx::MemoryUserSettings settings;
  const auto printers = hifx::QtPrinters::ToPdf("unused.pdf");
  int pages = 0;
  const auto start = std::chrono::steady_clock::now();
  for (auto _ : state) {
    hifx::clsReport report(shell, clock, *printers, settings);
    report.SetPreviewWindow([&] { return std::make_unique<BenchPreview>(actions, pages); });
    if (!report.Begin(true, gReading, hifx::kReportReading, "")) state.SkipWithError("the preview did not run");
  }
  const std::chrono::duration<double, std::milli> spent = std::chrono::steady_clock::now() - start;
  state.counters["ms_per_page"] = pages == 0 ? 0.0 : spent.count() / pages;
}

}  // namespace

BENCHMARK_CAPTURE(Page, next, std::vector<std::string>(9, "NEXT"))->Name("preview/next")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Page, last, std::vector<std::string>{"LAST", "PREV"})
    ->Name("preview/last")
    ->Unit(benchmark::kMillisecond);

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  if (argc != 2) {
    std::fprintf(stderr, "usage: preview_bench [benchmark flags] READING.pdb\n");
    return 2;
  }
  gReading = argv[1];
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}
