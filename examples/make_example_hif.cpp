// Writes a route HIF from the bundled sample meters, the way a route
// conversion lays one out: a file header, the route headers, the meters.
//   make_example_hif SOURCE.csv DEST.pdb
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "base/Clock.h"
#include "base/Failure.h"
#include "base/Numbers.h"
#include "cli/CliShell.h"
#include "hif/FileVersion.h"
#include "hif/clsHIF.h"

namespace {

std::vector<std::string> SplitComma(const std::string& line) {
  std::vector<std::string> out;
  std::stringstream in(line);
  std::string cell;
  while (std::getline(in, cell, ',')) out.push_back(cell);
  return out;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) {
    std::fputs("usage: make_example_hif SOURCE.csv DEST.pdb\n", stderr);
    return 2;
  }
  const std::filesystem::path source = argv[1];
  const std::filesystem::path dest = argv[2];
  std::ifstream in(source);
  if (!in) {
    std::fprintf(stderr, "cannot read %s\n", argv[1]);
    return 2;
  }
  std::string line;
  std::getline(in, line);  // column names
  const std::vector<std::string> names = SplitComma(line);
  std::vector<std::vector<std::string>> rows;
  std::vector<std::string> routes;
  std::map<std::string, int> metersInRoute;
  while (std::getline(in, line)) {
    if (line.empty()) continue;
    rows.push_back(SplitComma(line));
    rows.back().resize(names.size());
    if (metersInRoute[rows.back()[0]]++ == 0) routes.push_back(rows.back()[0]);
  }

  hifx::CliShell shell(std::nullopt, false, false);
  const hifx::CivilTime now = hifx::SystemClock().Now();
  const int16_t version = hifx::LookupFileVersion(shell, hifx::kProgramMajor, hifx::kProgramMinor);
  try {
    std::filesystem::remove(dest);
    hifx::clsHIF hif(shell);
    hif.SetVersion(version);
    hif.CreateHIF(dest, hifx::kFilePDB, static_cast<int32_t>(1 + routes.size() + rows.size()));
    hif.AddNew();
    hif.SetItem("RecType", hifx::Value::Long(hifx::kRecFileHeader));
    hif.SetItem("RouteNbr", hifx::Value::Long(static_cast<int32_t>(routes.size())));
    const int32_t date = now.year * 10000 + now.month * 100 + now.day;
    hif.SetItem("Sequence", hifx::Value::Long(date));
    hif.SetItem("MeterTagNbr", hifx::Value::Long(now.hour * 100 + now.minute));
    hif.SetItem("MeterType", hifx::Value::Long(version));
    hif.SetItem("PrvReading", hifx::Value::Long(static_cast<int32_t>(rows.size())));
    hif.SetItem("ReadingDate", hifx::Value::Long(date));
    hif.SetItem("Initials", hifx::Value("HIF loaded from " + source.filename().string()));
    hif.WriteData();
    for (size_t r = 0; r < routes.size(); ++r) {
      hif.AddNew();
      hif.SetItem("RecType", hifx::Value::Long(hifx::kRecRouteHeader));
      hif.SetItem("RouteNbr", hifx::Value::Long(static_cast<int32_t>(r + 1)));
      hif.SetItem("PrvReading", hifx::Value::Long(metersInRoute[routes[r]]));
      hif.SetItem("Initials", hifx::Value(routes[r]));
      hif.SetItem("ResponseText", hifx::Value(routes[r]));
      hif.WriteData();
    }
    for (const auto& row : rows) {
      hif.AddNew();
      hif.SetItem("RecType", hifx::Value::Long(hifx::kRecMeter));
      for (size_t r = 0; r < routes.size(); ++r) {
        if (routes[r] == row[0]) hif.SetItem("RouteNbr", hifx::Value::Long(static_cast<int32_t>(r + 1)));
      }
      for (size_t c = 1; c < names.size(); ++c) {
        const std::string& cell = row[c];
        if (names[c] == "MeterType") {
          // A letter goes in as its character code, a number as itself.
          const bool letter = !cell.empty() && cell[0] >= 'A';
          hif.SetItem("MeterType", hifx::Value::Long(letter ? static_cast<unsigned char>(cell[0])
                                                           : hifx::ToInt32(hifx::NumericPrefix(cell))));
        } else if (hif.DB().Field(hif.DB().FindItem(names[c])).type == hifx::kFieldText) {
          hif.SetItem(names[c], hifx::Value(cell));
        } else {
          hif.SetItem(names[c], hifx::Value::Double(hifx::NumericPrefix(cell)));
        }
      }
      hif.WriteData();
    }
  } catch (const hifx::Failure& failure) {
    std::fprintf(stderr, "Error: %s\n", failure.Description().c_str());
    return 1;
  }
  std::printf("Wrote %zu routes and %zu meters to %s\n", routes.size(), rows.size(),
              dest.string().c_str());
  return 0;
}
