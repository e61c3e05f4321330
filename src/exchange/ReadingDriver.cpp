// The reading conversion driver: from a reading HIF to the billing file, the
// orphan file and the re-read file of the exceptions.
#include <filesystem>

#include "base/Failure.h"
#include "base/Numbers.h"
#include "base/Text.h"
#include "exchange/ExchangeText.h"
#include "exchange/clsExchange.h"
#include "hif/FileVersion.h"

namespace hifx {
namespace {

uint64_t LengthOf(const std::string& path) {
  std::error_code ec;
  const auto size = std::filesystem::file_size(path, ec);
  return ec ? 0 : size;
}

// A meter to visit again: unread, or read outside its window.
bool IsException(clsHIF& hif) {
  const int32_t status = hif.NumberItem(MeterField::Status);
  const int32_t low = hif.NumberItem(MeterField::MinReading);
  const int32_t high = hif.NumberItem(MeterField::MaxReading);
  const int32_t reading = hif.NumberItem(MeterField::CurReading);
  return status == 0 || (low < high && (reading < low || reading > high)) ||
         (low > high && reading < low && reading > high);
}

}  // namespace

bool clsExchange::ReadingFilesApart(const std::string& source, const std::string& destination) {
  std::vector<RunFile> sources{{"Reading Source", source}, {"Reading Conversion Map", MapFile(ReadingMap, kUseReading)}};
  std::vector<RunFile> destinations{{"Reading Destination", destination}};
  if (OrphanConvert != 0) {
    sources.push_back({"Orphan Conversion Map", MapFile(OrphanMap, kUseOrphan)});
    destinations.push_back({"Orphan Destination", std::string(Trim(OrphanDestination))});
  }
  if (AutoReRead) destinations.push_back({"Re-Read Destination", std::string(Trim(ReReadDestination))});
  return FilesApart(sources, destinations);
}

bool clsExchange::ConvertReading() {
  OutputFailed = false;
  const std::string source(Trim(ReadingSource));
  if (source.empty()) return Fail("Error: Reading Source not specified");
  Log("Reading from " + ReadingSource);
  std::error_code ec;
  if (!std::filesystem::is_regular_file(source, ec)) return Fail("Error: Reading Source does not exist");
  const std::string destination(Trim(ReadingDestination));
  if (destination.empty()) return Fail("Error: Reading Destination not specified");
  if (ReadingMap.empty()) return Fail("Error: Reading Conversion Map not specified");
  if (OrphanConvert != 0 && Trim(OrphanDestination).empty()) return Fail("Error: Orphan Destination not specified");
  if (OrphanConvert != 0 && OrphanMap.empty()) return Fail("Error: Orphan Conversion Map not specified");
  if (AutoReRead && Trim(ReReadDestination).empty()) return Fail("Error: Re-Read Destination not specified");
  Log("Writing to " + ReadingDestination);
  if (!ReadingFilesApart(source, destination)) return false;
  if (!DestinationFree(destination, "Reading", false)) return false;

  int16_t version = 0;
  try {
    clsHIF probe(env_.shell);
    if (probe.OpenHIF(source)) return Fail("Error: Could not read HIF file");
    if (probe.ReadData() && NumberOf(probe.Item("RecType")) == kRecFileHeader &&
        NumberOf(probe.Item("MeterType")) > 0) {
      version = ToInt16(NumberOf(probe.Item("MeterType")));
    }
  } catch (const Failure& failure) {
    Log(failure.Description());
  }

  Log("Using map " + ReadingMap);
  NewActiveMap();
  if (!ActiveMap->LoadMap(ReadingMap + MapExtension(kUseReading), kUseReading)) {
    return Fail("Error: Could not load Reading Conversion Map");
  }
  std::string messages;
  if (!ActiveMap->ValidateMap(messages)) return Fail("Error: " + messages);
  if (!DisplayPrompts(*ActiveMap)) return Fail("Error: Prompted entry of runtime variables cancelled");
  const CivilTime now = env_.clock.Now();
  Log("Reading Conversion Starting  " + ShortTime(now) + " " + ShortDate(now));

  // From here a failure is logged by its description and the run goes on.
  bool result = false;
  try {
    const int32_t mapType = ActiveMap->MapType();
    if (mapType == kMapMVRS) {
      ConvertReadingMVRS(version);
    } else if (mapType == kMapE5000) {
      ConvertReadingE5K(version);
    } else {
      ConvertReadingFlat(version);
    }
    result = true;  // whatever the conversion returned
  } catch (const Failure& failure) {
    Log(failure.Description());
  }
  KeepOutput();
  if (OrphanConvert != 0 && !OrphanStep(version)) return false;
  if (AutoReRead) ReReadStep(result);
  Log("Reading Conversion Finished");
  Log("");
  ReadingHIF.reset();
  KeepOutput();
  // An output that could not be written fails the run, whatever else went on.
  return result && !OutputFailed;
}

bool clsExchange::OrphanStep(int16_t version) {
  const std::string destination(Trim(OrphanDestination));
  Log("Writing orphans to " + OrphanDestination);
  const uint64_t before = LengthOf(destination);
  if (before >= 1 && OrphanReplace != 0) {
    Log("Notice: File " + OrphanDestination + " overwritten per configuration.  " + std::to_string(before) +
        " bytes lost.");
  }
  Log("Using map " + OrphanMap);
  NewActiveMap();
  if (!ActiveMap->LoadMap(OrphanMap + MapExtension(kUseOrphan), kUseOrphan)) {
    return Fail("Error: Could not load Orphan Conversion Map");
  }
  std::string messages;
  if (!ActiveMap->ValidateMap(messages)) return Fail("Error: " + messages);
  const CivilTime now = env_.clock.Now();
  Log("Orphan Conversion Starting  " + ShortTime(now) + " " + ShortDate(now));
  try {
    ConvertOrphanFlat(version);
  } catch (const Failure& failure) {
    Log(failure.Description());
  }
  KeepOutput();
  std::error_code ec;
  if (std::filesystem::exists(destination, ec)) {
    Log("Notice: File " + OrphanDestination + " now contains " + std::to_string(LengthOf(destination)) + " bytes.");
  }
  return true;
}

void clsExchange::ReReadStep(bool& result) {
  const std::string destination(Trim(ReReadDestination));
  Log("Writing Exceptions for Re-Read to " + ReReadDestination);
  // The question is put whether or not the file exists.
  const MsgAnswer answer = env_.shell.MsgBox(ReReadDestination + " already exists.  Overwrite?",
                                             "ReRead Destination already exists", MsgButtons::YesNo,
                                             MsgIcon::Question);
  if (answer != MsgAnswer::Yes) {
    Log("Error: ReRead Destination already exists");
    result = false;
    return;
  }
  Log("Notice: File " + ReReadDestination + " overwritten on request");
  int32_t count = 0;
  try {
    if (!ReadingHIF) throw Failure(fail::kNoObject);
    BuildReReadFile(*ReadingHIF, destination, count);
  } catch (const WriteFailure& failure) {
    Log("Error: Could not write the re-read file " + ReReadDestination + ": " + failure.Description());
    OutputFailed = true;
    return;  // nothing took the destination's place: no word of exceptions
  } catch (const Failure& failure) {
    Log(failure.Description());
    return;
  }
  if (count > 0) {
    Log("Notice: ReRead File prepared with " + std::to_string(count) + " Meters");
    if ((ReReadHIFType == "PRC" || ReReadHIFType == "PDB") && AutoInstall && !InstallPRC(ReReadDestination)) {
      Log("Install Cancelled without selecting unit");
      HadWarnings = true;
    }
  } else {
    Log("Notice: No exceptions found in reading.  Not creating re-read file");
  }
}

void clsExchange::BuildReReadFile(clsHIF& source, const std::string& destination, int32_t& count) {
  count = 0;
  int16_t version = 0;
  std::vector<int32_t> counts{0};  // exceptions of each route, from 1
  source.Rewind();
  while (source.ReadData()) {
    const int32_t recType = source.NumberItem(MeterField::RecType);
    if (recType == kRecFileHeader && source.NumberItem(MeterField::MeterType) > 0) {
      version = ToInt16(source.NumberItem(MeterField::MeterType));
    } else if (recType == kRecRouteHeader || recType == kRecRouteHeaderAlt) {
      if (counts.size() > 32767) throw Failure(fail::kOverflow);
      counts.push_back(0);
    } else if (recType == kRecMeter) {
      const int32_t route = source.NumberItem(MeterField::RouteNbr);
      if (route < 1 || static_cast<size_t>(route) >= counts.size()) throw Failure(fail::kSubscript);
      if (IsException(source)) ++counts[static_cast<size_t>(route)];
    }
  }
  // Routes with exceptions are numbered afresh, closing up the gaps.
  std::vector<int32_t> renumbered(counts.size(), 0);
  int32_t routes = 0;
  int32_t meters = 0;
  for (size_t route = 1; route < counts.size(); ++route) {
    if (counts[route] > 0) {
      renumbered[route] = ++routes;
      meters += counts[route];
    }
  }
  // Written beside the old file, which stays until the new one is complete.
  FileReplacement replacement(destination);
  clsHIF target(env_.shell);
  target.SetVersion(version);
  if (target.CreateHIF(replacement.Written(), source.GetType(), routes + meters + 1) != 0) {
    throw CreateFailure(fail::kPathAccess, "Could not create", replacement.Written(), {});
  }
  const CivilTime now = env_.clock.Now();
  const int16_t fileVersion = LookupFileVersion(env_.shell, kProgramMajor, kProgramMinor);
  source.Rewind();
  size_t routeRecord = 0;
  while (source.ReadData()) {
    const int32_t recType = source.NumberItem(MeterField::RecType);
    auto copy = [&] {
      target.AddNew();
      target.SetRawData(source.RawData());
    };
    if (recType == kRecFileHeader) {
      copy();
      target.SetNumber(MeterField::RouteNbr, routes);
      target.SetNumber(MeterField::Sequence, DateNumber(now));
      target.SetNumber(MeterField::MeterTagNbr, TimeNumber(now));
      target.SetNumber(MeterField::MeterType, fileVersion);
      target.SetNumber(MeterField::PrvReading, meters);
      target.SetNumber(MeterField::ReadingDate, DateNumber(now));
      target.WriteData();
    } else if (recType == kRecRouteHeader || recType == kRecRouteHeaderAlt) {
      ++routeRecord;
      if (routeRecord < counts.size() && counts[routeRecord] >= 1) {
        copy();
        target.SetNumber(MeterField::RouteNbr, renumbered[routeRecord]);
        target.WriteData();
      }
    } else if (recType == kRecMeter) {
      const auto route = static_cast<size_t>(source.NumberItem(MeterField::RouteNbr));
      if (route < counts.size() && counts[route] >= 1 && IsException(source)) {
        // Back in the state of a meter not yet read.
        copy();
        target.SetNumber(MeterField::RouteNbr, renumbered[route]);
        target.SetNumber(MeterField::Status, 0);
        target.SetNumber(MeterField::ReadingDate, 0);
        target.SetNumber(MeterField::ReadingTime, 0);
        target.SetNumber(MeterField::CurReading, 0);
        target.WriteData();
      }
    }
  }
  target.FinishHIF();
  replacement.Commit();
  count = meters;
}

}  // namespace hifx
