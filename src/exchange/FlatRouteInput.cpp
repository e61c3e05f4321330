// Fixed-column and delimited route files: two passes over the source, the
// first to find the routes and count the meters, the second to validate and
// write each meter.
#include "base/CaseBlind.h"
#include "base/Failure.h"
#include "base/Numbers.h"
#include "base/Text.h"
#include "exchange/ExchangeText.h"
#include "exchange/clsExchange.h"

namespace hifx {
namespace {

std::vector<std::string> Split(const std::string& text, const std::string& delimiter) {
  std::vector<std::string> pieces;
  if (delimiter.empty()) {
    pieces.push_back(text);
    return pieces;
  }
  size_t start = 0;
  for (;;) {
    const size_t at = text.find(delimiter, start);
    if (at == std::string::npos) {
      pieces.push_back(text.substr(start));
      return pieces;
    }
    pieces.push_back(text.substr(start, at - start));
    start = at + delimiter.size();
  }
}


}  // namespace

// Inline, as is TakeFixedField: they run for every field of every line, and
// a call of them costs as much as their work.
inline void clsExchange::AddValue(size_t position, const MapField& field, std::string_view raw, bool trimBothEnds,
                                  bool keep) {
  if (!keep && !routeLine_.Is(position, MeterField::RouteNbr)) {
    // Nothing is kept, but a number that doesn't fit its field still fails
    // here as it would in the second pass. One too short to overflow isn't
    // read.
    if (field.DataType == kTypeInteger && !LeadingNumberIsShort(raw, 4)) ToInt16(NumericPrefix(raw));
    if (field.DataType == kTypeLong && !LeadingNumberIsShort(raw, 9)) ToInt32(NumericPrefix(raw));
    return;
  }
  switch (field.DataType) {
    case kTypeText: routeLine_.Slot(position).SetText(trimBothEnds ? Trim(raw) : TrimRight(raw)); break;
    case kTypeInteger: {
      const int16_t number = ToInt16(NumericPrefix(raw));
      routeLine_.Slot(position).SetInteger(number);
      break;
    }
    case kTypeLong: {
      const int32_t number = ToInt32(NumericPrefix(raw));
      routeLine_.Slot(position).SetLong(number);
      break;
    }
    case kTypeNumber:
      routeLine_.Slot(position).SetDouble(NumericPrefix(raw));
      break;
    case kTypeDate:
    case kTypeTime: routeLine_.Slot(position).SetText(TrimRight(raw)); break;
    default: break;
  }
}

const RouteLine& clsExchange::ParseRoute(const std::string& line, bool onlyRoute) {
  if (ActiveMap->MapType() == kMapFixed) return ParseRouteFixed(line, onlyRoute);
  if (ActiveMap->MapType() == kMapDelimited) return ParseRouteDelimited(line, onlyRoute);
  routeLine_.Clear(0);
  return routeLine_;
}

const RouteLine& clsExchange::ParseRouteDelimited(const std::string& line, bool onlyRoute) {
  const clsExchMap& map = *ActiveMap;
  const std::string quote = map.MapQuote();
  const std::string delimiter = map.MapDelimiterChar();
  std::string work = line;
  if (!quote.empty()) {
    // Delimiters inside quotes are hidden as "~" while the line is split. A
    // quote or delimiter of more than one character never equals one
    // character, so it protects nothing.
    bool inQuotes = false;
    for (char& c : work) {
      if (quote.size() == 1 && c == quote[0]) {
        inQuotes = !inQuotes;
      } else if (inQuotes && delimiter.size() == 1 && c == delimiter[0]) {
        c = '~';
      }
    }
  }
  std::vector<std::string> pieces = Split(work, delimiter);
  if (!quote.empty()) {
    for (std::string& piece : pieces) {
      if (quote.size() == 1 && !piece.empty() && piece.front() == quote[0]) piece.erase(0, 1);
      if (quote.size() == 1 && !piece.empty() && piece.back() == quote[0]) piece.pop_back();
      ReplaceAll(piece, quote + quote, quote);
      // Every "~" becomes the delimiter, also one that stood for itself.
      ReplaceAll(piece, "~", delimiter);
    }
  }
  LastReadType.clear();
  const std::vector<MapField>& fields = map.Fields();
  routeLine_.Clear(fields.size());
  std::string raw;
  for (size_t i = 0; i < fields.size(); ++i) {
    const MapField& field = fields[i];
    bool found = false;
    switch (field.MapOption) {
      case kOptionDoNotMap: raw.clear(); break;
      case kOptionSource: {
        // A short line repeats the previous field's text into the fields
        // beyond it.
        const int32_t piece = field.DataPosition - 1;
        if (piece >= 0 && static_cast<size_t>(piece) < pieces.size()) {
          raw = pieces[static_cast<size_t>(piece)];
          found = true;
        }
        break;
      }
      case kOptionConstant: raw = field.MapConstant; break;
      case kOptionPrompt: raw = Prompts.Value(field.FieldName); break;
      case kOptionAutonumber:
        AutoNumber = ToInt16(AutoNumber + 1.0);
        raw = std::to_string(AutoNumber);
        break;
      default: break;
    }
    if (found && routeLine_.Is(i, MeterField::ReadType)) LastReadType = UpperCase(raw);
    AddValue(i, field, raw, false, !onlyRoute);
  }
  return routeLine_;
}

void clsExchange::PlanRouteLine() {
  const clsExchMap& map = *ActiveMap;
  routeLine_.Plan(map);
  firstPassFields_.clear();
  firstPassMap_ = &map;
  validatedFields_.clear();
  const std::vector<MapField>& fields = map.Fields();
  for (size_t i = 0; i < fields.size(); ++i) {
    const MapField& field = fields[i];
    if (field.MaxValue > 0 || field.Required) validatedFields_.push_back(i);
    const bool checked = field.DataType == kTypeInteger || field.DataType == kTypeLong;
    bool walked = checked || routeLine_.Is(i, MeterField::RouteNbr);
    switch (field.MapOption) {
      case kOptionDoNotMap:
      case kOptionConstant:
        break;
      case kOptionSource:
        walked = walked || routeLine_.Is(i, MeterField::ReadType) || field.DataPosition < 1 || field.DataWidth < 0;
        break;
      case kOptionPrompt:
      case kOptionAutonumber:
        walked = true;
        break;
      default:
        // A field that repeats the text of the one before: the first pass
        // walks them all.
        firstPassMap_ = nullptr;
        break;
    }
    if (walked) firstPassFields_.push_back(i);
  }
}

inline void clsExchange::TakeFixedField(size_t position, const std::string& line, std::string_view& raw,
                                        bool onlyRoute) {
  const MapField& field = ActiveMap->Fields()[position];
  switch (field.MapOption) {
    case kOptionDoNotMap:
      raw = {};
      break;
    case kOptionSource: {
      if (field.DataPosition < 1 || field.DataWidth < 0) throw Failure(fail::kInvalidCall);
      const size_t start = static_cast<size_t>(field.DataPosition - 1);
      raw = start < line.size() ? std::string_view(line).substr(start, static_cast<size_t>(field.DataWidth))
                                : std::string_view();
      if (routeLine_.Is(position, MeterField::ReadType)) LastReadType = UpperCase(raw);
      break;
    }
    case kOptionConstant:
      raw = field.MapConstant;
      break;
    case kOptionPrompt:
      promptedText_ = Prompts.Value(field.FieldName);
      raw = promptedText_;
      break;
    case kOptionAutonumber:
      AutoNumber = ToInt16(AutoNumber + 1.0);
      numberText_ = std::to_string(AutoNumber);
      raw = numberText_;
      break;
    default:
      break;
  }
  AddValue(position, field, raw, true, !onlyRoute);
}

const RouteLine& clsExchange::ParseRouteFixed(const std::string& line, bool onlyRoute) {
  const clsExchMap& map = *ActiveMap;
  LastReadType.clear();
  routeLine_.Clear(map.Fields().size());
  // The raw text of a field stays for the next one, which may repeat it.
  std::string_view raw;
  if (onlyRoute && firstPassMap_ == &map) {
    for (const size_t position : firstPassFields_) TakeFixedField(position, line, raw, true);
  } else {
    for (size_t position = 0; position < map.Fields().size(); ++position) {
      TakeFixedField(position, line, raw, onlyRoute);
    }
  }
  return routeLine_;
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

  SourceFile = std::make_unique<LineReader>(source);
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
  // Autonumbers of the second pass repeat those of the first.
  AutoNumber = 0;
  MessageCount = 0;
  while (SourceFile->ReadLine(line)) {
    env_.shell.SetProgressButton(3 * blocks, blocks + static_cast<int32_t>(SourceFile->Position() / 128));
    ++LineNumber;
    const RouteLine& values = ParseRoute(line);
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
  hif.SetItem(RecType, Value::Long(kRecMeter));
  hif.SetItem(RouteNbr, Value::Long(route));
  copy(Sequence);
  copy(MeterTagNbr);
  const std::string meterType = TextOf(values[MeterType]);
  if (meterType >= "A") {
    hif.SetItem(MeterType, Value::Long(static_cast<unsigned char>(meterType[0])));
  } else {
    hif.SetItem(MeterType, Value::Double(NumericPrefix(meterType)));
  }
  for (const MeterField field : {Digits, Decimals, PrvReading, MaxReading, MinReading}) copy(field);
  if (LastReadType == "R" || LastReadType == "r") {
    hif.SetItem(ReadType, Value::Long(1));
  } else if (LastReadType == "M" || LastReadType == "S" || LastReadType == "m" || LastReadType == "s") {
    hif.SetItem(ReadType, Value::Long(2));
  } else if (LastReadType == "P" || LastReadType == "p") {
    hif.SetItem(ReadType, Value::Long(3));
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
