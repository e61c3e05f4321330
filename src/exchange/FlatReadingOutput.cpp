// Billing and orphan files of fixed columns or delimited fields, written from
// the records of a reading HIF through an output map.
#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

#include "base/Failure.h"
#include "base/Numbers.h"
#include "base/Text.h"
#include "exchange/ExchangeText.h"
#include "exchange/clsExchange.h"

namespace hifx {
namespace {

// Route lists hold at most as many routes as a file holds records.
constexpr int32_t kMostRoutes = 32767;

bool IsValidDate(int year, int month, int day) {
  static constexpr int kDays[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  if (year < 100 || year > 9999 || month < 1 || month > 12 || day < 1) return false;
  const bool leap = (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
  return day <= kDays[month - 1] + (month == 2 && leap ? 1 : 0);
}

int DigitsAt(std::string_view text, size_t at, size_t count) {
  int n = 0;
  for (size_t i = at; i < at + count; ++i) {
    if (i >= text.size() || text[i] < '0' || text[i] > '9') return -1;
    n = n * 10 + (text[i] - '0');
  }
  return n;
}

void AppendTwoDigits(std::string& out, int n) {
  out.push_back(static_cast<char>('0' + n / 10 % 10));
  out.push_back(static_cast<char>('0' + n % 10));
}

// Puts the separators after the first and second pairs of a six-letter mask.
std::string Separate(const std::string& mask, const std::string& separator, int pairs) {
  std::string out;
  for (size_t i = 0; i < mask.size(); i += 2) {
    out += mask.substr(i, 2);
    if (static_cast<int>(i / 2) < pairs && i + 2 < mask.size()) out += separator;
  }
  return out;
}

std::string BlankForm(std::string mask) {
  for (char& c : mask) {
    if (c == 'M' || c == 'D' || c == 'Y' || c == 'H' || c == 'N' || c == 'S') c = '0';
  }
  return mask;
}

std::string ReadTypeLetter(const Value& v) {
  if (v.IsText() || v.IsEmpty() || v.IsNull()) return TextOf(v);
  switch (v.ToInt32()) {
    case 1: return "R";
    case 2: return "M";
    case 3: return "P";
    default: return TextOf(v);
  }
}

// The mask of a date format code: its tens give the order, its units the
// separators (1 a dash, 2 a slash, both for 3) and, with 4, a four-digit year.
std::string DateMask(int32_t code) {
  const int32_t units = code % 10;
  std::string mask;
  switch (code - units) {
    case 10: mask = "YYMMDD"; break;
    case 20: mask = "MMDDYY"; break;
    case 30: mask = "DDMMYY"; break;
    default: break;
  }
  std::string separator;
  if (units & 1) separator += "-";
  if (units & 2) separator += "/";
  if (!separator.empty()) mask = Separate(mask, separator, 2);
  if (units & 4) {
    const size_t yy = mask.find("YY");
    if (yy != std::string::npos) mask.replace(yy, 2, "YYYY");
  }
  return mask;
}

}  // namespace

std::string clsExchange::FormatDate(const std::string& value, int32_t code) {
  // The masks of the codes in use are made once.
  static const std::array<std::string, 100> kMasks = [] {
    std::array<std::string, 100> masks;
    for (int32_t c = 0; c < 100; ++c) masks[static_cast<size_t>(c)] = DateMask(c);
    return masks;
  }();
  std::string other;
  const std::string& mask = code >= 0 && code < 100 ? kMasks[static_cast<size_t>(code)] : (other = DateMask(code));
  if (NumericPrefix(value) == 0) return BlankForm(mask);
  // The stored form is yyyymmdd.
  const int year = DigitsAt(value, 0, 4);
  const int month = DigitsAt(value, 4, 2);
  const int day = DigitsAt(value, 6, 2);
  if (!IsValidDate(year, month, day)) return BlankForm(mask);
  std::string out;
  out.reserve(mask.size());
  for (size_t i = 0; i < mask.size();) {
    if (mask.compare(i, 4, "YYYY") == 0) {
      char digits[8];
      out.append(digits, std::to_chars(digits, digits + sizeof digits, year).ptr);
      i += 4;
    } else if (mask.compare(i, 2, "YY") == 0) {
      AppendTwoDigits(out, year % 100);
      i += 2;
    } else if (mask.compare(i, 2, "MM") == 0) {
      AppendTwoDigits(out, month);
      i += 2;
    } else if (mask.compare(i, 2, "DD") == 0) {
      AppendTwoDigits(out, day);
      i += 2;
    } else {
      out += mask[i++];
    }
  }
  return out;
}

std::string clsExchange::FormatTime(const std::string& value, int32_t code) {
  const int32_t units = code % 10;
  // Only the tens of 40 have a mask: the six-digit form would need tens of
  // 41, which no code has, so seconds are never written.
  static const std::string kNone, kHoursMinutes = "HHNN", kHoursColonMinutes = "HH:NN";
  const std::string& mask = code - units != 40 ? kNone : (units & 2) ? kHoursColonMinutes : kHoursMinutes;
  if (NumericPrefix(value) == 0) return BlankForm(mask);
  // The last six digits of the value, zeros in front of a shorter one.
  const std::string_view given = Trim(value);
  const size_t kept = std::min<size_t>(given.size(), 6);
  char sixDigits[6] = {'0', '0', '0', '0', '0', '0'};
  std::copy_n(given.end() - kept, kept, std::end(sixDigits) - kept);
  const std::string_view digits(sixDigits, 6);
  const int hours = DigitsAt(digits, 0, 2);
  const int minutes = DigitsAt(digits, 2, 2);
  const int seconds = DigitsAt(digits, 4, 2);
  if (hours < 0 || hours > 23 || minutes < 0 || minutes > 59 || seconds < 0 || seconds > 59) {
    throw Failure(fail::kTypeMismatch);
  }
  std::string out;
  out.reserve(mask.size());
  for (size_t i = 0; i < mask.size();) {
    if (mask.compare(i, 2, "HH") == 0) {
      AppendTwoDigits(out, hours);
      i += 2;
    } else if (mask.compare(i, 2, "NN") == 0) {
      AppendTwoDigits(out, minutes);
      i += 2;
    } else {
      out += mask[i++];
    }
  }
  return out;
}

std::vector<std::string> clsExchange::ExtractUser(const std::string& text) {
  std::vector<std::string> parts;
  size_t start = 0;
  for (;;) {
    const size_t tilde = text.find('~', start);
    std::string& part = parts.emplace_back(text, start, tilde == std::string::npos ? std::string::npos : tilde - start);
    if (part.find('\x01') != std::string::npos) {
      for (char& c : part) {
        if (c == '\x01') c = '\0';
      }
    }
    if (tilde == std::string::npos) return parts;
    start = tilde + 1;
  }
}

std::string clsExchange::OutputValue(const Value* given, const MapField& field) {
  std::string value;
  if (given != nullptr) {
    value = TextOf(*given);
  } else {
    // A field the file's version doesn't have.
    value = field.DataType == kTypeText ? "" : "0";
    if (FirstRecord) Log("Warning: Defaulted " + field.FieldName + " to " + value);
  }
  if (field.DataType == kTypeDate) value = FormatDate(value, field.MapFormat);
  if (field.DataType == kTypeTime) value = FormatTime(value, field.MapFormat);
  return value;
}

std::string_view clsExchange::OutputText(const Value* given, const MapField& field, std::string& scratch) {
  if (given != nullptr && field.DataType != kTypeDate && field.DataType != kTypeTime) {
    if (given->IsText()) return given->Text();
    if (given->Kind() == ValueKind::Long || given->Kind() == ValueKind::Integer) {
      char digits[16];
      scratch.assign(digits, std::to_chars(digits, digits + sizeof digits, given->ToInt32()).ptr);
      return scratch;
    }
  }
  scratch = OutputValue(given, field);
  return scratch;
}

std::string clsExchange::AssembleFixed(MappedRecord& values) {
  const std::vector<MapField>& fields = ActiveMap->Fields();
  // Blanks where no field writes; each field's columns filled with its pad,
  // and its text written over them at the right end when it is aligned
  // right, else at the left. A later field stands over an earlier one.
  std::string line(values.FixedLength(), ' ');
  try {
    for (size_t i = 0; i < fields.size(); ++i) {
      const MapField& field = fields[i];
      if (field.MapOption != kOptionDestination) continue;
      const auto width = static_cast<size_t>(std::max<int32_t>(field.DataWidth, 0));
      std::string_view shown = OutputText(values.ForMapField(i), field, fieldText_);
      if (field.MapAlign == 1) shown = Trim(shown);
      if (shown.size() > width) {
        // Texts, dates and times keep their left end, numbers their right.
        const bool text = field.DataType == kTypeText || field.DataType == kTypeDate || field.DataType == kTypeTime;
        shown = text ? shown.substr(0, width) : shown.substr(shown.size() - width);
      }
      char* columns = line.data() + values.FixedColumn(i);
      std::fill_n(columns, width, field.MapPad == 2 ? ' ' : '0');
      shown.copy(columns + (field.MapAlign == 2 ? width - shown.size() : 0), shown.size());
    }
  } catch (const Failure& failure) {
    Log("Error: " + failure.Description());
    return {};
  }
  return line;
}

std::string clsExchange::AssembleDelimited(MappedRecord& values) {
  const clsExchMap& map = *ActiveMap;
  const std::string& quote = map.MapQuote();
  const std::vector<MapField>& fields = map.Fields();
  std::vector<std::string> slots;
  try {
    for (size_t i = 0; i < fields.size(); ++i) {
      const MapField& field = fields[i];
      if (field.MapOption != kOptionDestination) continue;
      std::string value = OutputValue(values.ForMapField(i), field);
      const auto enclose = [&](std::string& v) {
        std::string doubled;
        for (size_t at = 0; at < v.size();) {
          if (v.compare(at, quote.size(), quote) == 0) {
            doubled += quote + quote;
            at += quote.size();
          } else {
            doubled += v[at++];
          }
        }
        v = quote + doubled + quote;
      };
      if (field.DataType == kTypeText && !quote.empty()) {
        enclose(value);
        std::erase_if(value, [](char c) { return c == '\r' || c == '\n'; });
        // Quoted twice on purpose: the files have always carried it so.
        if (quote != "<none>") enclose(value);
      } else if ((field.DataType == kTypeDate || field.DataType == kTypeTime) && !quote.empty() &&
                 field.MapFormat == 0) {
        value = quote + value + quote;
      }
      if (field.DataPosition < 1) throw Failure(fail::kSubscript);
      const auto slot = static_cast<size_t>(field.DataPosition - 1);
      if (slot >= slots.size()) slots.resize(slot + 1);
      slots[slot] = std::move(value);
    }
  } catch (const Failure& failure) {
    Log("Error: " + failure.Description());
    return {};
  }
  std::string line;
  const std::string delimiter = map.MapDelimiterChar();
  for (size_t i = 0; i < slots.size(); ++i) {
    if (i > 0) line += delimiter;
    line += slots[i];
  }
  return line;
}

void clsExchange::WriteOutputLine(std::string line) {
  const clsExchMap& map = *ActiveMap;
  if (map.MapLength() > 0 && line.size() < static_cast<size_t>(map.MapLength())) {
    line.resize(static_cast<size_t>(map.MapLength()), ' ');
  }
  switch (map.MapTerminator()) {
    case 1: line += '\r'; break;
    case 2: line += '\n'; break;
    case 3: line += "\r\n"; break;
    case 4: line += '\0'; break;
    default: break;
  }
  Output->Write(line);
}

bool clsExchange::KeepOutput() {
  if (!Output) return true;
  const std::unique_ptr<OutputFile> output = std::move(Output);
  if (!output->Failed()) {
    try {
      output->Commit();
      return true;
    } catch (const Failure& failure) {
      Log("Error: " + failure.Description());
    }
  }
  OutputFailed = true;  // a failed write is logged where it failed
  return false;
}

void clsExchange::KeepRouteRecord(clsHIF& hif, int32_t recType) {
  const int32_t route = hif.NumberItem(MeterField::RouteNbr);
  if (recType == kRecFileHeader) {
    if (route < 0 || route > kMostRoutes) {
      throw Failure(fail::kOutOfMemory, "The file header of " + std::string(Trim(ReadingSource)) + " counts " + std::to_string(route) +
                                            " routes, more than a handheld file holds");
    }
    RouteInitials.assign(static_cast<size_t>(route) + 1, std::string());
    return;
  }
  if (route < 1 || static_cast<size_t>(route) >= RouteInitials.size()) throw Failure(fail::kSubscript);
  RouteInitials[static_cast<size_t>(route)] = TextOf(hif.Item(MeterField::Initials));
}

namespace {

// The new output is written beside the old file and takes its place only
// when complete; an append starts from the old file's bytes.
std::unique_ptr<OutputFile> OpenOutput(const std::string& path, bool append) {
  return std::make_unique<OutputFile>(path, append);
}

}  // namespace

bool clsExchange::ConvertReadingFlat(int16_t version) {
  ClearRoute();
  RouteInitials.assign(1, std::string());
  Output = OpenOutput(std::string(Trim(ReadingDestination)), false);
  ReadingHIF = std::make_unique<clsHIF>(env_.shell);
  ReadingHIF->SetVersion(version);
  if (ReadingHIF->OpenHIF(Trim(ReadingSource))) throw Failure(fail::kFileNotFound, "Could not read HIF file");
  FirstRecord = true;
  clsHIF& hif = *ReadingHIF;
  clsPalmDB& db = hif.DB();
  const int32_t mapType = ActiveMap->MapType();
  const int32_t filter = ActiveMap->MapFilter();
  MappedRecord values;
  values.Plan(*ActiveMap, db);
  const int16_t recTypeAt = db.FindItem("RecType");
  const int16_t routeAt = db.FindItem("RouteNbr");
  const int16_t decimalsAt = db.FindItem("Decimals");
  const int16_t digitsAt = db.FindItem("Digits");
  const int16_t readingAt = db.FindItem("CurReading");
  const int16_t readTypeAt = db.FindItem("ReadType");
  const int16_t statusAt = db.FindItem("Status");
  const int16_t responseAt = db.FindItem("ResponseCode");
  // A field the schema lacks (index 0) reads as null.
  const auto item = [&db](int16_t index) { return db.Item(int32_t{index}); };
  while (hif.ReadData()) {
    env_.shell.SetProgressButton(255, hif.Position255());
    const int32_t recType = NumberOf(item(recTypeAt));
    if (recType == kRecFileHeader || recType == kRecRouteHeader || recType == kRecRouteHeaderAlt) {
      KeepRouteRecord(hif, recType);
      continue;
    }
    if (recType != kRecMeter) continue;
    values.Read(db);
    const int32_t route = NumberOf(values.At(routeAt));
    // A meter whose route has no header is a failure of the run.
    if (route < 1 || static_cast<size_t>(route) >= RouteInitials.size()) throw Failure(fail::kSubscript);
    values.At(routeAt) = Value(RouteInitials[static_cast<size_t>(route)]);
    // Read from the record: a file of an older version has no Decimals, which
    // then reads as nothing.
    const int32_t decimals = NumberOf(item(decimalsAt));
    const int32_t digits = NumberOf(item(digitsAt));
    if (decimals > 0) {
      // Stored readings carry their decimals; the billing file doesn't.
      const double scale = PowerOfTen(decimals);
      hif.SetItem(MeterField::CurReading, Value::Double(std::trunc(NumberOf(item(readingAt)) / scale)));
    }
    if (digits > 0) {
      // Cut to the dial's width, from the eight-digit form.
      std::string eight = std::to_string(NumberOf(item(readingAt)));
      if (eight.size() < 8) eight.insert(0, 8 - eight.size(), '0');
      if (static_cast<size_t>(digits) < eight.size()) eight = eight.substr(eight.size() - static_cast<size_t>(digits));
      hif.SetItem(MeterField::CurReading, Value::Double(NumericPrefix(eight)));
    }
    if (decimals > 0 || digits > 0) values.At(readingAt) = item(readingAt);
    // A file of version 0 has no ReadType to show as a letter.
    if (readTypeAt != 0) values.At(readTypeAt) = Value(ReadTypeLetter(values.At(readTypeAt)));
    std::string line;
    if (mapType == kMapFixed) line = AssembleFixed(values);
    if (mapType == kMapDelimited) line = AssembleDelimited(values);
    const int32_t status = statusAt != 0 ? NumberOf(values.At(statusAt)) : 0;
    const int32_t response = responseAt != 0 ? NumberOf(values.At(responseAt)) : 0;
    const bool passes = filter == 1   ? status > 0
                        : filter == 2 ? status > 0 || response > 0
                        : filter == 3 ? status == 0
                                      : true;
    if (passes) WriteOutputLine(std::move(line));
    FirstRecord = false;
  }
  Output->Commit();
  Output.reset();
  return true;
}

bool clsExchange::ConvertOrphanFlat(int16_t version) {
  ClearRoute();
  RouteInitials.assign(1, std::string());
  Output = OpenOutput(std::string(Trim(OrphanDestination)), OrphanReplace == 0);
  ReadingHIF = std::make_unique<clsHIF>(env_.shell);
  ReadingHIF->SetVersion(version);
  if (ReadingHIF->OpenHIF(Trim(ReadingSource))) throw Failure(fail::kFileNotFound, "Could not read HIF file");
  clsHIF& hif = *ReadingHIF;
  const int32_t mapType = ActiveMap->MapType();
  MappedRecord values;
  values.Plan(*ActiveMap, hif.DB());
  while (hif.ReadData()) {
    env_.shell.SetProgressButton(255, hif.Position255());
    const int32_t recType = hif.NumberItem(MeterField::RecType);
    if (recType == kRecFileHeader || recType == kRecRouteHeader || recType == kRecRouteHeaderAlt) {
      KeepRouteRecord(hif, recType);
      continue;
    }
    if (recType != kRecOrphan) continue;
    values.Read(hif.DB());
    std::string line;
    if (mapType == kMapFixed) line = AssembleFixed(values);
    if (mapType == kMapDelimited) line = AssembleDelimited(values);
    WriteOutputLine(std::move(line));
  }
  Output->Commit();
  Output.reset();
  return true;
}

}  // namespace hifx
