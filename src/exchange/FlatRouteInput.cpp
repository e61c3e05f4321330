// Fixed-column and delimited route files: two passes over the source, the
// first to find the routes and count the meters, the second to validate and
// write each meter.
#include "base/Failure.h"
#include "base/Numbers.h"
#include "base/Text.h"
#include "exchange/ExchangeText.h"
#include "exchange/RouteLineFeed.h"
#include "exchange/clsExchange.h"

namespace hifx {

const RouteLine& clsExchange::ParseRoute(const std::string& line, bool onlyRoute) {
  if (routeParser_ == nullptr) throw Failure(fail::kInvalidCall);
  const RouteLine& values = routeParser_->Parse(line, onlyRoute);
  LastReadType = routeParser_->ReadType();
  return values;
}

void clsExchange::PlanRouteLine() {
  routeParser_ = std::make_unique<RouteLineParser>(*ActiveMap, Prompts);
  validatedFields_.clear();
  const std::vector<MapField>& fields = ActiveMap->Fields();
  for (size_t i = 0; i < fields.size(); ++i) {
    if (fields[i].MaxValue > 0 || fields[i].Required) validatedFields_.push_back(i);
  }
}

bool clsExchange::ConvertRouteFlat() {
  const std::string source(Trim(RouteSource));
  SourceFile = std::make_unique<LineReader>(source);
  // Progress counts 128-byte blocks: the first pass fills the first third,
  // the second pass the second.
  const auto blocks = static_cast<int32_t>(std::min<uint64_t>((SourceFile->Size() + 127) / 128, 700000000));
  UntaggedMeters = 0;
  MetersWritten = 0;
  PlanRouteLine();
  int32_t lines = 0;
  std::string line;
  while (SourceFile->ReadLine(line)) {
    env_.shell.SetProgressButton(3 * blocks, static_cast<int32_t>(SourceFile->Position() / 128));
    ++LineNumber;
    const RouteLine& values = ParseRoute(line, true);
    const int16_t route = AddRoute(TextOf(values[MeterField::RouteNbr]));
    CountUp(RouteCounts[static_cast<size_t>(route)]);
    ++lines;
  }

  // The lines are read and parsed again on a second thread while this one
  // checks and writes them.
  SourceFile = std::make_unique<LineReader>(source);
  RouteLineFeed feed(std::move(SourceFile), *ActiveMap, Prompts);
  LineNumber = 0;
  // A slot for each meter, route header and the file header, and a margin
  // for the code and index records.
  if (!RecordsFit(lines)) return false;
  SeenTags.Reserve(static_cast<size_t>(lines));
  const int32_t records = lines + static_cast<int32_t>(RouteNames.size() - 1) + 2 + 2100;
  const int32_t fileType = (RouteHIFType == "PRC" || RouteHIFType == "PDB") ? kFilePDB : kFileVFS;
  if (ActiveHIF->CreateHIF(RouteFile.Written(), fileType, records) != 0) {
    return Fail("Error: Could not Create Route HIF File");
  }
  WriteFileHeader(source, lines, ActiveHIF->Version());
  WriteRouteHeaders();
  MessageCount = 0;
  while (const RouteLineFeed::Line* parsed = feed.Next()) {
    env_.shell.SetProgressButton(3 * blocks, blocks + static_cast<int32_t>(parsed->position / 128));
    ++LineNumber;
    LastReadType = parsed->readType;
    const RouteLine& values = parsed->values;
    switch (ValidateRoute(values)) {
      case 1: HadWarnings = true; break;
      case 2: HadProblems = true; break;
      case 3: return false;
      default: break;
    }
    WriteFlatMeter(values, AddRoute(TextOf(values[MeterField::RouteNbr])));
  }
  return !HadProblems;
}

void clsExchange::WriteFlatMeter(const RouteLine& values, int16_t route) {
  using enum MeterField;
  clsHIF& hif = *ActiveHIF;
  const auto copy = [&](MeterField field) { hif.SetItem(field, values[field]); };
  hif.AddNew();
  hif.SetNumber(RecType, kRecMeter);
  hif.SetNumber(RouteNbr, route);
  copy(Sequence);
  copy(MeterTagNbr);
  const std::string meterType = TextOf(values[MeterType]);
  if (meterType >= "A") {
    hif.SetNumber(MeterType, static_cast<unsigned char>(meterType[0]));
  } else {
    hif.SetItem(MeterType, Value::Double(NumericPrefix(meterType)));
  }
  for (const MeterField field : {Digits, Decimals, PrvReading, MaxReading, MinReading}) copy(field);
  if (LastReadType == "R" || LastReadType == "r") {
    hif.SetNumber(ReadType, 1);
  } else if (LastReadType == "M" || LastReadType == "S" || LastReadType == "m" || LastReadType == "s") {
    hif.SetNumber(ReadType, 2);
  } else if (LastReadType == "P" || LastReadType == "p") {
    hif.SetNumber(ReadType, 3);
  } else {
    hif.SetItem(ReadType, Value::Double(NumericPrefix(TextOf(values[ReadType]))));
  }
  // A date stays text: its first four characters fill the 32-bit field.
  for (const MeterField field :
       {LstReadingDate, UtilityCode, Lat, Lng, ScaleFactor, InitReading, InitPulseCount, InitTamperCount}) {
    copy(field);
  }
  hif.SetItem(Message, Value(Advanced().LookupMessage(TextOf(values[Message]), TextOf(values[RouteNbr]),
                                                       TextOf(values[ServiceUniqueID]),
                                                       TextOf(values[MeterSerialNbr]), TextOf(values[MeterTagNbr]))));
  for (const MeterField field : {ServiceAddress, BillingName, ServiceUniqueID, MeterSerialNbr}) copy(field);
  hif.SetItem(ReceiverData, Value(""));
  for (const MeterField field : {User1, User2, User3, User4, User5}) copy(field);
  WriteIndexedMeter();
}

}  // namespace hifx
