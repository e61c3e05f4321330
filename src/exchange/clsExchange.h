// The exchange engine: the site's conversion settings and, in time, every
// conversion. One object lives for the whole run of the program.
#pragma once

#include <array>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <initializer_list>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "base/AtomicFile.h"
#include "base/CaseBlind.h"
#include "base/Clock.h"
#include "base/KeyedCollection.h"
#include "base/LineReader.h"
#include "base/Shell.h"
#include "base/Value.h"
#include "config/IRegistryStore.h"
#include "config/clsAdvanced.h"
#include "exchange/MappedRecord.h"
#include "exchange/RouteCheck.h"
#include "exchange/RouteLine.h"
#include "exchange/RouteLineParser.h"
#include "hif/clsHIF.h"
#include "hif/clsIndex.h"
#include "maps/clsExchMap.h"
#include "maps/clsPrompts.h"

namespace hifx {

// ".txt" for the four exchange types, empty otherwise.
std::string DefaultFileExtension(int16_t type);
// "Route", "ReRead", "Reading", "Orphan"; also the keys of the settings tree.
std::string TypeDescr(int16_t type);

// What a clsExchange works with: the registry, the person, the clock, and
// the folders of the site.
struct ExchangeEnvironment {
  IRegistryStore& store;
  IShell& shell;
  const IClock& clock;
  std::filesystem::path siteFolder;  // map files and the handheld application files
  std::filesystem::path syncRoot;    // the desktop sync folders, one a handheld user
};

class clsExchange {
 public:
  explicit clsExchange(ExchangeEnvironment environment);
  ~clsExchange();
  clsExchange(const clsExchange&) = delete;
  clsExchange& operator=(const clsExchange&) = delete;

  // The site's lists, loaded on first use and saved when the run ends.
  clsAdvanced& Advanced();
  // Saves the site's lists and lets the next use load them afresh, as after
  // they were edited elsewhere.
  void RenewAdvanced() { advanced_.reset(); }
  // The run-time values the operator entered for the current conversion.
  clsPrompts Prompts;

  // Queues a route file for the handheld unit of the settings, asking for the
  // unit when none is stored or AutoInstallPrompt is set. True when queued.
  bool InstallPRC(const std::filesystem::path& path);

  const ExchangeEnvironment& Environment() const { return env_; }

  // ---- Route conversion

  // Makes the route HIF of the settings; true when the file was made.
  bool ConvertRoute();
  // Runs the route conversion of the settings as a check: into a scratch
  // file in a folder of its own, removed at the end, never queued for a
  // unit, and going on past the faults that would end the conversion. The
  // faults, counts and verdict go to check; true when the conversion would
  // make the file.
  bool CheckRoute(RouteCheck& check);
  // Makes a route HIF of the meters to visit again; true on success.
  bool ConvertReRead();
  bool ConvertRouteFlat();
  // An MVRS route file: each meter with its customer, reading and device
  // lines as one record; true when all converted with no duplicate tag.
  bool ConvertRouteMVRS();
  // Values joined with "~" for a user field, NULs made code 1.
  static std::string CombineUser(std::initializer_list<std::string_view> values);
  // The same joined in `joined`, whose room is kept.
  static std::string_view CombineUser(std::initializer_list<std::string_view> values, std::string& joined);
  // An E5000 download file through the fixed E5000 layout.
  bool ConvertRouteE5K();
  // True when every character of the trimmed text is a digit.
  static bool IsAllDigits(const std::string& text);
  // One line of a flat route file, a value for each of the map's fields.
  // With onlyRoute, only RouteNbr is kept, and of the others only those
  // that may fail or count are converted: what a first pass needs.
  // The line's values stay until the next line is parsed, and its read type
  // is LastReadType; PlanRouteLine comes first in a run.
  const RouteLine& ParseRoute(const std::string& line, bool onlyRoute = false);
  // A parser for the active map, with autonumbers from 1, and the fields a
  // line is validated on.
  void PlanRouteLine();
  // 0 no fault, 1 messages logged, 3 stop. PlanRouteLine comes first.
  int16_t ValidateRoute(const RouteLine& values);
  bool CheckDuplicateTag(const std::string& tag, const std::string& info, int32_t line);
  // The same with the line as the caller words it.
  bool CheckDuplicateTag(const std::string& tag, const std::string& info, std::string_view line);
  // A tag seen before: logged, or in a check kept; true when the run stops.
  bool ReportDuplicateTag(const std::string& tag, const std::string& info, std::string_view line);
  // The route's index in RouteNames, adding it when new.
  int16_t AddRoute(const std::string& name);
  void ClearRoute();
  // Shows the run-time prompt window for the map; false when cancelled.
  bool DisplayPrompts(const clsExchMap& map);

  // Index and code records behind the meters.
  // Hands the meter record just written, numbered MeterRecordNumber, to the
  // indexes of `route`.
  void IndexWrittenMeter(int32_t route);
  void UpdateIndexes(int32_t route, int16_t number, std::string_view tag, std::string_view serial,
                     std::string_view name, std::string_view address, std::string_view account);
  // The words of a name (type 0) or an address (type 1) that its index files.
  std::vector<std::string> IndexWords(std::string_view text, int32_t type);
  template <typename Take>
  void ForEachIndexWord(std::string_view text, int32_t type, Take take);
  bool IsIndexToken(int32_t type, std::string_view word);
  void WriteLoginRecord();
  void WriteSkipRecord();
  void WriteChangeoutRecords();
  void WriteAlertRecord();

  // ---- Reading conversion

  // Makes the billing file of a reading HIF, then the orphan file and the
  // re-read file as configured; true on success.
  bool ConvertReading();
  bool ConvertReadingFlat(int16_t version);
  // The E5000 upload file of the reading HIF; always true.
  bool ConvertReadingE5K(int16_t version);
  bool ConvertOrphanFlat(int16_t version);
  // The MVRS reading file of a reading HIF; false when the person stops it
  // at a failure.
  bool ConvertReadingMVRS(int16_t version);
  // The exceptions of the open reading HIF as a new route HIF; count gives
  // the meters written.
  void BuildReReadFile(clsHIF& source, const std::string& destination, int32_t& count);
  std::string AssembleFixed(MappedRecord& values);
  std::string AssembleDelimited(MappedRecord& values);
  static std::string FormatDate(const std::string& value, int32_t code);
  static std::string FormatTime(const std::string& value, int32_t code);
  static std::vector<std::string> ExtractUser(const std::string& text);

  // Working state of a reading conversion.
  std::unique_ptr<clsHIF> ReadingHIF;  // left open for the re-read step
  std::unique_ptr<OutputFile> Output;  // the billing or orphan file being written
  bool OutputFailed = false;            // an output of this run could not be written
  std::vector<std::string> RouteInitials{std::string()};  // from 1
  bool FirstRecord = true;

  // Working state of a route conversion.
  bool CreateIndexes = true;
  int16_t MeterRecordNumber = 0;
  std::vector<std::string> RouteNames{std::string()};  // from 1; 0 is empty
  std::vector<int16_t> RouteCounts{0};
  int32_t LineNumber = 0;
  // The tags of the meters so far, with no regard to case.
  CaseBlindSet SeenTags;
  int32_t MetersWritten = 0;
  int16_t UntaggedMeters = 0;
  bool HadWarnings = false;
  bool HadProblems = false;
  std::unique_ptr<LineReader> SourceFile;
  std::unique_ptr<clsExchMap> ActiveMap;
  std::unique_ptr<clsHIF> ActiveHIF;
  // Where ActiveHIF is written: beside the destination, which it replaces
  // once complete.
  FileReplacement RouteFile;
  int16_t MessageCount = 0;
  std::string LastReadType;

  // One setting as stored; an empty or missing value gives defaultValue.
  Value GetParm(std::string_view section, std::string_view valueName, const Value& defaultValue);
  // Writes one setting, creating its keys; true when the write succeeded.
  bool SaveParm(std::string_view section, std::string_view valueName, std::string_view value);
  void LoadSettings();
  // Writes all twenty settings, changed or not. A failed write is silent.
  void SaveSettings();

  // The settings: what each conversion reads from and writes to, with which
  // map, and how the handheld file is delivered.
  std::string RouteSource;
  std::string RouteDestination = "RouteHIF.pdb";
  std::string RouteMap;
  std::string RouteHIFType = "PDB";
  std::string ReReadSource;
  std::string ReReadDestination = "RouteHIF.pdb";
  std::string ReReadMap;
  std::string ReReadHIFType = "PDB";
  std::string ReadingSource = "ReadingHIF.pdb";
  std::string ReadingDestination;
  std::string ReadingMap;
  bool AutoReRead = false;
  std::string OrphanDestination;
  std::string OrphanMap;
  int16_t OrphanConvert = 0;
  int16_t OrphanReplace = 0;
  bool AutoInstall = false;
  std::string AutoInstallUnit;
  bool AutoInstallPrompt = false;
  bool AutoInstallLeave = false;

 private:
  bool AskIndexes();

  // The steps of ConvertRoute; a check that fails logs why and gives false.
  // The trimmed destination, checked with its source and map.
  bool CheckRouteFiles(std::string& destination);
  // RouteMap as ActiveMap, validated unless its format fixes the columns.
  bool LoadRouteMap();
  // Logs the start and resets the route lists, counts and flags for a run
  // that writes destination.
  void StartRouteRun(const std::string& destination);
  // The conversion of the map's format; true when its file was made.
  bool ConvertRouteByMapType();
  // What the conversion's result leaves: the file put in place and queued,
  // or the run's word on why not. closingLine false skips the closing line.
  void SettleRouteFile(bool& result, bool& closingLine);
  void LogRouteClosing();

  // The steps of ConvertReRead, which keep its state in a ReReadRun; a check
  // that fails logs why and gives false.
  struct ReReadRun;
  // The trimmed source and destination, checked with the map.
  bool CheckReReadFiles(ReReadRun& run);
  bool LoadReReadMap();
  // Logs the start, resets the route lists, counts and flags, and adds the
  // one route.
  void StartReReadRun(ReReadRun& run);
  // The first pass: each line of the source one meter; the source then open
  // again from its start.
  void CountReReadLines(ReReadRun& run);
  // The file with its header and route records; false when it would be too
  // big or can't be made.
  bool CreateReReadFile(const ReReadRun& run);
  // A meter a line; false when a line's validation stops the run.
  bool WriteReReadMeters();
  // The run's last word, and the file put in place; the conversion's result.
  bool FinishReRead();

  // The steps of ConvertRouteE5K, which keep its state in an E5KRouteRun.
  struct E5KRouteRun;
  void CountE5KRoutes(E5KRouteRun& run);
  bool CreateE5KRouteFile(E5KRouteRun& run);
  void ReadE5KMeters(E5KRouteRun& run);
  void WriteE5KMeter(E5KRouteRun& run);

  void WriteFileHeader(const std::string& sourceName, int32_t meters, int16_t version);
  // One header a route; user1, where given, holds each route's User1 by its
  // index.
  void WriteRouteHeaders(const std::vector<std::string>& user1 = {});
  // Writes the meter in the buffer, counts it and hands it to the index.
  void WriteIndexedMeter();
  void WriteCodeRecords();
  std::unique_ptr<RouteLineParser> routeParser_;  // of the active map, from PlanRouteLine
  // An empty ActiveMap of the site, to be loaded, in place of the one before.
  void NewActiveMap();
  // The fields with a maximum or required, by position.
  std::vector<size_t> validatedFields_;
  // The longest output line so far and its end of line: a fixed line takes
  // its room at once rather than growing field by field.
  std::string fieldText_;  // AssembleFixed's room for the text of one field
  // One fault of a line's validation: logged while fewer than fifty are,
  // or, in a check, kept with the rest.
  void Report(const std::string& message, int16_t& result, RouteFault fault);
  // A failure that ends a route run: shown, or, in a check, kept.
  void ShowRouteFailure(const std::string& description);
  bool ConvertForCheck(RouteCheck& check, const std::filesystem::path& scratch);
  RouteCheck* check_ = nullptr;  // set while CheckRoute runs
  void WriteFlatMeter(const RouteLine& values, int16_t route);
  void WriteReReadMeter(const RouteLine& values);
  // Asks before an existing destination is overwritten; false (logged) when
  // the answer is not Yes. remove deletes the old file on Yes.
  bool DestinationFree(const std::string& destination, std::string_view what, bool remove);
  // One file a run reads or writes, by the words its messages use for it.
  struct RunFile {
    std::string role;  // "Route Source", "Reading Destination", ...
    std::string name;
  };
  // Refuses (logged) a run whose destination is one of its sources or
  // another of its destinations, or is something other than a plain file.
  bool FilesApart(const std::vector<RunFile>& sources, const std::vector<RunFile>& destinations);
  bool ReadingFilesApart(const std::string& source, const std::string& destination);
  // The file of a map of the site, by its name and use.
  std::string MapFile(const std::string& map, int16_t use) const;
  // The value of a field for an output line, with the default and its
  // warning for a field the file's version doesn't have.
  std::string OutputValue(const Value* value, const MapField& field);
  // OutputValue, seen in place where the value already is its text, or
  // written into `scratch`; valid until the value or `scratch` changes.
  std::string_view OutputText(const Value* value, const MapField& field, std::string& scratch);
  void WriteOutputLine(std::string line);
  // What a conversion that stopped on the data wrote so far put in place of
  // the old file, as the run has always kept it; an output whose writing
  // failed goes, and the old file stays. False, logged, when the output
  // could not be kept.
  bool KeepOutput();
  // The route file of the run put in the destination's place (see
  // RouteFile) once the run has written it to its end, as far as the run
  // went: a conversion that stopped on the data still leaves its file, as it
  // always has. One whose writing failed goes, and the old file stays.
  // False, logged, when the file could not be put in place.
  bool KeepRouteFile();
  void KeepRouteRecord(clsHIF& hif, int32_t recType);
  bool OrphanStep(int16_t version);
  void ReReadStep(bool& result);
  void Log(const std::string& line);
  // Logs the line and gives false.
  bool Fail(const std::string& line);
  // One more meter of a route, counted up to what a file can hold.
  static void CountUp(int16_t& count);
  // False, logged, when a file of the meters and routes (by default those of
  // RouteNames) would need more records than a handheld file holds.
  bool RecordsFit(int32_t meters, int32_t routes = -1);

  ExchangeEnvironment env_;
  std::unique_ptr<clsAdvanced> advanced_;
  std::unordered_map<std::string, int16_t> routeIndex_;  // RouteNames by name
  std::vector<clsIndex> indexes_;
  // The fields of the meter just written that its indexes take, kept from
  // meter to meter with the text of each; and the text being split into words.
  struct IndexedField {
    Value value;
    std::string text;
  };
  std::array<IndexedField, 5> indexed_;
  std::string indexText_;
  int32_t indexRoute_ = 0;  // the route the gathered index entries belong to
};

}  // namespace hifx
