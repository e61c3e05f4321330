// MVRS reading files, made from the reading HIF alone: one customer, meter
// and reading line a meter, with route and file counts of its own making.
// What the handheld doesn't touch comes back out of the user fields that the
// route conversion packed.
#include <algorithm>
#include <cmath>
#include <functional>
#include <memory>

#include "base/DateText.h"
#include "base/Failure.h"
#include "base/Numbers.h"
#include "base/Prefetch.h"
#include "base/Text.h"
#include "exchange/ExchangeText.h"
#include "exchange/clsExchange.h"
#include "formats/mvrs/clsMVRSUpload.h"

namespace hifx {
namespace {

struct MVRSRouteTotals {
  std::string RouteNumber;
  int16_t MeterCount = 0;
  std::string Region, Zone, Office;
  double ScheduledReadDate = 0.0;
  int16_t NumberRemoteWandReads = 0;
  int16_t Meters = 0;  // customers, meters and readings alike
  int16_t Water = 0, Gas = 0, Electric = 0;
  int16_t Missed = 0, Radio = 0, Keyed = 0, Probe = 0, Skipped = 0;
};

struct MVRSReadCustomer {
  std::string Address1, Address2, Address3, Name, Name2;
  std::string Account, GroupCode, ExtraIndicator, SegmentCode, PassThru, CustomerInfo, UtilityID;

  // As a new customer is, keeping the texts' room.
  void Clear() {
    for (std::string* text : {&Address1, &Address2, &Address3, &Name, &Name2, &Account, &GroupCode, &ExtraIndicator,
                              &SegmentCode, &PassThru, &CustomerInfo, &UtilityID}) {
      text->clear();
    }
  }
};

struct MVRSReadMeter {
  std::string MeterNumber, MeterCategory;
  int32_t ReadSequence = 0, TagNumber = 0, NumberDials = 0, NumberDecimals = 0;
  int32_t CurReading = 0, PreviousReading = 0;
  double ReadDate = 0.0;
  int32_t ReadTimeNumber = 0;
  std::string ResponseCodeText, ResponseTextCopy;
  std::string GroupCode, SurveyCode1DisplayIndicator, SurveyCode2DisplayIndicator, BillCode, MeterStatus;
  std::string OpticalProbeID, MeterType, MeterLocation, LocationExtraMeter;
  int32_t ReadInstruction1 = 0, ReadInstruction2 = 0, SpecialMessageDisplayIndicator = 0;
  std::string TextPrompt, ReadDirection, CompareCode, ValidationCode;
  std::string MeterConstant, ConstantFlag, HHFPosition;
  int32_t GeographicArea = 0;
  std::string RFFrequency, RFTone, ERTType, DeviceID, WandProgram, SpecialMessage, NewReadMethod;
  std::string ReadMethod;  // never filled: no device line is written

  // As a new meter is. Built again where it stands: assigning a new meter
  // moves every text in, and that costs several times as much.
  void Clear() {
    std::destroy_at(this);
    std::construct_at(this);
  }
};

// Thrown when the person chooses Abort.
struct Aborted {};

// The elements of a user field as ExtractUser gives them, cut or padded to
// `count`, taken straight from the field's text into the first `count`
// parts, which keep their room.
void SplitElements(const Value& field, size_t count, std::vector<std::string>& parts) {
  if (parts.size() < count) parts.resize(count);
  for (size_t i = 0; i < count; ++i) parts[i].clear();
  if (!field.IsText()) {
    if (count > 0) parts[0] = TextOf(field);
    return;
  }
  const std::string& text = field.Text();
  size_t start = 0;
  for (size_t i = 0; i < count; ++i) {
    const size_t tilde = text.find('~', start);
    std::string& part = parts[i];
    part.assign(text, start, tilde == std::string::npos ? std::string::npos : tilde - start);
    std::replace(part.begin(), part.end(), '\x01', '\0');
    if (tilde == std::string::npos) break;
    start = tilde + 1;
  }
}

std::vector<std::string> Elements(const Value& field, size_t count) {
  std::vector<std::string> parts(count);
  SplitElements(field, count, parts);
  return parts;
}

// Twenty columns of the text from `from`, padded with blanks, over `piece`.
void TakeFixed20(std::string& piece, const std::string& text, size_t from) {
  piece.assign(text, std::min(from, text.size()), 20);
  piece.resize(20, ' ');
}

// The fields of the record being read, each into room kept from record to
// record. A text or the parts of one stand until the next read of a text.
class FieldReader {
 public:
  int32_t Number(clsHIF& hif, MeterField field) {
    hif.ReadItem(field, number_);
    return NumberOf(number_);
  }
  // As TextOf gives it.
  const std::string& Text(clsHIF& hif, MeterField field) {
    hif.ReadItem(field, text_);
    if (text_.IsText()) return text_.Text();
    shown_ = TextOf(text_);
    return shown_;
  }
  // The first `count` elements of a user field.
  const std::vector<std::string>& Elements(clsHIF& hif, MeterField field, size_t count) {
    hif.ReadItem(field, text_);
    SplitElements(text_, count, parts_);
    return parts_;
  }

 private:
  Value number_;
  Value text_;
  std::string shown_;
  std::vector<std::string> parts_;
};

int16_t Add16(int16_t total, int32_t more) { return ToInt16(static_cast<double>(total) + more); }

int32_t Val(const std::string& text) { return ToInt32(NumericPrefix(text)); }

const char* ReadMethodOf(int32_t readType) {
  switch (readType) {
    case 0:
    case 4: return "N";
    case 1: return "R";
    case 2: return "K";
    case 3: return "W";
    default: return nullptr;
  }
}

// One meter record of pass 2 as its lines take it.
struct MVRSReadRecord {
  MVRSReadCustomer customer;
  MVRSReadMeter meter;
  int32_t status = 0;
  int32_t readType = 0;
  int32_t responseCode = 0;

  // As a new record is, keeping the customer's room.
  void Clear() {
    customer.Clear();
    meter.Clear();
    status = readType = responseCode = 0;
  }
};

// What a conversion keeps from step to step.
struct MVRSReadingRun {
  MVRSReadingRun(clsExchange& owner, int16_t fileVersion)
      : exchange(owner), shell(owner.Environment().shell), version(fileVersion), upload(&shell) {}

  // Every step runs under one frame: Abort ends the conversion, Retry runs
  // the failed step again, Ignore goes on with the next one.
  template <typename Action>
  bool Step(Action&& action) {
    for (;;) {
      std::string description;
      try {
        action();
        return true;
      } catch (const Failure& failure) {
        description = failure.Description();
      } catch (const std::exception& failure) {
        description = failure.what();
      }
      switch (shell.MsgBox(description, "Error", MsgButtons::AbortRetryIgnore, MsgIcon::Critical)) {
        case MsgAnswer::Retry: continue;
        case MsgAnswer::Ignore: return false;
        default: throw Aborted{};
      }
    }
  }

  MVRSRouteTotals& Entry(int32_t route) {
    if (route < 1 || static_cast<size_t>(route) > table.size()) throw Failure(fail::kSubscript);
    return table[static_cast<size_t>(route - 1)];
  }

  // The next record; a record that can't be read ends the pass when the
  // failure is ignored.
  bool Next(bool& more) {
    if (!Step([&] { more = exchange.ActiveHIF->ReadData(); })) more = false;
    return more;
  }

  clsExchange& exchange;
  IShell& shell;
  const int16_t version;
  clsMVRSUpload upload;
  std::vector<MVRSRouteTotals> table;  // from 1
  int16_t routeTotal = 0, customerTotal = 0, meterTotal = 0, readTotal = 0;
  int32_t current = 0;  // the route whose lines are being written; 0 before the first
  // The meter record of pass 2 being written, and its fields as read.
  MVRSReadRecord record;
  FieldReader fields;
};

// The reading HIF opened from its start, as the exchange's ActiveHIF.
void OpenReadingFile(MVRSReadingRun& run) {
  clsExchange& exchange = run.exchange;
  exchange.ActiveHIF = std::make_unique<clsHIF>(run.shell);
  exchange.ActiveHIF->SetVersion(run.version);
  if (exchange.ActiveHIF->OpenHIF(Trim(exchange.ReadingSource))) throw Failure(fail::kFileNotFound);
}

// Pass 1, the file header: a route table of as many empty entries as it
// counts routes.
void SizeRouteTable(MVRSReadingRun& run, clsHIF& hif) {
  const int32_t routes = hif.NumberItem(MeterField::RouteNbr);
  if (routes > 32767) {
    throw Failure(fail::kOutOfMemory, "The file header of " + std::string(Trim(run.exchange.ReadingSource)) + " counts " +
                                          std::to_string(routes) + " routes, more than a handheld file holds");
  }
  run.table.assign(static_cast<size_t>(std::max(routes, 0)), MVRSRouteTotals());
}

// Pass 1, a route record: its entry takes the route's values.
void TakeRouteRecord(MVRSReadingRun& run, clsHIF& hif) {
  run.routeTotal = Add16(run.routeTotal, 1);
  MVRSRouteTotals& route = run.Entry(hif.NumberItem(MeterField::RouteNbr));
  route.MeterCount = ToInt16(hif.NumberItem(MeterField::PrvReading));
  route.RouteNumber = TextOf(hif.Item(MeterField::Initials));
  const std::vector<std::string> user = Elements(hif.Item(MeterField::User1), 5);
  route.Region = user[0];
  route.Zone = user[1];
  route.Office = user[2];
  double date = 0.0;
  if (ReadDateText(user[3], date)) route.ScheduledReadDate = date;
  route.NumberRemoteWandReads = ToInt16(NumericPrefix(user[4]));
}

// Pass 1, a meter record: one customer, meter and reading more for the file,
// and the meter counted in its route's entry.
void CountMeter(MVRSReadingRun& run, clsHIF& hif) {
  run.meterTotal = Add16(run.meterTotal, 1);
  run.readTotal = Add16(run.readTotal, 1);
  run.customerTotal = Add16(run.customerTotal, 1);
  MVRSRouteTotals& route = run.Entry(hif.NumberItem(MeterField::RouteNbr));
  route.Meters = Add16(route.Meters, 1);
  const int32_t type = hif.NumberItem(MeterField::MeterType);
  if (type == 1) route.Water = Add16(route.Water, 1);
  if (type == 2) route.Gas = Add16(route.Gas, 1);
  if (type == 3) route.Electric = Add16(route.Electric, 1);
  const int32_t status = hif.NumberItem(MeterField::Status);
  const int32_t readType = hif.NumberItem(MeterField::ReadType);
  if (status == 0 || (status == 1 && readType == 0)) route.Missed = Add16(route.Missed, 1);
  if (status == 1 && readType == 1) route.Radio = Add16(route.Radio, 1);
  if (status == 1 && readType == 2) route.Keyed = Add16(route.Keyed, 1);
  if (status == 1 && readType == 3) route.Probe = Add16(route.Probe, 1);
  if (status == 1 && readType == 4) route.Skipped = Add16(route.Skipped, 1);
}

void CountRecord(MVRSReadingRun& run, clsHIF& hif) {
  const int32_t recType = hif.NumberItem(MeterField::RecType);
  if (recType == kRecFileHeader) {
    SizeRouteTable(run, hif);
  } else if (recType == kRecRouteHeader || recType == kRecRouteHeaderAlt) {
    TakeRouteRecord(run, hif);
  } else if (recType == kRecMeter) {
    CountMeter(run, hif);
  }
}

// Pass 1: the route table and the file's totals.
void CountRoutes(MVRSReadingRun& run) {
  run.Step([&] { OpenReadingFile(run); });
  bool more = true;
  while (run.exchange.ActiveHIF && run.Next(more)) {
    clsHIF& hif = *run.exchange.ActiveHIF;
    run.shell.SetProgressButton(255, hif.Position255() / 2);
    run.Step([&] { CountRecord(run, hif); });
  }
}

// "FHD" or "FTR": the two carry the same values.
void WriteFileLine(MVRSReadingRun& run, const char* kind) {
  clsRecType& line = *run.upload.SetupRecord(kind);
  line.SetText(Key<"NewServiceIndicator">(), "N");
  line.SetText(Key<"ChangeMeterIndicator">(), "N");
  line.SetText(Key<"ExtendedIndicator">(), "N");
  line.SetLong(Key<"NumberRoutes">(), run.routeTotal);
  line.SetLong(Key<"NumberCustomerRecords">(), run.customerTotal);
  line.SetLong(Key<"NumberMeterRecords">(), run.meterTotal);
  line.SetLong(Key<"NumberReadRecords">(), run.readTotal);
  line.SetLong(Key<"FileTrailerLineNumber">(), 0);
  run.upload.WriteRecord(line);
}

// "RHD" or "RTR" of the route at `index`: the two carry the same values.
void WriteRouteLine(MVRSReadingRun& run, const char* kind, int32_t index) {
  const MVRSRouteTotals& route = run.Entry(index);
  clsRecType& line = *run.upload.SetupRecord(kind);
  line.SetText(Key<"RouteNumber">(), route.RouteNumber);
  line.SetText(Key<"Region">(), route.Region);
  line.SetText(Key<"Zone">(), route.Zone);
  line.SetText(Key<"Office">(), route.Office);
  line.SetValue(Key<"ScheduledReadDate">(), Value::Date(route.ScheduledReadDate));
  line.SetLong(Key<"NumberRemoteWandReads">(), route.NumberRemoteWandReads);
  for (const FieldKey* key :
       {&Key<"NumberCustomerRecords">(), &Key<"TotalCustomerRecords">(), &Key<"NumberMeterRecords">(),
        &Key<"TotalMeterRecords">(), &Key<"NumberReadingRecords">(), &Key<"TotalNumberReadingRecords">()}) {
    line.SetLong(*key, route.Meters);
  }
  line.SetLong(Key<"NumberWaterMeters">(), route.Water);
  line.SetLong(Key<"NumberGasMeters">(), route.Gas);
  line.SetLong(Key<"NumberElectricMeters">(), route.Electric);
  line.SetLong(Key<"NumberMissedReadings">(), route.Missed);
  line.SetLong(Key<"TotalNumberOffsiteRadioReadings">(), route.Radio);
  line.SetLong(Key<"TotalNumberKeyedReadings">(), route.Keyed);
  line.SetLong(Key<"TotalNumberOpticalProbeReadings">(), route.Probe);
  line.SetLong(Key<"NumberSkippedReadings">(), route.Skipped);
  for (const FieldKey* key : {&Key<"TotalNumberKeys">(), &Key<"NumberLocationMeters">(), &Key<"NumberExtraMeters">(),
                              &Key<"TotalNumberDemandMeters">()}) {
    line.SetLong(*key, 0);
  }
  for (const FieldKey* key :
       {&Key<"SurveyIndicator">(), &Key<"RouteMessageIndicator">(), &Key<"ResequenceFlag">(),
        &Key<"MeterReaderStatisticsRecord">(), &Key<"ForceCompleteFlag">(), &Key<"TypeResequenceFlag">()}) {
    line.SetText(*key, "N");
  }
  line.SetText(Key<"OriginalSequenceFlag">(), "Y");
  line.SetLong(Key<"TimeUsedtoReadRoute">(), 0);
  line.SetText(Key<"ForceCompleteCode">(), "00");
  line.SetText(Key<"TypeRoute">(), " ");
  run.upload.WriteRecord(line);
}

// A meter of another route closes the current route with "RTR" and opens
// its own with "RHD".
void ChangeRouteTo(MVRSReadingRun& run, int32_t routeNbr) {
  if (routeNbr == run.current) return;
  if (run.current != 0) run.Step([&] { WriteRouteLine(run, "RTR", run.current); });
  run.Step([&] { WriteRouteLine(run, "RHD", routeNbr); });
  run.current = routeNbr;
}

void ChangeRoute(MVRSReadingRun& run, clsHIF& hif) {
  int32_t routeNbr = run.current;
  run.Step([&] { routeNbr = hif.NumberItem(MeterField::RouteNbr); });
  ChangeRouteTo(run, routeNbr);
}

// The working customer, from the meter record.
void FillCustomer(MVRSReadCustomer& customer, FieldReader& fields, clsHIF& hif) {
  customer.Clear();
  const std::string& address = fields.Text(hif, MeterField::ServiceAddress);
  TakeFixed20(customer.Address1, address, 0);
  TakeFixed20(customer.Address2, address, 20);
  TakeFixed20(customer.Address3, address, 40);
  const std::string& name = fields.Text(hif, MeterField::BillingName);
  TakeFixed20(customer.Name, name, 0);
  TakeFixed20(customer.Name2, name, 20);
  const std::vector<std::string>& user1 = fields.Elements(hif, MeterField::User1, 8);
  customer.Account = user1[1];  // over ServiceUniqueID
  customer.GroupCode = user1[2];
  customer.ExtraIndicator = user1[3];
  customer.SegmentCode = user1[4];
  customer.PassThru = user1[5];
  customer.CustomerInfo = user1[6];
}

// The working meter's codes that the route conversion packed in User2 to
// User5.
void FillMeterCodes(MVRSReadMeter& meter, FieldReader& fields, clsHIF& hif) {
  const std::vector<std::string>& user2 = fields.Elements(hif, MeterField::User2, 14);
  meter.GroupCode = user2[0];
  meter.SurveyCode1DisplayIndicator = user2[1];
  meter.SurveyCode2DisplayIndicator = user2[2];
  meter.BillCode = user2[3];
  meter.MeterStatus = user2[4];
  meter.OpticalProbeID = user2[5];
  meter.MeterType = user2[6] == "W" ? "00" : user2[6];
  meter.MeterLocation = user2[7];
  meter.ReadInstruction1 = Val(user2[8]);
  meter.ReadInstruction2 = Val(user2[9]);
  meter.SpecialMessageDisplayIndicator = Val(user2[10]);
  // One short of where the route conversion put it: the survey text's
  // first letter lands here.
  meter.LocationExtraMeter = user2[11];
  const std::vector<std::string>& user3 = fields.Elements(hif, MeterField::User3, 9);
  meter.TextPrompt = user3[0];
  meter.ReadDirection = user3[1];
  meter.CompareCode = user3[2];
  meter.ValidationCode = user3[3];
  meter.MeterConstant = user3[5];
  meter.ConstantFlag = user3[6];
  meter.HHFPosition = user3[7];
  const std::vector<std::string>& user4 = fields.Elements(hif, MeterField::User4, 6);
  meter.GeographicArea = Val(user4[0]);
  meter.RFFrequency = user4[1];
  meter.RFTone = user4[2];
  meter.ERTType = user4[3];
  meter.DeviceID = user4[4];
  meter.WandProgram = user4[5];
  meter.SpecialMessage = fields.Elements(hif, MeterField::User5, 9)[0];
}

// The working meter, cleared with its record, from the plain fields, the
// reading the handheld added, and the user fields.
void FillMeter(MVRSReadRecord& record, FieldReader& fields, clsHIF& hif) {
  MVRSReadMeter& meter = record.meter;
  meter.MeterNumber = fields.Text(hif, MeterField::MeterSerialNbr);
  meter.ReadSequence = fields.Number(hif, MeterField::Sequence);
  meter.TagNumber = fields.Number(hif, MeterField::MeterTagNbr);
  static const char* const kCategories[] = {"W", "G", "E", "S", "I"};
  const int32_t type = fields.Number(hif, MeterField::MeterType);
  if (type >= 1 && type <= 5) meter.MeterCategory = kCategories[type - 1];
  meter.NumberDials = fields.Number(hif, MeterField::Digits);
  meter.NumberDecimals = fields.Number(hif, MeterField::Decimals);
  meter.CurReading = fields.Number(hif, MeterField::CurReading);
  meter.PreviousReading = fields.Number(hif, MeterField::PrvReading);
  record.status = fields.Number(hif, MeterField::Status);
  record.readType = fields.Number(hif, MeterField::ReadType);
  const std::string& readingDate = fields.Text(hif, MeterField::ReadingDate);
  if (NumericPrefix(readingDate) != 0 && record.status != 0) {
    const std::string date = readingDate.substr(std::min<size_t>(4, readingDate.size()), 2) + "/" +
                             readingDate.substr(std::min<size_t>(6, readingDate.size()), 2) + "/" +
                             readingDate.substr(0, 4);
    if (!ReadDateText(date, meter.ReadDate)) throw Failure(fail::kTypeMismatch);
    meter.ReadTimeNumber = fields.Number(hif, MeterField::ReadingTime);
  }
  record.responseCode = fields.Number(hif, MeterField::ResponseCode);
  meter.ResponseCodeText = fields.Text(hif, MeterField::ResponseCode);
  meter.ResponseTextCopy = fields.Text(hif, MeterField::ResponseText);
  FillMeterCodes(meter, fields, hif);
  const char* method = ReadMethodOf(record.readType);
  meter.NewReadMethod = record.status == 0 ? "N" : (method != nullptr ? method : "");
}

// "CUS", the meter's customer.
void WriteCustomerLine(MVRSReadingRun& run, const MVRSReadCustomer& customer) {
  clsRecType& line = *run.upload.SetupRecord("CUS");
  line.SetText(Key<"RouteNumber">(), run.Entry(run.current).RouteNumber);
  line.SetLong(Key<"NumberMeters">(), 1);
  line.SetText(Key<"Account">(), customer.Account);
  line.SetText(Key<"Name">(), customer.Name);
  line.SetText(Key<"Address1">(), customer.Address1);
  line.SetText(Key<"Address2">(), customer.Address2);
  line.SetText(Key<"GroupCode">(), customer.GroupCode);
  line.SetText(Key<"ExtraIndicator">(), customer.ExtraIndicator);
  line.SetText(Key<"SegmentCode">(), customer.SegmentCode);
  line.SetText(Key<"UtilityID">(), customer.UtilityID);
  line.SetText(Key<"PassThru">(), customer.PassThru);
  line.SetText(Key<"CustomerInfo">(), customer.CustomerInfo);
  line.SetText(Key<"ExceptionCode">(), " ");
  line.SetText(Key<"Reserved">(), "00");
  run.upload.WriteRecord(line);
}

// "CSX", the customer's second name and third address line.
void WriteExtraCustomerLine(MVRSReadingRun& run, const MVRSReadCustomer& customer) {
  clsRecType& line = *run.upload.SetupRecord("CSX");
  line.SetText(Key<"RouteNumber">(), run.Entry(run.current).RouteNumber);
  line.SetText(Key<"Account">(), customer.Account);
  line.SetText(Key<"Name">(), customer.Name2);
  line.SetText(Key<"NewCustomerInfo">(), customer.CustomerInfo);
  line.SetText(Key<"Address3">(), customer.Address3);
  run.upload.WriteRecord(line);
}

// "00" for a location with a ".", otherwise its number with at least two
// digits.
std::string LocationCode(const std::string& location) {
  if (location.find('.') != std::string::npos) return "00";
  std::string code = std::to_string(Val(location));
  while (code.size() < 2) code.insert(0, "0");
  return code;
}

// "MTR".
void WriteMeterLine(MVRSReadingRun& run, const MVRSReadRecord& record, const std::string& meterNumber) {
  const MVRSReadMeter& meter = record.meter;
  clsRecType& line = *run.upload.SetupRecord("MTR");
  line.SetText(Key<"RouteNumber">(), run.Entry(run.current).RouteNumber);
  line.SetLong(Key<"NumberReadings">(), 1);
  line.SetText(Key<"GroupCode">(), meter.GroupCode);
  line.SetText(Key<"SurveyCode1DisplayIndicator">(), meter.SurveyCode1DisplayIndicator);
  line.SetText(Key<"SurveyCode2DisplayIndicator">(), meter.SurveyCode2DisplayIndicator);
  line.SetText(Key<"BillCode">(), meter.BillCode);
  line.SetText(Key<"MeterStatus">(), meter.MeterStatus);
  line.SetText(Key<"OpticalProbeID">(), meter.OpticalProbeID);
  line.SetText(Key<"MeterType">(), meter.MeterType);
  line.SetText(Key<"MeterNumber">(), meterNumber);
  line.SetLong(Key<"ReadSequence">(), meter.ReadSequence);
  line.SetLong(Key<"NewReadSequence">(), meter.ReadSequence);
  line.SetText(Key<"MeterLocation">(), LocationCode(meter.MeterLocation));
  line.SetLong(Key<"ReadInstruction1">(), meter.ReadInstruction1);
  line.SetLong(Key<"ReadInstruction2">(), meter.ReadInstruction2);
  line.SetLong(Key<"SpecialMessageDisplayIndicator">(), meter.SpecialMessageDisplayIndicator);
  line.SetText(Key<"SpecialMessageIndicator">(), Trim(meter.SpecialMessage).empty() ? "N" : "Y");
  line.SetValue(Key<"TroubleMessageIndicator">(),
                Value(record.responseCode > 0 || !meter.ResponseTextCopy.empty() ? "Y" : "N"));
  line.SetText(Key<"SurveyResponse1">(), " ");
  line.SetText(Key<"SurveyResponse2">(), " ");
  line.SetText(Key<"MeterChangeOutIndicator">(), "N");
  line.SetText(Key<"ChangeMeterRecordIndicator">(), "N");
  line.SetText(Key<"MeterCategory">(), meter.MeterCategory);
  line.SetText(Key<"LocationExtraMeter">(), meter.LocationExtraMeter);
  line.SetLong(Key<"TimeCode">(), 0);
  line.SetValue(Key<"OriginalAdditionalMeterInfo">(), line.GetValue("MeterNumber"));
  line.SetText(Key<"Reserved2">(), "0000000000");
  line.SetText(Key<"Reserved3">(), "00");
  line.SetText(Key<"Reserved4">(), "0000000000");
  for (const FieldKey* key : {&Key<"Reserved5">(), &Key<"Reserved6">(), &Key<"Reserved7">()}) line.SetText(*key, "0");
  run.upload.WriteRecord(line);
}

// "MTS", for a meter with a special message.
void WriteSpecialMessageLine(MVRSReadingRun& run, const MVRSReadMeter& meter, const std::string& meterNumber) {
  clsRecType& line = *run.upload.SetupRecord("MTS");
  line.SetText(Key<"RouteNumber">(), run.Entry(run.current).RouteNumber);
  line.SetText(Key<"MeterNumber">(), meterNumber);
  line.SetText(Key<"SpecialMessageText">(), std::string(Trim(meter.SpecialMessage)));
  run.upload.WriteRecord(line);
}

// The ReadCode of "RDG"; null leaves it unset.
const char* ReadCodeOf(int32_t status, int32_t readType, int32_t curReading) {
  if (status == 0) return readType == 4 || (readType == 2 && curReading == 0) ? "S" : " ";
  switch (readType) {
    case 0: return " ";
    case 1:
    case 3: return "N";
    case 2: return "O";
    case 4: return "S";
    default: return nullptr;
  }
}

// "RDG", set in this order; later values stand over earlier ones.
void WriteReadingLine(MVRSReadingRun& run, const MVRSReadRecord& record) {
  const MVRSReadMeter& meter = record.meter;
  clsRecType& line = *run.upload.SetupRecord("RDG");
  line.SetText(Key<"RouteNumber">(), run.Entry(run.current).RouteNumber);
  line.SetText(Key<"TextPrompt">(), meter.TextPrompt);
  line.SetText(Key<"ReadDirection">(), meter.ReadDirection);
  line.SetText(Key<"CompareCode">(), meter.CompareCode);
  line.SetText(Key<"ValidationCode">(), meter.ValidationCode);
  line.SetText(Key<"PromptCode">(), " ");
  line.SetLong(Key<"ChannelNumber">(), 0);
  const std::string reason = "00" + meter.ResponseCodeText;
  line.SetText(Key<"ReadReason">(), reason.substr(reason.size() - 2));
  if (const char* method = ReadMethodOf(record.readType)) line.SetValue(Key<"ReadMethod">(), Value(method));
  line.SetText(Key<"MeterConstant">(), meter.MeterConstant);
  line.SetText(Key<"ConstantFlag">(), meter.ConstantFlag);
  line.SetLong(Key<"Reading">(), meter.CurReading);
  line.SetLong(Key<"ReadOrder">(), 1);
  line.SetValue(Key<"ReadDate">(),
                Value(meter.ReadDate == 0.0 ? std::string("00000000") : FormatDateValue(meter.ReadDate, "mm/dd/yyyy")));
  line.SetText(Key<"ReadTime">(), FormatZeros(meter.ReadTimeNumber, 6));
  if (const char* code = ReadCodeOf(record.status, record.readType, meter.CurReading)) {
    line.SetText(Key<"ReadCode">(), code);
  }
  line.SetLong(Key<"ReadReason">(), 0);
  for (const FieldKey* key :
       {&Key<"ReadAuditResult">(), &Key<"TroubleCode1">(), &Key<"TroubleCode2">(), &Key<"AuditCounter">(),
        &Key<"ClearCounter">(), &Key<"ElapsedTime">(), &Key<"ReadTypeCode">()}) {
    line.SetLong(*key, 0);
  }
  line.SetText(Key<"UnprocessedReadFlag">(), "N");
  line.SetText(Key<"MeterReaderID">(), "TRAV");
  line.SetLong(Key<"NewNumberDials">(), meter.NumberDials);
  line.SetLong(Key<"NewNumberDecimals">(), meter.NumberDecimals);
  line.SetText(Key<"NewReadMethod">(), meter.NewReadMethod);
  line.SetText(Key<"MeterConstantVerified">(), " ");
  line.SetText(Key<"HHFPosition">(), meter.HHFPosition);
  line.SetText(Key<"NewMeterConstant">(), meter.MeterConstant);
  line.SetLong(Key<"PreviousReading">(), meter.PreviousReading);
  if (meter.NumberDecimals != 0) {
    const double scaled = std::floor(meter.CurReading / PowerOfTen(meter.NumberDecimals));
    line.SetValue(Key<"Reading">(), Value::Double(scaled));
  }
  for (const FieldKey* key :
       {&Key<"Reserved1">(), &Key<"Reserved3">(), &Key<"Reserved4">(), &Key<"Reserved5">(), &Key<"Reserved6">()}) {
    line.SetText(*key, "0");
  }
  run.upload.WriteRecord(line);
}

// The probe line as it stands: set up as a meter line, which has none of the
// probe's fields, so only the kind and the route reach the file.
void WriteProbeLine(clsMVRSUpload& upload, const std::string& routeNumber, const std::string& probeID,
                    double readDate, int32_t readTime) {
  clsRecType& line = *upload.SetupRecord("MTR");
  line.SetText(Key<"RouteNumber">(), routeNumber);
  line.SetText(Key<"OpticalProbeRecorderID">(), probeID);
  line.SetText(Key<"ExpectedDeviceID">(), "");
  line.SetText(Key<"DeviceID">(), "");
  line.SetText(Key<"DeviceDate">(), "");
  line.SetText(Key<"DeviceTime">(), "");
  line.SetText(Key<"TIMName">(), "");
  line.SetValue(Key<"ReadDate">(), Value::Date(readDate));
  line.SetLong(Key<"ReadTime">(), readTime);
  for (const FieldKey* key :
       {&Key<"StatusOpen">(), &Key<"StatusTOU">(), &Key<"StatusLPAll">(), &Key<"StatusLPPartial">(),
        &Key<"StatusStatusCheck">(), &Key<"StatusResetDemand">(), &Key<"StatusAutoTimeSet">(), &Key<"StatusCodes1">(),
        &Key<"StatusCodes2">(), &Key<"StatusCodes3">(), &Key<"StatusCodes4">(), &Key<"StatusCodes5">(),
        &Key<"StatusCodes6">()}) {
    line.SetText(*key, "00");
  }
  upload.WriteRecord(line);
}

// "RFF" for a radio read or "WRR" for a wand read.
void WriteDeviceReadLine(MVRSReadingRun& run, const MVRSReadRecord& record) {
  const MVRSReadMeter& meter = record.meter;
  clsRecType& line = *run.upload.SetupRecord(meter.ReadMethod == "R" ? "RFF" : "WRR");
  line.SetText(Key<"RouteNumber">(), run.Entry(run.current).RouteNumber);
  if (meter.ReadMethod == "R") {
    line.SetLong(Key<"RFERTID">(), meter.TagNumber);
    line.SetLong(Key<"GeographicArea">(), meter.GeographicArea);
    line.SetText(Key<"RFFrequency">(), meter.RFFrequency);
    line.SetText(Key<"RFTone">(), meter.RFTone);
    line.SetText(Key<"ERTType">(), meter.ERTType);
    line.SetLong(Key<"Tamper">(), 0);
  } else {
    line.SetText(Key<"TamperStatus">(), "");
    line.SetText(Key<"DeviceID">(), meter.DeviceID);
    line.SetText(Key<"WandProgram">(), meter.WandProgram);
  }
  line.SetText(Key<"ReadDate">(), FormatDateValue(meter.ReadDate, "mm/dd/yyyy"));
  line.SetLong(Key<"ReadTime">(), meter.ReadTimeNumber);
  double reading = meter.CurReading;
  if (meter.NumberDecimals != 0) reading /= PowerOfTen(meter.NumberDecimals);
  line.SetValue(Key<"Reading">(), Value::Double(reading));
  line.SetText(Key<"VisualReadIndicator">(), record.readType == 2 ? "Y" : "N");
  run.upload.WriteRecord(line);
}

// The device line of the meter's read method. The route's read method isn't
// carried back, so none of these runs.
void WriteDeviceLines(MVRSReadingRun& run, const MVRSReadRecord& record) {
  const MVRSReadMeter& meter = record.meter;
  if (meter.ReadMethod == "P") {
    run.Step([&] {
      WriteProbeLine(run.upload, run.Entry(run.current).RouteNumber, meter.OpticalProbeID, meter.ReadDate,
                     meter.ReadTimeNumber);
    });
  }
  if (meter.ReadMethod == "R" || meter.ReadMethod == "W") run.Step([&] { WriteDeviceReadLine(run, record); });
}

// Pass 2, the lines of one meter as read.
void WriteMeterLines(MVRSReadingRun& run, const MVRSReadRecord& record) {
  const MVRSReadMeter& meter = record.meter;
  const std::string meterNumber = Trim(meter.MeterNumber) == "0" ? " " : meter.MeterNumber;
  run.Step([&] { WriteCustomerLine(run, record.customer); });
  if (record.customer.ExtraIndicator == "Y") run.Step([&] { WriteExtraCustomerLine(run, record.customer); });
  run.Step([&] { WriteMeterLine(run, record, meterNumber); });
  if (!Trim(meter.SpecialMessage).empty()) run.Step([&] { WriteSpecialMessageLine(run, meter, meterNumber); });
  run.Step([&] { WriteReadingLine(run, record); });
  WriteDeviceLines(run, record);
}

// Pass 2 for one record: a meter's lines, after the route lines a change of
// route calls for. Every other record is passed over.
void WriteMeterRecord(MVRSReadingRun& run, clsHIF& hif) {
  int32_t recType = -1;
  run.Step([&] { recType = hif.NumberItem(MeterField::RecType); });
  if (recType != kRecMeter) return;
  ChangeRoute(run, hif);
  MVRSReadRecord& record = run.record;
  record.Clear();
  run.Step([&] {
    FillCustomer(record.customer, run.fields, hif);
    FillMeter(record, run.fields, hif);
  });
  WriteMeterLines(run, record);
}

// One record of pass 2 as the reading ahead found it.
struct MVRSReadStep {
  int16_t position255 = 0;
  int32_t recType = 0;
  int32_t routeNbr = 0;  // of a meter
  MVRSReadRecord record;
  bool stopped = false;  // the reading ahead stopped at this record
};

// Pass 2's records read ahead on the second thread, while this one writes
// the lines of those before. The reading ahead asks nobody anything: at the
// first record that fails, or would show a message, it stops, and the
// conversion reads that record and the rest itself, where the person can be
// asked as before.
class MVRSReadAhead {
 public:
  MVRSReadAhead(const std::string& source, int16_t version) : hif_(shell_) {
    hif_.SetVersion(version);
    try {
      stopped_ = hif_.OpenHIF(source);
    } catch (...) {
      stopped_ = true;
    }
  }

  bool Make(MVRSReadStep& step) {
    if (done_) return false;
    if (stopped_) {  // the file did not open here: the conversion opens it and says why
      done_ = true;
      step.stopped = true;
      return true;
    }
    try {
      if (!hif_.ReadData()) {  // the end of the file
        done_ = true;
        return false;
      }
      step.position255 = hif_.Position255();
      step.recType = hif_.NumberItem(MeterField::RecType);
      if (step.recType == kRecMeter) {
        step.routeNbr = hif_.NumberItem(MeterField::RouteNbr);
        step.record.Clear();
        FillCustomer(step.record.customer, fields_, hif_);
        FillMeter(step.record, fields_, hif_);
      }
      step.stopped = false;
    } catch (...) {
      done_ = true;
      step.stopped = true;
    }
    return true;
  }

 private:
  // Stops the reading ahead at any word to the person.
  struct StoppingShell : IShell {
    struct Stop {};
    void WriteLog(std::string_view) override { throw Stop{}; }
    void SetProgressButton(int32_t, int32_t) override {}
    MsgAnswer MsgBox(std::string_view, std::string_view, MsgButtons, MsgIcon) override { throw Stop{}; }
  };

  StoppingShell shell_;
  clsHIF hif_;
  FieldReader fields_;
  bool stopped_ = false;
  bool done_ = false;
};

// Pass 2 through the reading ahead; the records it took, and whether it
// stopped before the end.
bool WriteAheadRecords(MVRSReadingRun& run, int32_t& taken) {
  MVRSReadAhead ahead(std::string(Trim(run.exchange.ReadingSource)), run.version);
  Prefetch<MVRSReadStep> steps([&ahead](MVRSReadStep& step) { return ahead.Make(step); }, MVRSReadStep());
  while (const MVRSReadStep* step = steps.Next()) {
    if (step->stopped) return true;
    ++taken;
    run.shell.SetProgressButton(255, 127 + step->position255 / 2);
    if (step->recType != kRecMeter) continue;
    ChangeRouteTo(run, step->routeNbr);
    WriteMeterLines(run, step->record);
  }
  return false;
}

// Pass 2, from the start of the file again: "FHD", the lines of each meter
// within its route's "RHD" and "RTR", and "FTR".
void WriteReadingFile(MVRSReadingRun& run) {
  run.exchange.ActiveHIF.reset();
  run.Step([&] { OpenReadingFile(run); });
  run.Step([&] { WriteFileLine(run, "FHD"); });
  int32_t taken = 0;
  if (run.exchange.ActiveHIF && WriteAheadRecords(run, taken)) {
    // The rest from where the reading ahead stopped, past the records it
    // took.
    bool more = true;
    for (int32_t i = 0; i < taken && more; ++i) run.Next(more);
    while (more && run.exchange.ActiveHIF && run.Next(more)) {
      clsHIF& hif = *run.exchange.ActiveHIF;
      run.shell.SetProgressButton(255, 127 + hif.Position255() / 2);
      WriteMeterRecord(run, hif);
    }
  }
  if (run.current != 0) run.Step([&] { WriteRouteLine(run, "RTR", run.current); });
  run.Step([&] { WriteFileLine(run, "FTR"); });
}

}  // namespace

bool clsExchange::ConvertReadingMVRS(int16_t version) {
  MVRSReadingRun run(*this, version);
  try {
    run.upload.CreateFile(std::string(Trim(ReadingDestination)));
    CountRoutes(run);
    WriteReadingFile(run);
  } catch (const Aborted&) {
    return false;
  }
  run.upload.Finish();
  return true;
}

}  // namespace hifx
