// Drawing the meters of a 30,000-meter reading file of 100 routes, each
// route a walk along the streets of a grid town about 6 km across; most
// meters read, some out of range, skipped or not read, one in a hundred
// without a position. The file is made once, outside the timing.
//
//   plot/svg   read the file and write the SVG text
//   plot/png   read the file and draw the PNG
//
// HIFX_PLOT_PICTURES=DIR also leaves plot.svg and plot.png in DIR to look at.
#include <benchmark/benchmark.h>

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <string>

#include "base/AtomicFile.h"
#include "base/Shell.h"
#include "base/Value.h"
#include "hif/MeterPlot.h"
#include "hif/clsHIF.h"
#include "reports/qt/QtPlot.h"

namespace {

namespace fs = std::filesystem;
using hifx::Value;

constexpr int32_t kRoutes = 100;
constexpr int32_t kMetersPerRoute = 300;

void AddMeter(hifx::clsHIF& hif, int32_t route, int32_t sequence) {
  const int32_t i = (route - 1) * kMetersPerRoute + sequence - 1;
  // Routes are blocks of a 10 x 10 grid; a route snakes along its block's
  // three streets, a meter every 6 m or so.
  const int32_t row = (route - 1) / 10, column = (route - 1) % 10;
  const int32_t street = (sequence - 1) / 100, along = (sequence - 1) % 100;
  const int32_t step = street % 2 == 0 ? along : 99 - along;
  const int32_t lat = 45050000 + row * 5400 + street * 1800;
  const int32_t lng = 7630000 + column * 7600 + step * 76;
  const bool placed = i % 100 != 7;
  const int32_t previous = 1000 + i % 5000;
  int32_t status = 1, current = previous + 30, code = 0;
  if (i % 37 == 0) current = previous + 900;      // above the range
  if (i % 53 == 0) status = 0, current = 0, code = 2;  // skipped
  if (i % 29 == 0) status = 0, current = 0;        // not read
  const std::pair<const char*, Value> fields[] = {
      {"RecType", Value::Long(hifx::kRecMeter)}, {"RouteNbr", Value::Long(route)},
      {"Sequence", Value::Long(sequence)},      {"MeterTagNbr", Value::Long(1000000 + i)},
      {"MeterType", Value::Long(1)},            {"Digits", Value::Long(6)},
      {"Status", Value::Long(status)},          {"ReadType", Value::Long(1)},
      {"PrvReading", Value::Long(previous)},    {"MinReading", Value::Long(previous + 1)},
      {"MaxReading", Value::Long(previous + 500)}, {"CurReading", Value::Long(current)},
      {"ReadingDate", Value::Long(status ? 20240309 : 0)}, {"ResponseCode", Value::Long(code)},
      {"Lat", Value::Long(placed ? lat : 0)},   {"Lng", Value::Long(placed ? lng : 0)},
      {"ServiceUniqueID", Value("AC" + std::to_string(i))}, {"MeterSerialNbr", Value("SN" + std::to_string(i))}};
  hif.AddNew();
  for (const auto& [name, value] : fields) hif.SetItem(name, value);
  hif.WriteData();
}

const fs::path& TownFile() {
  static const fs::path path = [] {
    const fs::path file = fs::temp_directory_path() / "hifx_plot_bench.pdb";
    fs::remove(file);
    hifx::SilentShell quiet;
    hifx::clsHIF hif(quiet);
    hif.SetVersion(3);
    hif.CreateHIF(file, hifx::kFilePDB, kRoutes * kMetersPerRoute + 1);
    hif.AddNew();
    hif.SetItem("RecType", Value::Long(hifx::kRecFileHeader));
    hif.SetItem("MeterType", Value::Long(3));
    hif.WriteData();
    for (int32_t route = 1; route <= kRoutes; ++route) {
      for (int32_t sequence = 1; sequence <= kMetersPerRoute; ++sequence) AddMeter(hif, route, sequence);
    }
    hif.FinishHIF();
    return file;
  }();
  return path;
}

void PlotSvg(benchmark::State& state) {
  hifx::SilentShell quiet;
  size_t bytes = 0;
  for (auto _ : state) {
    const auto meters = hifx::ReadPlotMeters(quiet, TownFile());
    const std::string svg = hifx::PlotSvg("town.pdb", meters);
    bytes = svg.size();
    benchmark::DoNotOptimize(svg.data());
  }
  state.counters["svg_bytes"] = static_cast<double>(bytes);
}

void PlotPng(benchmark::State& state) {
  hifx::SilentShell quiet;
  size_t bytes = 0;
  for (auto _ : state) {
    const auto meters = hifx::ReadPlotMeters(quiet, TownFile());
    const std::string png = hifx::PlotPng("town.pdb", meters);
    bytes = png.size();
    benchmark::DoNotOptimize(png.data());
  }
  state.counters["png_bytes"] = static_cast<double>(bytes);
}

BENCHMARK(PlotSvg)->Name("plot/svg")->Unit(benchmark::kMillisecond);
BENCHMARK(PlotPng)->Name("plot/png")->Unit(benchmark::kMillisecond);

}  // namespace

int main(int argc, char** argv) {
  if (const char* folder = std::getenv("HIFX_PLOT_PICTURES")) {
    hifx::SilentShell quiet;
    const auto meters = hifx::ReadPlotMeters(quiet, TownFile());
    hifx::ReplaceFile(fs::path(folder) / "plot.svg", hifx::PlotSvg("town.pdb", meters));
    hifx::ReplaceFile(fs::path(folder) / "plot.png", hifx::PlotPng("town.pdb", meters));
  }
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  std::filesystem::remove(TownFile());
  return 0;
}
