// The route conversion driver: checks the settings, loads the map, settles
// the file version, the prompts and the indexes, runs the format conversion
// and writes the site's code lists behind the meters.
#include <filesystem>

#include "base/Failure.h"
#include "base/FileNames.h"
#include "base/Text.h"
#include "exchange/ExchangeText.h"
#include "exchange/clsExchange.h"
#include "hif/FileVersion.h"

namespace hifx {

void clsExchange::ClearRoute() {
  RouteNames.assign(1, std::string());
  RouteCounts.assign(1, 0);
  routeIndex_.clear();
}

int16_t clsExchange::AddRoute(const std::string& name) {
  // Sorted sources repeat the last route line after line.
  if (RouteNames.size() > 1 && RouteNames.back() == name) {
    return static_cast<int16_t>(RouteNames.size() - 1);
  }
  if (const auto it = routeIndex_.find(name); it != routeIndex_.end()) return it->second;
  if (RouteNames.size() > 32767) throw Failure(fail::kOverflow);
  RouteNames.push_back(name);
  RouteCounts.push_back(0);
  const auto index = static_cast<int16_t>(RouteNames.size() - 1);
  routeIndex_.emplace(name, index);
  return index;
}

bool clsExchange::DisplayPrompts(const clsExchMap& map) {
  std::vector<PromptField> boxes;
  bool anyPrompt = false;
  for (int32_t i = 1; i <= map.FieldCount(); ++i) {
    const MapField& field = map.Field(i);
    if (field.MapOption != kOptionPrompt) continue;
    anyPrompt = true;
    // Only text and number fields get a box to type into.
    if (field.DataType >= kTypeText && field.DataType <= kTypeNumber) {
      boxes.push_back(PromptField{field.FieldName, field.DataType, field.Required});
    }
  }
  if (!anyPrompt) {
    Prompts.Clear();
    return true;
  }
  std::vector<std::string> values;
  if (!env_.shell.PromptVariables(boxes, values)) return false;
  values.resize(boxes.size());
  Prompts.Clear();
  // The text boxes are read first, then the number boxes.
  for (const bool text : {true, false}) {
    for (size_t i = 0; i < boxes.size(); ++i) {
      if ((boxes[i].dataType == kTypeText) == text) Prompts.Add(boxes[i].name, values[i]);
    }
  }
  return true;
}

bool clsExchange::AskIndexes() {
  switch (Advanced().IndexControl()) {
    case 0: return false;
    case 2:
      return env_.shell.MsgBox(std::string("Create indexes?  ") + kLineBreak +
                                   "(Takes longer to create and load, but speeds lookups in the field.)",
                               "Index Control", MsgButtons::YesNo, MsgIcon::Question) == MsgAnswer::Yes;
    default: return true;
  }
}

bool clsExchange::DestinationFree(const std::string& destination, std::string_view what,
                                  bool remove) {
  std::error_code ec;
  if (!std::filesystem::exists(destination, ec)) return true;
  const MsgAnswer answer =
      env_.shell.MsgBox(destination + " already exists.  Overwrite?",
                        std::string(what) + " Destination already exists", MsgButtons::YesNo,
                        MsgIcon::Question);
  if (answer != MsgAnswer::Yes) {
    Log("Error: " + std::string(what) + " Destination already exists");
    return false;
  }
  if (remove) std::filesystem::remove(destination);
  Log("Notice: File " + destination + " overwritten on request");
  return true;
}

void clsExchange::Log(const std::string& line) { env_.shell.WriteLog(line); }

void clsExchange::WriteFileHeader(const std::string& source, int32_t meters, int16_t version) {
  const CivilTime now = env_.clock.Now();
  clsHIF& hif = *ActiveHIF;
  hif.AddNew();
  hif.SetItem("RecType", Value::Long(kRecFileHeader));
  hif.SetItem("RouteNbr", Value::Long(static_cast<int32_t>(RouteNames.size() - 1)));
  hif.SetItem("Sequence", Value::Long(DateNumber(now)));
  hif.SetItem("MeterTagNbr", Value::Long(TimeNumber(now)));
  hif.SetItem("MeterType", Value::Long(version));
  hif.SetItem("PrvReading", Value::Long(meters));
  hif.SetItem("ReadingDate", Value::Long(DateNumber(now)));
  hif.SetItem("Initials", Value("HIF loaded from " + FileNamePart(source)));
  hif.WriteData();
}

void clsExchange::WriteRouteHeaders(const std::vector<std::string>& user1) {
  clsHIF& hif = *ActiveHIF;
  for (size_t route = 1; route < RouteNames.size(); ++route) {
    hif.AddNew();
    hif.SetItem("RecType", Value::Long(kRecRouteHeader));
    hif.SetItem("RouteNbr", Value::Long(static_cast<int32_t>(route)));
    hif.SetItem("PrvReading", Value::Long(RouteCounts[route]));
    hif.SetItem("Initials", Value(RouteNames[route]));
    hif.SetItem("ResponseText", Value(RouteNames[route]));
    if (route < user1.size()) hif.SetItem("User1", Value(user1[route]));
    hif.WriteData();
  }
}

bool clsExchange::CheckRouteFiles(std::string& destination) {
  const std::string source(Trim(RouteSource));
  if (source.empty()) return Fail("Error: Route Source not specified");
  std::error_code ec;
  if (!std::filesystem::is_regular_file(source, ec)) return Fail("Error: Route Source does not exist");
  Log("Reading from " + RouteSource);
  destination = Trim(RouteDestination);
  if (destination.empty()) return Fail("Error: Route Destination not specified");
  Log("Writing to " + RouteDestination);
  if (!FilesApart({{"Route Source", source}, {"Route Conversion Map", MapFile(RouteMap, kUseRoute)}},
                  {{"Route Destination", destination}})) {
    return false;
  }
  // The old file stays whole until the new one is complete: nothing is
  // removed here, the new file takes its place at the end.
  return DestinationFree(destination, "Route", false);
}

void clsExchange::NewActiveMap() {
  // A parser planned for the map before must not outlive it.
  routeParser_.reset();
  ActiveMap = std::make_unique<clsExchMap>(env_.siteFolder);
}

bool clsExchange::LoadRouteMap() {
  if (RouteMap.empty()) return Fail("Error: Route Conversion Map not specified");
  Log("Using Map: " + RouteMap);
  NewActiveMap();
  if (!ActiveMap->LoadMap(RouteMap + MapExtension(kUseRoute), kUseRoute)) {
    return Fail("Error: Could not load Route Conversion Map");
  }
  const int32_t mapType = ActiveMap->MapType();
  if (mapType == kMapMVRS && ActiveMap->MapOptions(1) == "Y") {
    Log("Notice: Special radio processing option is enabled");
  }
  if (mapType != kMapMVRS && mapType != kMapE5000) {
    std::string messages;
    if (!ActiveMap->ValidateMap(messages)) return Fail("Error: " + messages);
  }
  return true;
}

void clsExchange::StartRouteRun(const std::string& destination) {
  const CivilTime now = env_.clock.Now();
  Log("Route Conversion Starting " + ShortTime(now) + " " + ShortDate(now));
  SourceFile.reset();
  ClearRoute();
  LineNumber = 0;
  SeenTags.Clear();
  UntaggedMeters = 0;
  MetersWritten = 0;
  HadWarnings = false;
  HadProblems = false;
  indexes_.clear();
  indexRoute_ = 0;
  RouteFile = FileReplacement(destination);
}

bool clsExchange::ConvertRouteByMapType() {
  const int32_t mapType = ActiveMap->MapType();
  if (mapType == kMapMVRS) return ConvertRouteMVRS();
  if (mapType == kMapE5000) return ConvertRouteE5K();
  return ConvertRouteFlat();
}

void clsExchange::SettleRouteFile(bool& result, bool& closingLine) {
  if (!result) {
    Log("Route HIF File NOT created");
  } else if (MetersWritten == 0) {
    Log("The RouteHIF contains no meter records. The RouteHIF file is unusable.");
    result = false;
    closingLine = false;
  } else {
    Log(std::to_string(MetersWritten) + " meters written to Route HIF File");
    // The file is complete and in place before it is queued.
    result = KeepRouteFile();
    if (result && (RouteHIFType == "PRC" || RouteHIFType == "PDB") && AutoInstall) {
      if (!InstallPRC(RouteDestination)) {
        Log("Install Cancelled without selecting unit");
        HadWarnings = true;
      }
    }
  }
}

void clsExchange::LogRouteClosing() {
  if (HadProblems) {
    Log("Problems encountered; Route file unusable");
  } else if (HadWarnings) {
    Log("Route Conversion Finished with Warnings");
  } else {
    Log("Route Conversion Finished");
  }
  Log("");
}

bool clsExchange::ConvertRoute() {
  CreateIndexes = true;
  MeterRecordNumber = 0;
  bool result = false;
  bool closingLine = true;
  try {
    std::string destination;
    if (!CheckRouteFiles(destination)) return false;
    if (!LoadRouteMap()) return false;
    ActiveHIF = std::make_unique<clsHIF>(env_.shell);
    ActiveHIF->SetVersion(LookupFileVersion(env_.shell, kProgramMajor, kProgramMinor));
    if (!DisplayPrompts(*ActiveMap)) {
      return Fail("Error: Prompted entry of runtime variables cancelled");
    }
    CreateIndexes = AskIndexes();
    StartRouteRun(destination);
    result = ConvertRouteByMapType();
    // The index is flushed and the code lists written whatever the result.
    UpdateIndexes(0, 0, "", "", "", "", "");
    WriteCodeRecords();
    SettleRouteFile(result, closingLine);
  } catch (const Failure& failure) {
    // Also a failure after the meters, in the indexes, the code lists or
    // the file's last records, fails the run.
    result = false;
    ShowRouteFailure(failure.Description());
  } catch (const std::exception& failure) {
    result = false;
    ShowRouteFailure(Describe(failure));
  }
  if (closingLine) LogRouteClosing();
  SeenTags.Clear();
  KeepRouteFile();
  SourceFile.reset();
  return result;
}

bool clsExchange::KeepRouteFile() {
  if (!RouteFile.Active()) {
    ActiveHIF.reset();
    return true;
  }
  try {
    if (ActiveHIF) ActiveHIF->FinishHIF();
    ActiveHIF.reset();
    // A run that never made its file has nothing to put in place.
    std::error_code ec;
    if (!std::filesystem::exists(RouteFile.Written(), ec)) {
      RouteFile.Abandon();
      return true;
    }
    RouteFile.Commit();
    return true;
  } catch (const Failure& failure) {
    ActiveHIF.reset();
    RouteFile.Abandon();
    Log("Error: " + RouteFile.Target().string() + " left as it was: " + failure.Description());
    return false;
  }
}

void clsExchange::CountUp(int16_t& count) {
  // A route past what a file can hold is refused once the counting is done.
  if (count < kMaxRecords) ++count;
}

bool clsExchange::RecordsFit(int32_t meters, int32_t routes) {
  if (routes < 0) routes = static_cast<int32_t>(RouteNames.size() - 1);
  // The file header, the route headers, the meters and the alert settings;
  // index and code records come on top.
  const int64_t needed = int64_t{meters} + routes + 2;
  if (needed <= kMaxRecords) return true;
  return Fail("Error: The route needs at least " + std::to_string(needed) + " records; a handheld file holds at most " +
              std::to_string(kMaxRecords));
}

bool clsExchange::Fail(const std::string& line) {
  if (check_ != nullptr) {
    check_->Fault({0, {}, {}, kFaultStop, line});
    check_->Stop(line);
  }
  Log(line);
  return false;
}

void clsExchange::ShowRouteFailure(const std::string& description) {
  if (check_ == nullptr) {
    env_.shell.MsgBox(description, "Error", MsgButtons::OK, MsgIcon::Critical);
    return;
  }
  check_->Fault({LineNumber, {}, {}, kFaultStop, description});
  check_->Stop(LineNumber > 0 ? "line " + std::to_string(LineNumber) + ": " + description : description);
}

}  // namespace hifx
