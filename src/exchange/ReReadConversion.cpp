// A route HIF of the meters to visit again, from a plain list read through a
// route map of the re-read use: every meter goes into the one route REREAD.
#include <filesystem>

#include "base/Failure.h"
#include "base/Numbers.h"
#include "base/Text.h"
#include "exchange/ExchangeText.h"
#include "exchange/clsExchange.h"
#include "hif/FileVersion.h"

namespace hifx {
void clsExchange::WriteReReadMeter(const RouteLine& values) {
  using enum MeterField;
  static constexpr MeterField kCopied[] = {
      Sequence,       MeterTagNbr, MeterType,      Digits,          Decimals,       PrvReading,
      MaxReading,     MinReading,  InitPulseCount, InitTamperCount, LstReadingDate, UtilityCode,
      Lat,            Lng,         ServiceAddress, BillingName,     ServiceUniqueID, MeterSerialNbr,
      User1,          User2,       User3,          User4,           User5};
  clsHIF& hif = *ActiveHIF;
  hif.AddNew();
  hif.SetNumber(RecType, kRecMeter);
  hif.SetNumber(RouteNbr, 1);
  for (const MeterField field : kCopied) hif.SetItem(field, values[field]);
  const std::string readType = TextOf(values[ReadType]);
  if (readType == "r" || readType == "R") {
    hif.SetNumber(ReadType, 1);
  } else if (readType == "m" || readType == "M") {
    hif.SetNumber(ReadType, 2);
  } else if (readType == "p" || readType == "P") {
    hif.SetNumber(ReadType, 3);
  } else {
    hif.SetItem(ReadType, Value::Double(NumericPrefix(readType)));
  }
  hif.SetItem(Message, Value(Advanced().LookupMessage("", "1", TextOf(values[ServiceUniqueID]),
                                                      TextOf(values[MeterSerialNbr]), TextOf(values[MeterTagNbr]))));
  hif.WriteData();
  ++MetersWritten;
}

// What the re-read conversion keeps from step to step.
struct clsExchange::ReReadRun {
  std::string source;       // trimmed
  std::string destination;  // trimmed
  int16_t version = 0;
  int16_t route = 0;  // REREAD, the one route
  int32_t meters = 0;
};

bool clsExchange::CheckReReadFiles(ReReadRun& run) {
  run.source = Trim(ReReadSource);
  if (run.source.empty()) return Fail("Error: ReRead Source not specified");
  std::error_code ec;
  if (!std::filesystem::is_regular_file(run.source, ec)) return Fail("Error: ReRead Source does not exist");
  Log("Reading from " + ReReadSource);
  run.destination = Trim(ReReadDestination);
  if (run.destination.empty()) return Fail("Error: ReRead Destination not specified");
  Log("Writing to " + ReReadDestination);
  if (!FilesApart({{"ReRead Source", run.source}, {"ReRead Conversion Map", MapFile(ReReadMap, kUseReRead)}},
                  {{"ReRead Destination", run.destination}})) {
    return false;
  }
  // The old file stays whole until the new one, written beside it, is
  // complete and takes its place.
  return DestinationFree(run.destination, "ReRead", false);
}

bool clsExchange::LoadReReadMap() {
  if (ReReadMap.empty()) return Fail("Error: ReRead Conversion Map not specified");
  Log("Using Map: " + ReReadMap);
  NewActiveMap();
  if (!ActiveMap->LoadMap(ReReadMap + MapExtension(kUseReRead), kUseReRead)) {
    return Fail("Error: Could not load ReRead Conversion Map");
  }
  std::string messages;
  if (!ActiveMap->ValidateMap(messages)) return Fail("Error: " + messages);
  return true;
}

void clsExchange::StartReReadRun(ReReadRun& run) {
  const CivilTime now = env_.clock.Now();
  Log("ReRead Conversion Starting " + ShortTime(now) + " " + ShortDate(now));
  ClearRoute();
  HadWarnings = false;
  HadProblems = false;
  MetersWritten = 0;
  UntaggedMeters = 0;
  MessageCount = 0;
  run.route = AddRoute("REREAD");
  LineNumber = 0;
  SeenTags.Clear();
}

void clsExchange::CountReReadLines(ReReadRun& run) {
  // Only counted; a blank line counts too.
  SourceFile = std::make_unique<LineReader>(run.source);
  std::string line;
  while (SourceFile->ReadLine(line)) {
    ++LineNumber;
    CountUp(RouteCounts[static_cast<size_t>(run.route)]);
    ++run.meters;
  }
  SourceFile = std::make_unique<LineReader>(run.source);
  LineNumber = 0;
}

bool clsExchange::CreateReReadFile(const ReReadRun& run) {
  if (!RecordsFit(run.meters)) {
    SourceFile.reset();
    ActiveHIF.reset();
    return false;
  }
  const int32_t records = run.meters + static_cast<int32_t>(RouteNames.size() - 1) + 1;
  const int32_t fileType = (ReReadHIFType == "PRC" || ReReadHIFType == "PDB") ? kFilePDB : kFileVFS;
  RouteFile = FileReplacement(run.destination);
  if (ActiveHIF->CreateHIF(RouteFile.Written(), fileType, records) != 0) {
    SourceFile.reset();
    RouteFile.Abandon();
    ActiveHIF.reset();
    return Fail("Error: Could not Create ReRead HIF File");
  }
  WriteFileHeader(run.source, run.meters, run.version);
  WriteRouteHeaders();
  return true;
}

bool clsExchange::WriteReReadMeters() {
  PlanRouteLine();
  std::string line;
  while (SourceFile->ReadLine(line)) {
    env_.shell.SetProgressButton(255, ActiveHIF->Position255());
    ++LineNumber;
    const RouteLine& values = ParseRoute(line);
    const int16_t result = ValidateRoute(values);
    if (result == 1) HadWarnings = true;
    if (result == 2) HadProblems = true;
    if (result == 3) {
      SourceFile.reset();
      KeepRouteFile();
      return false;
    }
    WriteReReadMeter(values);
  }
  return true;
}

bool clsExchange::FinishReRead() {
  if (HadProblems) {
    Log("Problems encountered; Route file unusable");
  } else if (MetersWritten > 0) {
    Log(std::to_string(SeenTags.Size()) + " meters written to ReRead HIF File");
    if (!KeepRouteFile()) return false;
    if ((ReReadHIFType == "PRC" || ReReadHIFType == "PDB") && AutoInstall) InstallPRC(ReReadDestination);
    SeenTags.Clear();
    Log(HadWarnings ? "ReRead Conversion Finished with Warnings" : "ReRead Conversion Finished");
    Log("");
  } else {
    Log("The ReReadHIF contains no meter records. The ReReadHIF file is unusable.");
  }
  SourceFile.reset();
  const bool kept = KeepRouteFile();
  return kept && !HadProblems && MetersWritten > 0;
}

bool clsExchange::ConvertReRead() {
  try {
    ReReadRun run;
    if (!CheckReReadFiles(run)) return false;
    if (!LoadReReadMap()) return false;
    ActiveHIF = std::make_unique<clsHIF>(env_.shell);
    run.version = LookupFileVersion(env_.shell, kProgramMajor, kProgramMinor);
    ActiveHIF->SetVersion(run.version);
    if (!DisplayPrompts(*ActiveMap)) return Fail("Error: Prompted entry of runtime variables cancelled");
    CreateIndexes = AskIndexes();
    StartReReadRun(run);
    CountReReadLines(run);
    if (!CreateReReadFile(run)) return false;
    if (!WriteReReadMeters()) return false;
    return FinishReRead();
  } catch (const Failure& failure) {
    SourceFile.reset();
    KeepRouteFile();
    ShowRouteFailure(failure.Description());
  } catch (const std::exception& failure) {
    SourceFile.reset();
    KeepRouteFile();
    ShowRouteFailure(Describe(failure));
  }
  return false;
}

}  // namespace hifx
