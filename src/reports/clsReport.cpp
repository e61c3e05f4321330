#include "reports/clsReport.h"

#include <algorithm>
#include <cmath>

#include "base/DateText.h"
#include "base/Numbers.h"
#include "delivery/UnitInstall.h"
#include "exchange/ExchangeText.h"

namespace hifx {
namespace {

// Detail cells, and the column titles of the unit header behind its four
// label and value cells, in this order.
enum Column : size_t {
  kTransponder,
  kTamper,
  kReading,
  kPrevious,
  kMin,
  kMax,
  kDateTime,
  kAccountMeter,
  kBillingAddress,
  kException,
  kColumns
};
constexpr float kColumnX[kColumns] = {0.0f, 1.0f, 1.5f, 2.2f, 2.9f, 3.6f, 4.7f, 5.6f, 7.1f, 9.4f};
constexpr const char* kColumnTitle[kColumns] = {"Transponder", "Tamper", "Reading", "Previous",
                                                "Min",         "Max",    "Date/Time", "Account/Meter",
                                                "Billing/Address", "Exception"};
constexpr size_t kUnitIdCell = 2;
constexpr size_t kReaderCell = 3;
constexpr size_t kFirstTitle = 4;

const std::string kBreak(kRptLineBreak);

// A field of the record; a field its schema lacks is null.
Value Field(const KeyedCollection<Value>& values, std::string_view name) {
  return values.Contains(name) ? values.Item(name) : Value::Null();
}

int32_t Number(const KeyedCollection<Value>& values, std::string_view name) {
  return NumberOf(Field(values, name));
}

// Characters start to start + length - 1 of the text, counted from 1.
std::string Mid(const std::string& text, size_t start, size_t length) {
  return start > text.size() ? std::string() : text.substr(start - 1, length);
}

std::string MeterLetter(const Value& meterType) {
  switch (NumberOf(meterType)) {
    case 1: return "W";
    case 2: return "G";
    case 3: return "E";
    default: return TextOf(meterType);
  }
}

// Shown only when not 0.
std::string NonZero(const KeyedCollection<Value>& values, std::string_view name) {
  return Number(values, name) != 0 ? TextOf(Field(values, name)) : std::string();
}

std::string WithResponse(std::string text, const std::string& response) {
  if (!response.empty()) text += kBreak + response;
  return text;
}

}  // namespace

std::string ReportTitle(int32_t reportType) {
  switch (reportType) {
    case kReportException: return "Exception Report";
    case kReportMissed: return "Missed Report";
    case kReportOrphan: return "Orphan Report";
    default: return "Reading Report";
  }
}

clsReport::clsReport(IShell& shell, const IClock& clock, IRptPrinters& printers, IUserSettings& settings)
    : shell_(shell), clock_(clock), settings_(settings), printers_(printers), engine_(shell, clock, printers) {
  // Landscape letter paper.
  engine_.PageSetup(11.0f, 8.5f, 0.25f, 0.5f, 0.2f, 0.75f, 7.25f);
  engine_.SetPrintEvent([this](int16_t code, int16_t level, float& height) { p_PrintEvent(code, level, height); });
}

void clsReport::SetTray(std::string_view tray) { tray_ = Value(std::string(tray)).ToInt16(); }

bool clsReport::Begin(bool Preview, const std::filesystem::path& HIFPath, int32_t ReportType,
                      const std::string& Title) {
  reportType_ = ReportType;
  engine_.OutputDevice = RptSystemPrinter{};
  printers_.SetOrientation(engine_.PageLength() < engine_.PageWidth ? 2 : 1);
  engine_.BaseFontName = "Courier New";
  engine_.BaseFontSize = 8;
  engine_.Company.clear();
  engine_.Title = Title.empty() ? ReportTitle(ReportType) : Title;
  engine_.SubTitle.clear();
  AdjustY = NumericPrefix(settings_.GetSetting(kProgramTitle, "Settings", "AdjustY", "0"));
  AdjustX = NumericPrefix(settings_.GetSetting(kProgramTitle, "Settings", "AdjustX", "0"));

  // The first record tells the schema version; the file is read again with
  // that schema.
  const int16_t version = ReadFileVersion(shell_, HIFPath);
  hif_ = std::make_unique<clsHIF>(shell_);
  if (version >= 0) hif_->SetVersion(version);
  if (version < 0 || hif_->OpenHIF(HIFPath)) {
    shell_.WriteLog("Error: Could not read HIF file");
    hif_.reset();
    return false;
  }
  // The preview window belongs to the desktop program.
  const bool cancelled = Preview ? true : engine_.PrintReport(0, 0, tray_);
  hif_.reset();
  return !cancelled;
}

void clsReport::BuildArrays() {
  const float h = lineHeight_;
  const float printWidth = engine_.PrintWidth();
  pageHeader_ = {MakeElement(0, 0, Value(std::string(kProgramTitle) + kBreak + "%d")),
                 MakeElement(printWidth / 2, 0, Value("%t" + kBreak + "%s"), kJustifyCenter),
                 MakeElement(printWidth - 0.5f, 0, Value("Page %p"), kJustifyRight)};

  unitHeader_ = {MakeElement(0, 0, Value("Unit ID:")), MakeElement(0, h, Value("Reader:")),
                 MakeElement(1.0f, 0, Value(), kJustifyLeft, kStyleItalic | kStyleBold),
                 MakeElement(1.0f, h, Value(), kJustifyLeft, kStyleItalic | kStyleBold)};
  for (size_t c = 0; c < kColumns; ++c) {
    // Only the first title says bold; the others keep it.
    unitHeader_.push_back(MakeElement(kColumnX[c], h + 0.4f, Value(kColumnTitle[c]), kJustifyLeft,
                                      c == kTransponder ? kStyleBold : 0));
  }

  detail_.clear();
  for (size_t c = 0; c < kColumns; ++c) {
    const float width = c == kBillingAddress ? 1.9f : c == kException ? 1.1f : 0.0f;
    detail_.push_back(MakeElement(kColumnX[c], 0, Value(), kJustifyLeft, 0, {}, 0, width));
  }

  const float bottom = engine_.PageLength() - engine_.MarginBottom();
  pageFooter_ = {MakeLine(engine_.MarginLeft, bottom, printWidth, 0),
                 MakeElement(engine_.MarginLeft, bottom, Value("Printed " + ShortDate(clock_.Now()))),
                 MakeElement(engine_.PageWidth / 2, bottom, Value("%c"), kJustifyCenter),
                 MakeElement(engine_.PageWidth - engine_.MarginRight, bottom, Value("Page %p"), kJustifyRight)};
}

void clsReport::p_PrintEvent(int16_t code, int16_t, float& height) {
  switch (code) {
    case 0:
      hif_->Rewind();
      lineHeight_ = engine_.LineHeight();
      BuildArrays();
      break;
    case 2:
      height = engine_.PrintElements(pageHeader_, false) + lineHeight_;
      unitHeaderDue_ = true;
      break;
    case 4: PrintRow(height); break;
    case 6: engine_.PrintElements(pageFooter_, true); break;
    case 8:
      pageHeader_.clear();
      pageFooter_.clear();
      unitHeader_.clear();
      detail_.clear();
      initials_.clear();
      break;
    default: break;
  }
}

void clsReport::PrintRow(float& height) {
  if (!hif_->ReadData()) {
    height = -1;
    return;
  }
  // Code and index records have a layout of their own: only their RecType
  // is read.
  const int32_t recType = NumberOf(hif_->Item("RecType"));
  if (recType != kRecFileHeader && recType != kRecRouteHeader && recType != kRecRouteHeaderAlt &&
      recType != kRecMeter && recType != kRecOrphan) {
    height = 0;
    return;
  }
  KeyedCollection<Value> values = hif_->GetValues();
  if (recType == kRecFileHeader) {
    // Here RouteNbr counts the routes.
    routeCount_ = Number(values, "RouteNbr");
    initials_.clear();
    unitHeaderDue_ = true;
    unitHeader_[kUnitIdCell].Value = Value(TextOf(Field(values, "ResponseText")));
    height = 0;
    return;
  }
  if (recType == kRecRouteHeader || recType == kRecRouteHeaderAlt) {
    const int32_t route = Number(values, "RouteNbr");
    if (route >= 0 && route <= routeCount_) initials_[route] = TextOf(Field(values, "Initials"));
    height = 0;
    return;
  }

  if (unitHeaderDue_) {
    unitHeaderDue_ = false;
    unitHeader_[kReaderCell].Value = Value(TextOf(Field(values, "Initials")));
    height = engine_.PrintElements(unitHeader_, false) + lineHeight_ / 2;
    engine_.AddSectionHeight(height);
  }
  if (recType == kRecMeter && values.Contains("RouteNbr")) {
    const auto it = initials_.find(Number(values, "RouteNbr"));
    values.Set("RouteNbr", Value(it == initials_.end() ? std::string() : it->second));
  }

  // A register with decimals reads in whole dial units, in the record too,
  // so the tests below see the same number.
  const int32_t decimals = Number(values, "Decimals");
  if (decimals > 0 && values.Contains("CurReading")) {
    const Value whole = Value::Long(static_cast<int32_t>(
        std::trunc(Number(values, "CurReading") / PowerOfTen(std::min(decimals, 9)))));
    hif_->SetItem("CurReading", whole);
    values.Set("CurReading", whole);
  }
  const int32_t status = Number(values, "Status");
  const int32_t digits = Number(values, "Digits");
  const int32_t readType = Number(values, "ReadType");
  const int32_t current = Number(values, "CurReading");
  std::string reading;
  if (status == 0) {
    reading = "--";
  } else if (digits > 0) {
    const std::string zeros = FormatZeros(current, 8);
    reading = zeros.substr(zeros.size() - std::min<size_t>(static_cast<size_t>(digits), zeros.size()));
  } else {
    reading = TextOf(Field(values, "CurReading"));
  }
  if (readType == 2 && status > 0) reading += "*";

  const int32_t date = Number(values, "ReadingDate");
  const int32_t time = Number(values, "ReadingTime");
  std::string dateTime;
  if (date > 0) {
    const std::string d = std::to_string(date);
    dateTime = Mid(d, 1, 4) + "/" + Mid(d, 5, 2) + "/" + Mid(d, 7, 2);
  }
  dateTime += kBreak;
  if (time > 0) {
    const std::string t = FormatZeros(time, 6);
    dateTime += Mid(t, 1, 2) + ":" + Mid(t, 3, 2) + ":" + Mid(t, 5, 2);
  }

  std::string service = TextOf(Field(values, "ServiceUniqueID"));
  for (const char* run : {"     ", "    ", "   ", "  "}) ReplaceAll(service, run, " ");
  const std::string letter = MeterLetter(Field(values, "MeterType"));

  detail_[kTransponder].Value = Field(values, "MeterTagNbr");
  detail_[kTamper].Value = Field(values, "TamperCount");
  detail_[kReading].Value = Value(reading);
  detail_[kDateTime].Value = Value(dateTime);
  detail_[kPrevious].Value = Value(NonZero(values, "PrvReading"));
  detail_[kMin].Value = Value(NonZero(values, "MinReading"));
  detail_[kMax].Value = Value(NonZero(values, "MaxReading"));
  detail_[kAccountMeter].Value = Value(service + kBreak + letter + " " + TextOf(Field(values, "MeterSerialNbr")));
  detail_[kBillingAddress].Value =
      Value(TextOf(Field(values, "BillingName")) + kBreak + TextOf(Field(values, "ServiceAddress")));

  const std::string response = TextOf(Field(values, "ResponseText"));
  const int32_t minimum = Number(values, "MinReading");
  const int32_t maximum = Number(values, "MaxReading");
  std::string exception;
  int32_t mask = 0;
  if (status == 0) {
    exception = WithResponse("Missed", response);
    mask = kReportMissed;
  } else if (readType == 4 || date == 0 || (readType == 2 && current == 0)) {
    exception = WithResponse("Skipped", response);
    mask = kReportException;
  } else if (minimum < maximum && (current < minimum || current > maximum)) {
    exception = WithResponse(current < minimum ? "Low Reading" : "High Reading", response);
    mask = kReportException | kReportReading;
  } else if (current < Number(values, "PrvReading")) {
    exception = WithResponse("Rollover", response);
    mask = kReportException | kReportReading;
  } else if (minimum > maximum && current > maximum && current < minimum) {
    // A range that wraps past the end of the dials: the words are swapped.
    exception = WithResponse(current < minimum ? "High Reading" : "Low Reading", response);
    mask = kReportException | kReportReading;
  } else if (readType == 2 && Number(values, "ResponseCode") != 0) {
    exception = WithResponse("Manually Read", response);
    mask = kReportException | kReportReading;
  } else {
    exception = response;
    mask = kReportReading | (response.empty() ? 0 : kReportException);
  }
  if (Number(values, "TamperCount") != 0) exception += (exception.empty() ? "" : kBreak) + "TAMPER";

  if (recType == kRecOrphan) {
    for (const Column c : {kPrevious, kMin, kMax, kAccountMeter}) detail_[c].Value = Value(std::string());
    detail_[kBillingAddress].Value = Value("**Orphan Transponder **");
    mask = kReportOrphan;
    // An orphan's limits hold the tags heard nearest to it.
    exception.clear();
    for (const char* nearby : {"PrvReading", "MaxReading", "MinReading", "LstReadingDate"}) {
      if (Number(values, nearby) == 0) continue;
      if (!exception.empty()) exception += " ";
      exception += TextOf(Field(values, nearby));
    }
    if (!exception.empty()) exception = "Nearby:" + exception;
  }
  ReplaceAll(exception, "; ", kBreak);
  ReplaceAll(exception, ";", kBreak);
  detail_[kException].Value = Value(exception);

  height = (reportType_ & mask) != 0 ? engine_.PrintElements(detail_, false) + lineHeight_ / 2 : 0.0f;
}

}  // namespace hifx
