// plot: the meters of a route or reading file on a picture, as SVG or PNG;
// the meters without a position said on standard output as well.
#include <CLI/CLI.hpp>

#include <algorithm>
#include <cstdio>
#include <memory>
#include <string>

#include "base/AtomicFile.h"
#include "base/FileIdentity.h"
#include "cli/Commands.h"
#include "cli/HifFile.h"
#include "cli/ReportModule.h"
#include "hif/MeterPlot.h"

namespace hifx::cli {
namespace {

struct PlotOptions {
  std::string file;
  std::string svg;
  std::string png;
};

// Neither picture may be the file read, nor the other picture.
void CheckOutputs(const PlotOptions& options) {
  if (options.svg.empty() && options.png.empty()) throw UsageError("give --svg OUT, --png OUT or both");
  for (const std::string* out : {&options.svg, &options.png}) {
    if (out->empty()) continue;
    if (SameFile(*out, options.file)) throw UsageError(*out + " is the same file as " + options.file);
    if (!IsReplaceable(*out)) throw UsageError(*out + " is not a plain file");
  }
  if (!options.svg.empty() && !options.png.empty() && SameFile(options.svg, options.png)) {
    throw UsageError("--svg and --png name the same file " + options.png);
  }
}

void SayPlaced(const std::vector<PlotMeter>& meters) {
  const auto placed = static_cast<size_t>(
      std::count_if(meters.begin(), meters.end(), [](const PlotMeter& m) { return m.Placed(); }));
  const std::string counts = std::to_string(meters.size()) + " meters, " + std::to_string(placed) + " placed, " +
                             std::to_string(meters.size() - placed) + " without a position";
  std::printf("%s\n", counts.c_str());
  for (const PlotMeter& m : meters) {
    if (m.Placed()) continue;
    std::string line = "no position: route " + std::to_string(m.route) + ", sequence " + std::to_string(m.sequence) +
                       ", meter ";
    AppendShown(line, m.serial);
    line += ", account ";
    AppendShown(line, m.account);
    std::printf("%s\n", line.c_str());
  }
}

int Plot(const PlotOptions& options) {
  CheckOutputs(options);
  const std::unique_ptr<IReportSurfaces> surfaces =
      options.png.empty() ? nullptr : LoadReportSurfaces("PNG pictures");
  SilentShell quiet;
  const auto meters = ReadingFile(options.file, [&] { return ReadPlotMeters(quiet, options.file); });
  const std::string title = std::filesystem::path(options.file).filename().string();
  if (!options.svg.empty()) ReplaceFile(options.svg, PlotSvg(title, meters));
  if (surfaces) ReplaceFile(options.png, surfaces->PlotPng(title, meters));
  SayPlaced(meters);
  std::fflush(stdout);
  return kExitOk;
}

}  // namespace

void AddPlotCommand(CommandTable& table) {
  auto options = std::make_shared<PlotOptions>();
  CLI::App& plot = table.Add("plot", "the meters placed by latitude and longitude, as SVG or PNG",
                             [options](Context&) { return Plot(*options); });
  plot.add_option("file", options->file, "the route or reading HIF file")->type_name("FILE")->required();
  plot.add_option("--svg", options->svg, "the SVG picture to write")->type_name("OUT");
  plot.add_option("--png", options->png, "the PNG picture to write")->type_name("OUT");
}

}  // namespace hifx::cli
