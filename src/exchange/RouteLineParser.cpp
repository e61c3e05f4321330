#include "exchange/RouteLineParser.h"

#include "base/Failure.h"
#include "base/Numbers.h"
#include "base/Text.h"
#include "exchange/ExchangeText.h"

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

RouteLineParser::RouteLineParser(const clsExchMap& map, const clsPrompts& prompts) : map_(map), prompts_(prompts) {
  line_.Plan(map);
  const std::vector<MapField>& fields = map.Fields();
  for (size_t i = 0; i < fields.size(); ++i) {
    const MapField& field = fields[i];
    const bool checked = field.DataType == kTypeInteger || field.DataType == kTypeLong;
    bool walked = checked || line_.Is(i, MeterField::RouteNbr);
    switch (field.MapOption) {
      case kOptionDoNotMap:
      case kOptionConstant:
        break;
      case kOptionSource:
        walked = walked || line_.Is(i, MeterField::ReadType) || field.DataPosition < 1 || field.DataWidth < 0;
        break;
      case kOptionPrompt:
      case kOptionAutonumber:
        walked = true;
        break;
      default:
        // A field that repeats the text of the one before: the first pass
        // walks them all.
        firstPassPlanned_ = false;
        break;
    }
    if (walked) firstPassFields_.push_back(i);
  }
}

// Always inline, as is TakeFixedField: they run for every field of every
// line, and a call of them costs as much as their work.
[[gnu::always_inline]] inline void RouteLineParser::AddValue(size_t position, const MapField& field,
                                                             std::string_view raw, bool trimBothEnds, bool keep) {
  if (!keep && !line_.Is(position, MeterField::RouteNbr)) {
    // Nothing is kept, but a number that doesn't fit its field still fails
    // here as it would in the second pass. One too short to overflow isn't
    // read.
    if (field.DataType == kTypeInteger && !LeadingNumberIsShort(raw, 4)) ToInt16(NumericPrefix(raw));
    if (field.DataType == kTypeLong && !LeadingNumberIsShort(raw, 9)) ToInt32(NumericPrefix(raw));
    return;
  }
  switch (field.DataType) {
    case kTypeText:
      line_.Slot(position).SetText(trimBothEnds ? Trim(raw) : TrimRight(raw));
      break;
    case kTypeInteger: {
      const int16_t number = ToInt16(NumericPrefix(raw));
      line_.Slot(position).SetInteger(number);
      break;
    }
    case kTypeLong: {
      const int32_t number = ToInt32(NumericPrefix(raw));
      line_.Slot(position).SetLong(number);
      break;
    }
    case kTypeNumber:
      line_.Slot(position).SetDouble(NumericPrefix(raw));
      break;
    case kTypeDate:
    case kTypeTime:
      line_.Slot(position).SetText(TrimRight(raw));
      break;
    default:
      break;
  }
}

const RouteLine& RouteLineParser::Parse(const std::string& line, bool onlyRoute) {
  if (map_.MapType() == kMapFixed) return ParseFixed(line, onlyRoute);
  if (map_.MapType() == kMapDelimited) return ParseDelimited(line, onlyRoute);
  line_.Clear(0);
  return line_;
}

const RouteLine& RouteLineParser::ParseDelimited(const std::string& line, bool onlyRoute) {
  const std::string quote = map_.MapQuote();
  const std::string delimiter = map_.MapDelimiterChar();
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
  readType_.clear();
  const std::vector<MapField>& fields = map_.Fields();
  line_.Clear(fields.size());
  std::string raw;
  for (size_t i = 0; i < fields.size(); ++i) {
    const MapField& field = fields[i];
    bool found = false;
    switch (field.MapOption) {
      case kOptionDoNotMap:
        raw.clear();
        break;
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
      case kOptionConstant:
        raw = field.MapConstant;
        break;
      case kOptionPrompt:
        raw = prompts_.Value(field.FieldName);
        break;
      case kOptionAutonumber:
        autoNumber_ = ToInt16(autoNumber_ + 1.0);
        raw = std::to_string(autoNumber_);
        break;
      default:
        break;
    }
    if (found && line_.Is(i, MeterField::ReadType)) readType_ = UpperCase(raw);
    AddValue(i, field, raw, false, !onlyRoute);
  }
  return line_;
}

[[gnu::always_inline]] inline void RouteLineParser::TakeFixedField(size_t position, const std::string& line,
                                                                   std::string_view& raw, bool onlyRoute) {
  const MapField& field = map_.Fields()[position];
  switch (field.MapOption) {
    case kOptionDoNotMap:
      raw = {};
      break;
    case kOptionSource: {
      if (field.DataPosition < 1 || field.DataWidth < 0) throw Failure(fail::kInvalidCall);
      const size_t start = static_cast<size_t>(field.DataPosition - 1);
      raw = start < line.size() ? std::string_view(line).substr(start, static_cast<size_t>(field.DataWidth))
                                : std::string_view();
      if (line_.Is(position, MeterField::ReadType)) readType_ = UpperCase(raw);
      break;
    }
    case kOptionConstant:
      raw = field.MapConstant;
      break;
    case kOptionPrompt:
      promptedText_ = prompts_.Value(field.FieldName);
      raw = promptedText_;
      break;
    case kOptionAutonumber:
      autoNumber_ = ToInt16(autoNumber_ + 1.0);
      numberText_ = std::to_string(autoNumber_);
      raw = numberText_;
      break;
    default:
      break;
  }
  AddValue(position, field, raw, true, !onlyRoute);
}

const RouteLine& RouteLineParser::ParseFixed(const std::string& line, bool onlyRoute) {
  readType_.clear();
  line_.Clear(map_.Fields().size());
  // The raw text of a field stays for the next one, which may repeat it.
  std::string_view raw;
  if (onlyRoute && firstPassPlanned_) {
    for (const size_t position : firstPassFields_) TakeFixedField(position, line, raw, true);
  } else {
    for (size_t position = 0; position < map_.Fields().size(); ++position) {
      TakeFixedField(position, line, raw, onlyRoute);
    }
  }
  return line_;
}

}  // namespace hifx
