// fill_readings ROUTE READING [--seed N]
//
// Fills a route HIF the way a handheld does and writes the reading HIF: the
// bundled examples/reading.pdb is made with it, from the example route and
// seed 1. Exit status: 0 done, 1 the file was written but a record could not
// be filled as it should (the messages say which), 2 bad usage or a route
// file that can't be read.
#include <charconv>
#include <cstdio>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/Failure.h"
#include "cli/CliShell.h"
#include "tools/FillReadings.h"

namespace {

constexpr int kExitOk = 0;
constexpr int kExitIncomplete = 1;
constexpr int kExitUsage = 2;

constexpr const char* kUsage =
    "usage: fill_readings ROUTE.pdb READING.pdb [--seed N]\n"
    "  Fills every meter of the route HIF with a reading as a handheld would, adds\n"
    "  orphan transponders, and writes the reading HIF. The same route and seed\n"
    "  always give the same bytes. N is 0 to 4294967295, 1 when not given.\n";

int Usage(const std::string& problem) {
  std::fprintf(stderr, "fill_readings: %s\n%s", problem.c_str(), kUsage);
  return kExitUsage;
}

std::optional<uint32_t> ParseSeed(std::string_view text) {
  uint32_t seed = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), seed);
  if (error != std::errc{} || end != text.data() + text.size()) return std::nullopt;
  return seed;
}

}  // namespace

int main(int argc, char** argv) {
  hifx::UseBinaryStandardStreams();
  const std::vector<std::string> args(argv + 1, argv + argc);
  std::vector<std::string> files;
  uint32_t seed = hifx::kDefaultFillSeed;
  for (size_t i = 0; i < args.size(); ++i) {
    const std::string& a = args[i];
    if (a == "--help" || a == "-h") {
      std::fputs(kUsage, stdout);
      return kExitOk;
    }
    if (a == "--seed") {
      if (i + 1 >= args.size()) return Usage("--seed needs a number");
      const auto parsed = ParseSeed(args[++i]);
      if (!parsed) return Usage("--seed needs a number from 0 to 4294967295: " + args[i]);
      seed = *parsed;
    } else if (a.starts_with("--")) {
      return Usage("unknown option: " + a);
    } else {
      files.push_back(a);
    }
  }
  if (files.size() != 2) return Usage("give the route file and the reading file");

  // Nobody is asked anything: every question gets No.
  hifx::CliShell shell(false, false, false);
  try {
    hifx::FillReadings(shell, files[0], files[1], seed);
  } catch (const hifx::Failure& failure) {
    std::fprintf(stderr, "fill_readings: %s: %s\n", files[0].c_str(), failure.Description().c_str());
    return kExitUsage;
  }
  return shell.MessageCount() > 0 ? kExitIncomplete : kExitOk;
}
