// Checks of one parsed route line against the map and the meters seen so far.
#include "base/Failure.h"
#include "base/Numbers.h"
#include "base/Text.h"
#include "exchange/ExchangeText.h"
#include "exchange/clsExchange.h"

namespace hifx {
void clsExchange::Report(const std::string& message, int16_t& result, RouteFault fault) {
  if (check_ != nullptr) {
    // Every fault is kept, and the check goes on where the conversion would
    // have stopped.
    fault.message = message;
    check_->Fault(std::move(fault));
    if (MessageCount == 50) check_->Stop("more than 50 faults: the conversion stops at the 51st");
    if (MessageCount <= 50) ++MessageCount;
    result = 1;
    return;
  }
  // Fifty messages are shown; the fifty-first fault ends the conversion.
  if (MessageCount < 50) {
    Log(message);
    ++MessageCount;
    result = 1;
  } else if (MessageCount == 50) {
    Log("Remaining validation messages suppressed");
    Log("Fatal Error limit reached");
    ++MessageCount;
    result = 3;
  }
}

int16_t clsExchange::ValidateRoute(const RouteLine& values) {
  int16_t result = 0;
  const bool untagged = LastReadType == "M" || LastReadType == "P" || LastReadType == "S";
  const std::vector<MapField>& fields = ActiveMap->Fields();
  const auto line = [this] { return std::to_string(LineNumber); };
  for (const size_t i : validatedFields_) {
    const MapField& field = fields.at(i);
    const bool skipTag = untagged && values.Is(i, MeterField::MeterTagNbr);
    const Value& value = values.At(i);
    if (!skipTag && field.MaxValue > 0) {
      const double number = value.IsText() ? NumericPrefix(value.Text()) : value.ToDouble();
      if (number > field.MaxValue) {
        Report("Value of " + field.FieldName + "(" + TextOf(value) +
                   ") exceeds maximum permitted value in Line " + line(),
               result, {LineNumber, field.FieldName, TextOf(value), kFaultOverMaximum, {}});
      }
    }
    if (field.Required && !skipTag) {
      if (field.DataType == kTypeInteger || field.DataType == kTypeLong || field.DataType == kTypeNumber) {
        // A number's text reads back as the number itself.
        const double number = value.IsText() ? NumericPrefix(value.Text()) : value.ToDouble();
        if (number == 0) {
          Report(field.FieldName + " zero in Line " + line(), result,
                 {LineNumber, field.FieldName, TextOf(value), kFaultZero, {}});
        }
      } else if (value.IsText() ? Trim(value.Text()).empty() : Trim(TextOf(value)).empty()) {
        Report(field.FieldName + " empty in Line " + line(), result,
               {LineNumber, field.FieldName, TextOf(value), kFaultEmpty, {}});
      }
    }
  }
  if (untagged) {
    UntaggedMeters = ToInt16(UntaggedMeters + 1.0);
  } else if (std::string tag = TextOf(values[MeterField::MeterTagNbr]);
             !SeenTags.Insert(tag) &&
             ReportDuplicateTag(tag,
                                TextOf(values[MeterField::ServiceAddress]) + " " +
                                    TextOf(values[MeterField::BillingName]),
                                std::to_string(LineNumber))) {
    result = 3;
  }
  return result;
}

bool clsExchange::CheckDuplicateTag(const std::string& tag, const std::string& info, int32_t line) {
  return CheckDuplicateTag(tag, info, std::to_string(line));
}

bool clsExchange::CheckDuplicateTag(const std::string& tag, const std::string& info, std::string_view line) {
  return !SeenTags.Insert(tag) && ReportDuplicateTag(tag, info, line);
}

bool clsExchange::ReportDuplicateTag(const std::string& tag, const std::string& info, std::string_view line) {
  const std::string message = "Meter Tag Number of " + tag + " is duplicate in Line " + std::string(line);
  if (check_ != nullptr) {
    // The check lists every repeated tag; the conversion stops at the first.
    check_->Fault({static_cast<int32_t>(NumericPrefix(line)), "MeterTagNbr", tag, kFaultDuplicateTag,
                   message + " (" + info + ")"});
    check_->Stop("a duplicate tag: " + tag);
    return false;
  }
  Log(message);
  Log("   Info: " + info);
  return true;
}

}  // namespace hifx
