#include "reports/clsReport.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <string_view>

#include "base/DateText.h"
#include "base/Numbers.h"
#include "delivery/UnitInstall.h"
#include "exchange/ExchangeText.h"
#include "hif/ReadingOutcome.h"

namespace hifx {

// The fields of a record that the report reads.
enum ReportField : size_t {
  fRecType,
  fRouteNbr,
  fStatus,
  fDigits,
  fDecimals,
  fReadType,
  fCurReading,
  fReadingDate,
  fReadingTime,
  fMeterTagNbr,
  fTamperCount,
  fPrvReading,
  fMinReading,
  fMaxReading,
  fLstReadingDate,
  fServiceUniqueID,
  fMeterType,
  fMeterSerialNbr,
  fBillingName,
  fServiceAddress,
  fResponseText,
  fResponseCode,
  fInitials,
  kReportFields
};

constexpr std::array<std::string_view, kReportFields> kReportFieldNames = {
    "RecType",
    "RouteNbr",
    "Status",
    "Digits",
    "Decimals",
    "ReadType",
    "CurReading",
    "ReadingDate",
    "ReadingTime",
    "MeterTagNbr",
    "TamperCount",
    "PrvReading",
    "MinReading",
    "MaxReading",
    "LstReadingDate",
    "ServiceUniqueID",
    "MeterType",
    "MeterSerialNbr",
    "BillingName",
    "ServiceAddress",
    "ResponseText",
    "ResponseCode",
    "Initials"};

// One record as the report reads it. The fields' places in the file's
// schema are found once a run; a field the schema lacks reads null.
struct ReportRow {
  std::array<int16_t, kReportFields> index{};
  std::array<Value, kReportFields> value;

  void Resolve(clsPalmDB& db) {
    for (size_t f = 0; f < kReportFields; ++f) index[f] = db.FindItem(kReportFieldNames[f]);
  }
  void Read(clsPalmDB& db) {
    for (size_t f = 0; f < kReportFields; ++f) value[f] = db.Item(static_cast<int32_t>(index[f]));
  }
  bool Has(ReportField f) const { return index[f] != 0; }
  const Value& operator[](ReportField f) const { return value[f]; }
  Value& operator[](ReportField f) { return value[f]; }
};

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

const std::string kBreak(kRptLineBreak);

int32_t Number(const Value& value) { return NumberOf(value); }

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
std::string NonZero(const Value& value) { return Number(value) != 0 ? TextOf(value) : std::string(); }

std::string WithResponse(std::string text, const std::string& response) {
  if (!response.empty()) text += kBreak + response;
  return text;
}

// The numbers of a meter row that its cells and its exception test read.
struct RowNumbers {
  int32_t status = 0;
  int32_t digits = 0;
  int32_t readType = 0;
  int32_t current = 0;
  int32_t date = 0;
};

RowNumbers NumbersOf(const ReportRow& values) {
  return {Number(values[fStatus]), Number(values[fDigits]), Number(values[fReadType]),
          Number(values[fCurReading]), Number(values[fReadingDate])};
}

// The Reading cell: "--" unread, else the reading on as many dials as the
// meter has, with "*" behind a keyed one.
std::string ReadingText(const ReportRow& values, const RowNumbers& row) {
  std::string reading;
  if (row.status == 0) {
    reading = "--";
  } else if (row.digits > 0) {
    const std::string zeros = FormatZeros(row.current, 8);
    reading = zeros.substr(zeros.size() - std::min<size_t>(static_cast<size_t>(row.digits), zeros.size()));
  } else {
    reading = TextOf(values[fCurReading]);
  }
  if (row.readType == 2 && row.status > 0) reading += "*";
  return reading;
}

// The Date/Time cell: yyyy/mm/dd over hh:nn:ss, either empty when not set.
std::string DateTimeText(const ReportRow& values, const RowNumbers& row) {
  const int32_t time = Number(values[fReadingTime]);
  std::string dateTime;
  if (row.date > 0) {
    const std::string d = std::to_string(row.date);
    dateTime = Mid(d, 1, 4) + "/" + Mid(d, 5, 2) + "/" + Mid(d, 7, 2);
  }
  dateTime += kBreak;
  if (time > 0) {
    const std::string t = FormatZeros(time, 6);
    dateTime += Mid(t, 1, 2) + ":" + Mid(t, 3, 2) + ":" + Mid(t, 5, 2);
  }
  return dateTime;
}

// The Account/Meter cell: the account with its runs of blanks made one, over
// the meter type letter and the serial number.
std::string AccountMeterText(const ReportRow& values) {
  std::string service = TextOf(values[fServiceUniqueID]);
  for (const char* run : {"     ", "    ", "   ", "  "}) ReplaceAll(service, run, " ");
  const std::string letter = MeterLetter(values[fMeterType]);
  return service + kBreak + letter + " " + TextOf(values[fMeterSerialNbr]);
}

// The cells of a meter row, the exception apart.
void FillMeterCells(RptElements& detail, const ReportRow& values, const RowNumbers& row) {
  detail[kTransponder].Value = values[fMeterTagNbr];
  detail[kTamper].Value = values[fTamperCount];
  detail[kReading].Value = Value(ReadingText(values, row));
  detail[kDateTime].Value = Value(DateTimeText(values, row));
  detail[kPrevious].Value = Value(NonZero(values[fPrvReading]));
  detail[kMin].Value = Value(NonZero(values[fMinReading]));
  detail[kMax].Value = Value(NonZero(values[fMaxReading]));
  detail[kAccountMeter].Value = Value(AccountMeterText(values));
  detail[kBillingAddress].Value =
      Value(TextOf(values[fBillingName]) + kBreak + TextOf(values[fServiceAddress]));
}

// A row's exception text and the report types it prints in.
struct RowException {
  std::string text;
  int32_t mask = 0;
};

// The first test that matches gives the words and the mask; a tamper count
// adds "TAMPER" whatever the words.
RowException ExceptionOf(const ReportRow& values, const RowNumbers& row) {
  const std::string response = TextOf(values[fResponseText]);
  constexpr int32_t kBoth = kReportException | kReportReading;
  RowException exception;
  switch (OutcomeOf({row.status, row.readType, row.current, row.date, Number(values[fMinReading]),
                     Number(values[fMaxReading]), Number(values[fPrvReading]), Number(values[fResponseCode])})) {
    case ReadingOutcome::Missed: exception = {WithResponse("Missed", response), kReportMissed}; break;
    case ReadingOutcome::Skipped: exception = {WithResponse("Skipped", response), kReportException}; break;
    case ReadingOutcome::Low: exception = {WithResponse("Low Reading", response), kBoth}; break;
    case ReadingOutcome::High: exception = {WithResponse("High Reading", response), kBoth}; break;
    case ReadingOutcome::Rollover: exception = {WithResponse("Rollover", response), kBoth}; break;
    case ReadingOutcome::ManuallyRead: exception = {WithResponse("Manually Read", response), kBoth}; break;
    case ReadingOutcome::Read:
      exception = {response, kReportReading | (response.empty() ? 0 : kReportException)};
      break;
  }
  if (Number(values[fTamperCount]) != 0) exception.text += (exception.text.empty() ? "" : kBreak) + "TAMPER";
  return exception;
}

// An orphan has no meter of the route: its meter cells go.
void FillOrphanCells(RptElements& detail) {
  for (const Column c : {kPrevious, kMin, kMax, kAccountMeter}) detail[c].Value = Value(std::string());
  detail[kBillingAddress].Value = Value("**Orphan Transponder **");
}

// An orphan's limits hold the tags heard nearest to it: "Nearby:" and those
// that are set, or nothing.
std::string NearbyText(const ReportRow& values) {
  std::string nearby;
  for (const ReportField field : {fPrvReading, fMaxReading, fMinReading, fLstReadingDate}) {
    if (Number(values[field]) == 0) continue;
    if (!nearby.empty()) nearby += " ";
    nearby += TextOf(values[field]);
  }
  return nearby.empty() ? nearby : "Nearby:" + nearby;
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
    : shell_(shell), clock_(clock), settings_(settings), printers_(printers), engine_(shell, clock, printers),
      row_(std::make_unique<ReportRow>()) {
  // Landscape letter paper.
  engine_.PageSetup(11.0f, 8.5f, 0.25f, 0.5f, 0.2f, 0.75f, 7.25f);
  engine_.SetPrintEvent([this](int16_t code, int16_t level, float& height) { p_PrintEvent(code, level, height); });
}

clsReport::~clsReport() = default;

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
  bool cancelled = true;
  if (!Preview) {
    cancelled = engine_.PrintReport(0, 0, tray_);
  } else if (makePreview_) {
    const std::unique_ptr<IRptPreview> window = makePreview_();
    cancelled = engine_.PreviewReport(*window, tray_);
  }
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
      row_->Resolve(hif_->DB());
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
  ReportRow& values = *row_;
  values.Read(hif_->DB());
  if (recType == kRecFileHeader) {
    TakeUnitRecord(values);
    height = 0;
    return;
  }
  if (recType == kRecRouteHeader || recType == kRecRouteHeaderAlt) {
    TakeRouteRecord(values);
    height = 0;
    return;
  }

  if (unitHeaderDue_) PrintUnitHeader(values, height);
  if (recType == kRecMeter && values.Has(fRouteNbr)) {
    const auto it = initials_.find(Number(values[fRouteNbr]));
    values[fRouteNbr] = Value(it == initials_.end() ? std::string() : it->second);
  }
  ScaleReading(values);
  const RowNumbers row = NumbersOf(values);
  FillMeterCells(detail_, values, row);
  RowException exception = ExceptionOf(values, row);
  if (recType == kRecOrphan) {
    FillOrphanCells(detail_);
    exception = {NearbyText(values), kReportOrphan};
  }
  ReplaceAll(exception.text, "; ", kBreak);
  ReplaceAll(exception.text, ";", kBreak);
  detail_[kException].Value = Value(exception.text);

  height = (reportType_ & exception.mask) != 0 ? engine_.PrintElements(detail_, false) + lineHeight_ / 2 : 0.0f;
}

void clsReport::TakeUnitRecord(const ReportRow& values) {
  // Here RouteNbr counts the routes.
  routeCount_ = Number(values[fRouteNbr]);
  initials_.clear();
  unitHeaderDue_ = true;
  unitHeader_[kUnitIdCell].Value = Value(TextOf(values[fResponseText]));
}

void clsReport::TakeRouteRecord(const ReportRow& values) {
  const int32_t route = Number(values[fRouteNbr]);
  if (route >= 0 && route <= routeCount_) initials_[route] = TextOf(values[fInitials]);
}

void clsReport::PrintUnitHeader(const ReportRow& values, float& height) {
  unitHeaderDue_ = false;
  unitHeader_[kReaderCell].Value = Value(TextOf(values[fInitials]));
  // The engine moves down by the event's height, so the header's height goes
  // there before the row's own.
  height = engine_.PrintElements(unitHeader_, false) + lineHeight_ / 2;
  engine_.AddSectionHeight(height);
}

void clsReport::ScaleReading(ReportRow& values) {
  const int32_t decimals = Number(values[fDecimals]);
  if (decimals <= 0 || !values.Has(fCurReading)) return;
  const Value whole = Value::Long(WholeReading(Number(values[fCurReading]), decimals));
  hif_->SetItem("CurReading", whole);
  values[fCurReading] = whole;
}

}  // namespace hifx
