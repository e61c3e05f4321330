// MVRS route files: a hierarchy of cycles, routes, customers, meters and
// their reading and device lines, folded into one HIF record a meter. What
// the handheld doesn't use but the reading file must give back travels in
// the five user fields.
#include <algorithm>
#include <charconv>
#include <exception>
#include <utility>

#include "base/Failure.h"
#include "base/Numbers.h"
#include "base/Prefetch.h"
#include "base/Text.h"
#include "exchange/ExchangeText.h"
#include "exchange/clsExchange.h"
#include "formats/mvrs/clsMVRSDownload.h"
#include "hif/FileVersion.h"

namespace hifx {
namespace {

// Reserve for the code and index records behind the meters.
constexpr int32_t kCodeRecordReserve = 4200;

struct MVRSRouteEntry {
  std::string RouteNumber;
  std::string Region;
  std::string Zone;
  std::string Office;
  Value CycleDate = Value::Date(0);
  int16_t NumberRemoteWandReads = 0;
  int16_t MeterCount = 0;
};

struct MVRSCustomer {
  std::string Address1 = Fixed20("");
  std::string Address2 = Fixed20("");
  std::string Address3 = Fixed20("");
  std::string Name = Fixed20("");
  std::string Name2 = Fixed20("");
  std::string Account;
  std::string UtilityID;
  std::string GroupCode;
  std::string ExtraIndicator;
  std::string SegmentCode;
  std::string PassThru;
  std::string CustomerInfo;
  int16_t CustomerSlot = 0;  // nothing sets it

  static std::string Fixed20(std::string text) {
    text.resize(20, ' ');
    return text;
  }
  // As a new customer is, keeping the texts' room.
  void Reset() {
    for (std::string* fixed : {&Address1, &Address2, &Address3, &Name, &Name2}) fixed->assign(20, ' ');
    for (std::string* text :
         {&Account, &UtilityID, &GroupCode, &ExtraIndicator, &SegmentCode, &PassThru, &CustomerInfo}) {
      text->clear();
    }
    CustomerSlot = 0;
  }
};

struct MVRSMeter {
  bool Pending = false;
  bool Radio = false;  // the meter number is the transponder's
  int16_t ReadSequence = 0;
  std::string ReadSequenceText;
  int32_t TagNumber = 0;
  std::string MeterNumber, MeterCategory, GroupCode, MeterLocation;
  std::string SurveyCode1DisplayIndicator, SurveyCode2DisplayIndicator, BillCode, MeterStatus;
  std::string OpticalProbeID, LocationExtraMeter, AdditionalMeterInfo;
  int32_t MeterType = 0, NumberReadings = 0, ReadInstruction1 = 0, ReadInstruction2 = 0;
  int32_t SpecialMessageDisplayIndicator = 0;
  std::string SurveyText1, SurveyText2;
  int32_t GeographicArea = 0, Tamper = 0;
  std::string RFFrequency, RFTone, WandProgram, DeviceID, SpecialMessageText;
  std::string TextPrompt, ReadDirection, ReadMethod;
  int32_t NumberDials = 0, PreviousReading = 0, CompareCode = 0, ValidationCode = 0, MeterConstant = 0;
  int32_t ConstantFlag = 0, HHFPosition = 0, NumberDecimals = 0, High1 = 0, Low1 = 0;
};

std::string Text(const clsRecType& record, const FieldKey& key) { return record.GetText(key); }
int32_t Number(const clsRecType& record, const FieldKey& key) { return record.GetNumber(key); }
// The text of a field cut or padded to 20 letters, written over `into`.
void TakeFixed20(const clsRecType& record, const FieldKey& key, std::string& into) {
  record.GetText(key, into);
  into.resize(20, ' ');
}
std::string Str(int32_t number) { return std::to_string(number); }

int16_t Add16(int16_t total, int32_t more) { return ToInt16(static_cast<double>(total) + more); }

// The route table's entry, counted from 1; failure 9 outside it.
MVRSRouteEntry& EntryAt(std::vector<MVRSRouteEntry>& table, int32_t index) {
  if (index < 1 || static_cast<size_t>(index) > table.size()) throw Failure(fail::kSubscript);
  return table[static_cast<size_t>(index - 1)];
}

// What pass 1 learns: the routes, and the totals that the header needs.
struct MVRSRouteCounts {
  std::vector<MVRSRouteEntry> table;  // from 1
  int16_t customerTotal = 0;
  int16_t meterTotal = 0;
  int16_t meterLines = 0;
};

// Pass 1: the routes of the "CHD" and "RHD" lines, and the meters of the
// "MTR" lines under each.
MVRSRouteCounts CountRoutes(clsMVRSDownload& reader, IShell& shell) {
  MVRSRouteCounts counts;
  int16_t routeTotal = 0;
  Value cycleDate = Value::Date(0);
  int32_t filled = 0;
  while (clsRecType* record = reader.ReadNext()) {
    shell.SetProgressButton(765, reader.Position255());
    const std::string& kind = record->IDText;
    if (SameShortText(kind, "FHD")) {
      routeTotal = counts.customerTotal = counts.meterTotal = 0;
    } else if (SameShortText(kind, "CHD")) {
      cycleDate = record->GetValue("CycleDate");
      const int32_t routes = Number(*record, Key<"NumberRoutes">());
      routeTotal = Add16(routeTotal, routes == 0 ? 1 : routes);
      counts.table.resize(static_cast<size_t>(std::max<int16_t>(routeTotal, 0)));
    } else if (SameShortText(kind, "RHD")) {
      counts.customerTotal = Add16(counts.customerTotal, Number(*record, Key<"NumberCustomerRecords">()));
      counts.meterTotal = Add16(counts.meterTotal, Number(*record, Key<"NumberMeterRecords">()));
      MVRSRouteEntry& entry = EntryAt(counts.table, ++filled);
      record->GetText(Key<"RouteNumber">(), entry.RouteNumber);
      record->GetText(Key<"Region">(), entry.Region);
      record->GetText(Key<"Zone">(), entry.Zone);
      record->GetText(Key<"Office">(), entry.Office);
      entry.CycleDate = cycleDate;
      entry.NumberRemoteWandReads = ToInt16(Number(*record, Key<"NumberRemoteWandReads">()));
    } else if (SameShortText(kind, "MTR")) {
      MVRSRouteEntry& entry = EntryAt(counts.table, filled);
      entry.MeterCount = Add16(entry.MeterCount, 1);
      counts.meterLines = Add16(counts.meterLines, 1);
    }
  }
  return counts;
}

// The file header: the routes, the meters, and the totals of the route
// headers.
void WriteHeaderRecord(clsExchange& exchange, const MVRSRouteCounts& counts, const std::string& source) {
  const ExchangeEnvironment& env = exchange.Environment();
  clsHIF& hif = *exchange.ActiveHIF;
  const CivilTime now = env.clock.Now();
  hif.AddNew();
  hif.SetItem(MeterField::RecType, Value::Long(kRecFileHeader));
  hif.SetItem(MeterField::RouteNbr, Value::Long(static_cast<int32_t>(counts.table.size())));
  hif.SetItem(MeterField::Sequence, Value::Long(DateNumber(now)));
  hif.SetItem(MeterField::MeterTagNbr, Value::Long(TimeNumber(now)));
  hif.SetItem(MeterField::MeterType, Value::Long(LookupFileVersion(env.shell, kProgramMajor, kProgramMinor)));
  hif.SetItem(MeterField::PrvReading, Value::Long(counts.meterLines));
  // The pattern stands where the value should: the text comes back as it
  // went in. No reader looks at this field.
  hif.SetItem(MeterField::ReadingDate, Value("yyyymmdd"));
  hif.SetItem(MeterField::Initials, Value("HIF loaded from " + source));
  hif.SetItem(MeterField::User1, Value(clsExchange::CombineUser({Str(counts.customerTotal), Str(counts.meterTotal)})));
  hif.WriteData();
}

// One route record a table entry, in table order.
void WriteRouteRecords(clsHIF& hif, const std::vector<MVRSRouteEntry>& table) {
  for (size_t i = 0; i < table.size(); ++i) {
    const MVRSRouteEntry& entry = table[i];
    hif.AddNew();
    hif.SetItem(MeterField::RecType, Value::Long(kRecRouteHeader));
    hif.SetItem(MeterField::RouteNbr, Value::Long(static_cast<int32_t>(i + 1)));
    hif.SetItem(MeterField::PrvReading, Value::Long(entry.MeterCount));
    hif.SetItem(MeterField::Initials, Value(entry.RouteNumber));
    hif.SetItem(MeterField::ResponseText, Value(entry.RouteNumber));
    hif.SetItem(MeterField::User1, Value(clsExchange::CombineUser({entry.Region, entry.Zone, entry.Office,
                                                         TextOf(entry.CycleDate), Str(entry.NumberRemoteWandReads)})));
    hif.WriteData();
  }
}

// What pass 2's reading hands to its writing, in the order of the file: a
// meter to write, a transponder tag to check, or the end of the reading at
// a failure. With each, the progress of the lines read since the one
// before.
struct MVRSFoldStep {
  enum class Kind { Meter, Radio, ReadFailure, Failure };
  Kind kind = Kind::Meter;
  std::vector<int16_t> progress;
  // A meter: its route, customer and own values.
  int32_t route = 0;
  std::string routeNumber;
  MVRSCustomer customer;
  MVRSMeter meter;
  // A transponder: its tag, who it belongs to, and its line.
  std::string tag;
  std::string info;
  int32_t lineNo = 0;
  // The end at a failure: what the reader says, or what a line raised.
  std::string failureText;
  std::exception_ptr failure;
};

// Pass 2's reading: the lines of each meter, customer and route folded
// into the working records, and each meter handed over when the next meter,
// customer or route begins. It runs on the second thread, beside the
// writing: the route table and the map it reads don't change meanwhile.
class MVRSFold {
 public:
  // reader, open, has no shell: a failure of the reading comes back as a
  // step, to be shown by the writing, and the record kinds of the format
  // never ask the person anything.
  MVRSFold(std::unique_ptr<clsMVRSDownload> reader, const std::vector<MVRSRouteEntry>& routes, bool radioOption)
      : reader_(std::move(reader)), table_(routes), radioOption_(radioOption) {}

  // The next step; false after the last.
  bool Make(MVRSFoldStep& step) {
    step.progress.clear();
    try {
      return Fold(step);
    } catch (...) {
      step.kind = MVRSFoldStep::Kind::Failure;
      step.failure = std::current_exception();
      done_ = true;
      return true;
    }
  }

 private:
  bool Fold(MVRSFoldStep& step) {
    if (held_ != nullptr) {
      // The line that handed the meter before it over goes on.
      const clsRecType& line = *std::exchange(held_, nullptr);
      if (TakeLine(step, line, heldLineNo_)) return true;
    }
    while (!done_) {
      const clsRecType* line = reader_->ReadNext();
      if (line == nullptr) {
        done_ = true;
        if (!reader_->LastFailure().empty()) {
          step.kind = MVRSFoldStep::Kind::ReadFailure;
          step.failureText = reader_->LastFailure();
          return true;
        }
        break;
      }
      step.progress.push_back(static_cast<int16_t>(reader_->Position255() + 255));
      if (meter_.Pending && StartsNew(line->IDText)) {
        held_ = line;
        heldLineNo_ = reader_->LineNo();
        HandOver(step);
        return true;
      }
      if (TakeLine(step, *line, reader_->LineNo())) return true;
    }
    if (!meter_.Pending) return false;
    HandOver(step);
    return true;
  }

  static bool StartsNew(const std::string& kind) {
    return SameShortText(kind, "RHD") || SameShortText(kind, "CUS") || SameShortText(kind, "MTR");
  }

  // The pending meter into step, and none pending.
  void HandOver(MVRSFoldStep& step) {
    step.kind = MVRSFoldStep::Kind::Meter;
    step.route = route_;
    step.routeNumber = routeNumber_;
    step.customer = customer_;
    std::swap(step.meter, meter_);
    meter_ = MVRSMeter();
  }

  // One line into the working records; true when it makes a step.
  bool TakeLine(MVRSFoldStep& step, const clsRecType& line, int32_t lineNo) {
    const std::string& kind = line.IDText;
    if (SameShortText(kind, "RHD")) {
      TakeRouteLine(line);
    } else if (SameShortText(kind, "CUS")) {
      TakeCustomerLine(line);
    } else if (SameShortText(kind, "CSX")) {
      TakeFixed20(line, Key<"Name">(), customer_.Name2);
      TakeFixed20(line, Key<"Address3">(), customer_.Address3);
    } else if (SameShortText(kind, "MTR")) {
      TakeMeterLine(line);
    } else if (SameShortText(kind, "RTS")) {
      line.GetText(Key<"SurveyText1">(), meter_.SurveyText1);
      line.GetText(Key<"SurveyText2">(), meter_.SurveyText2);
    } else if (SameShortText(kind, "RFF")) {
      TakeRadioLine(step, line, lineNo);
      return true;
    } else if (SameShortText(kind, "WRR")) {
      line.GetText(Key<"WandProgram">(), meter_.WandProgram);
      line.GetText(Key<"DeviceID">(), meter_.DeviceID);
    } else if (SameShortText(kind, "MTS")) {
      line.GetText(Key<"SpecialMessageText">(), meter_.SpecialMessageText);
    } else if (SameShortText(kind, "RDG")) {
      TakeReadingLine(line);
    }
    return false;
  }

  // "RHD": the route of the table with the line's number, or one past the
  // table's end when none has it.
  void TakeRouteLine(const clsRecType& line) {
    line.GetText(Key<"RouteNumber">(), routeNumber_);
    route_ = static_cast<int32_t>(table_.size()) + 1;
    for (size_t i = 0; i < table_.size(); ++i) {
      if (table_[i].RouteNumber == routeNumber_) {
        route_ = static_cast<int32_t>(i + 1);
        break;
      }
    }
  }

  // "CUS": a new working customer.
  void TakeCustomerLine(const clsRecType& line) {
    MVRSCustomer& customer = customer_;
    customer.Reset();
    TakeFixed20(line, Key<"Name">(), customer.Name);
    TakeFixed20(line, Key<"Address1">(), customer.Address1);
    TakeFixed20(line, Key<"Address2">(), customer.Address2);
    line.GetText(Key<"UtilityID">(), customer.UtilityID);
    line.GetText(Key<"Account">(), customer.Account);
    line.GetText(Key<"GroupCode">(), customer.GroupCode);
    line.GetText(Key<"ExtraIndicator">(), customer.ExtraIndicator);
    line.GetText(Key<"SegmentCode">(), customer.SegmentCode);
    line.GetText(Key<"PassThru">(), customer.PassThru);
    line.GetText(Key<"CustomerInfo">(), customer.CustomerInfo);
  }

  // "MTR": a new pending meter. With the radio option, an 8-digit meter
  // number is the transponder's, and the meter reads by radio.
  void TakeMeterLine(const clsRecType& line) {
    MVRSMeter& meter = meter_;
    meter = MVRSMeter();
    meter.Pending = true;
    line.GetText(Key<"MeterNumber">(), meter.MeterNumber);
    line.GetText(Key<"MeterCategory">(), meter.MeterCategory);
    meter.MeterType = Number(line, Key<"MeterType">());
    line.GetText(Key<"GroupCode">(), meter.GroupCode);
    // Through a number and back: leading zeros go.
    meter.MeterLocation = Str(ToInt32(NumericPrefix(Text(line, Key<"MeterLocation">()))));
    meter.NumberReadings = Number(line, Key<"NumberReadings">());
    line.GetText(Key<"SurveyCode1DisplayIndicator">(), meter.SurveyCode1DisplayIndicator);
    line.GetText(Key<"SurveyCode2DisplayIndicator">(), meter.SurveyCode2DisplayIndicator);
    line.GetText(Key<"BillCode">(), meter.BillCode);
    line.GetText(Key<"MeterStatus">(), meter.MeterStatus);
    line.GetText(Key<"OpticalProbeID">(), meter.OpticalProbeID);
    meter.ReadInstruction1 = Number(line, Key<"ReadInstruction1">());
    meter.ReadInstruction2 = Number(line, Key<"ReadInstruction2">());
    meter.SpecialMessageDisplayIndicator = Number(line, Key<"SpecialMessageDisplayIndicator">());
    line.GetText(Key<"LocationExtraMeter">(), meter.LocationExtraMeter);
    line.GetText(Key<"AdditionalMeterInfo">(), meter.AdditionalMeterInfo);
    const int32_t sequence = Number(line, Key<"ReadSequence">());
    meter.ReadSequence = sequence >= -32768 && sequence <= 32767 ? static_cast<int16_t>(sequence) : 0;
    meter.ReadSequenceText = Str(sequence);
    double number = 0.0;
    if (radioOption_ && Trim(meter.MeterNumber).size() == 8 && ParseWholeNumber(meter.MeterNumber, number)) {
      meter.TagNumber = ToInt32(number);
      meter.Radio = true;
    }
  }

  // "RFF": the transponder, whose tag the writing checks against those
  // seen before.
  void TakeRadioLine(MVRSFoldStep& step, const clsRecType& line, int32_t lineNo) {
    MVRSMeter& meter = meter_;
    meter.TagNumber = ToInt32(NumericPrefix(Text(line, Key<"RFERTID">())));
    meter.GeographicArea = Number(line, Key<"GeographicArea">());
    line.GetText(Key<"RFFrequency">(), meter.RFFrequency);
    line.GetText(Key<"RFTone">(), meter.RFTone);
    meter.Tamper = Number(line, Key<"Tamper">());
    step.kind = MVRSFoldStep::Kind::Radio;
    step.tag = Str(meter.TagNumber);
    step.info = customer_.Name + " " + customer_.Address1;
    step.lineNo = lineNo;
  }

  // "RDG": one reading a meter, so a second line overwrites the first.
  void TakeReadingLine(const clsRecType& line) {
    MVRSMeter& meter = meter_;
    meter.NumberDials = Number(line, Key<"NumberDials">());
    meter.PreviousReading = Number(line, Key<"PreviousReading">());
    line.GetText(Key<"TextPrompt">(), meter.TextPrompt);
    line.GetText(Key<"ReadDirection">(), meter.ReadDirection);
    meter.CompareCode = Number(line, Key<"CompareCode">());
    meter.ValidationCode = Number(line, Key<"ValidationCode">());
    meter.ReadMethod = meter.Radio ? "R" : Text(line, Key<"ReadMethod">());
    meter.MeterConstant = Number(line, Key<"MeterConstant">());
    meter.ConstantFlag = Number(line, Key<"ConstantFlag">());
    meter.HHFPosition = Number(line, Key<"HHFPosition">());
    meter.NumberDecimals = Number(line, Key<"NumberDecimals">());
    meter.High1 = Number(line, Key<"High1">());
    meter.Low1 = Number(line, Key<"Low1">());
  }

  std::unique_ptr<clsMVRSDownload> reader_;
  const std::vector<MVRSRouteEntry>& table_;
  const bool radioOption_;
  int32_t route_ = 0;  // the lower bound of the route list until the first route
  std::string routeNumber_;
  MVRSCustomer customer_;
  MVRSMeter meter_;
  // A line that begins a new meter, customer or route, held while the meter
  // before it is handed over; the reader keeps its record until the next
  // line is read.
  const clsRecType* held_ = nullptr;
  int32_t heldLineNo_ = 0;
  bool done_ = false;
};

// A number's decimal text in a room of its own, read as a view while it
// lives.
struct NumberText {
  explicit NumberText(int32_t number)
      : size(static_cast<size_t>(std::to_chars(text, text + sizeof text, number).ptr - text)) {}
  operator std::string_view() const { return {text, size}; }  // NOLINT: read as the text it is
  char text[12];
  size_t size;
};

// What the handheld doesn't use but the reading file must give back, packed
// in the five user fields, each joined in the fold's room.
void SetUserFields(clsHIF& hif, const MVRSCustomer& customer, const MVRSMeter& meter, std::string& room) {
  using N = NumberText;
  hif.SetText(
      MeterField::User1,
      clsExchange::CombineUser({N(customer.CustomerSlot), customer.Account, customer.GroupCode, customer.ExtraIndicator,
                                customer.SegmentCode, customer.PassThru, customer.CustomerInfo},
                               room));
  hif.SetText(MeterField::User2,
              clsExchange::CombineUser(
                  {meter.GroupCode, meter.SurveyCode1DisplayIndicator, meter.SurveyCode2DisplayIndicator,
                   meter.BillCode, meter.MeterStatus, meter.OpticalProbeID, N(meter.MeterType), meter.MeterLocation,
                   N(meter.ReadInstruction1), N(meter.ReadInstruction2), N(meter.SpecialMessageDisplayIndicator),
                   meter.SurveyText1, meter.LocationExtraMeter, meter.AdditionalMeterInfo, meter.ReadSequenceText},
                  room));
  hif.SetText(MeterField::User3,
              clsExchange::CombineUser({meter.TextPrompt, meter.ReadDirection, N(meter.CompareCode),
                                        N(meter.ValidationCode), meter.ReadMethod, N(meter.MeterConstant),
                                        N(meter.ConstantFlag), N(meter.HHFPosition), N(meter.NumberDecimals)},
                                       room));
  hif.SetText(MeterField::User4, clsExchange::CombineUser({N(meter.GeographicArea), meter.RFFrequency, meter.RFTone, "",
                                                           meter.DeviceID, meter.WandProgram},
                                                          room));
  hif.SetText(MeterField::User5, clsExchange::CombineUser({meter.SpecialMessageText}, room));
}

// The pending meter as one HIF record of the current route.
void WriteMeterRecord(clsExchange& exchange, const MVRSFoldStep& step, std::string& room) {
  const MVRSCustomer& customer = step.customer;
  const MVRSMeter& meter = step.meter;
  clsHIF& hif = *exchange.ActiveHIF;
  const std::string tag = Str(meter.TagNumber);
  hif.AddNew();
  hif.SetItem(MeterField::RecType, Value::Long(kRecMeter));
  hif.SetItem(MeterField::RouteNbr, Value::Long(step.route));
  hif.SetItem(MeterField::Sequence, Value::Long(meter.ReadSequence));
  hif.SetItem(MeterField::MeterTagNbr, Value::Long(meter.TagNumber));
  static const std::string kCategories = "WGESI";
  if (meter.MeterCategory.size() == 1 && kCategories.find(meter.MeterCategory[0]) != std::string::npos) {
    hif.SetItem(MeterField::MeterType, Value::Long(static_cast<int32_t>(kCategories.find(meter.MeterCategory[0]) + 1)));
  }
  hif.SetItem(MeterField::Digits, Value::Long(meter.NumberDials));
  hif.SetItem(MeterField::Decimals, Value::Long(meter.NumberDecimals));
  hif.SetItem(MeterField::PrvReading, Value::Long(meter.PreviousReading));
  hif.SetItem(MeterField::MaxReading, Value::Long(meter.High1));
  hif.SetItem(MeterField::MinReading, Value::Long(meter.Low1));
  hif.SetItem(MeterField::Status, Value::Long(0));
  if (meter.ReadMethod == "K") hif.SetItem(MeterField::ReadType, Value::Long(2));
  if (meter.ReadMethod == "P" || meter.ReadMethod == "W") hif.SetItem(MeterField::ReadType, Value::Long(3));
  if (meter.ReadMethod == "R") hif.SetItem(MeterField::ReadType, Value::Long(1));
  if (meter.ReadMethod == "N") hif.SetItem(MeterField::ReadType, Value::Long(0));
  hif.SetItem(MeterField::LstReadingDate, Value::Long(0));
  hif.SetItem("TamperCount", Value::Long(meter.Tamper));
  hif.SetItem(MeterField::UtilityCode, Value(customer.UtilityID));
  hif.SetItem(MeterField::Lat, Value::Long(0));
  hif.SetItem(MeterField::Lng, Value::Long(0));
  hif.SetItem(MeterField::InitPulseCount, Value::Long(0));
  hif.SetItem(MeterField::InitTamperCount, Value::Long(0));
  hif.SetItem(MeterField::Message,
              Value(exchange.Advanced().LookupMessage(std::string(Trim(meter.SpecialMessageText)), step.routeNumber,
                                                      std::string(Trim(customer.Account)),
                                                      std::string(Trim(meter.MeterNumber)), std::string(Trim(tag)))));
  hif.SetText(MeterField::ServiceAddress,
              Trim(room.assign(customer.Address1).append(customer.Address2).append(customer.Address3)));
  hif.SetText(MeterField::BillingName, Trim(room.assign(customer.Name).append(customer.Name2)));
  hif.SetText(MeterField::ServiceUniqueID, customer.Account);
  hif.SetText(MeterField::MeterSerialNbr, meter.MeterNumber);
  hif.SetText(MeterField::ReceiverData, "");
  SetUserFields(hif, customer, meter, room);
  hif.WriteData();
}

// Writes a meter handed over, counts it and hands it to the index.
void WriteFoldedMeter(clsExchange& exchange, const MVRSFoldStep& step, std::string& room) {
  WriteMeterRecord(exchange, step, room);
  ++exchange.MetersWritten;
  if (exchange.CreateIndexes) {
    exchange.IndexWrittenMeter(exchange.ActiveHIF->NumberItem(MeterField::RouteNbr));
  }
  exchange.MeterRecordNumber = Add16(exchange.MeterRecordNumber, 1);
}

// Pass 2: each meter with the lines that follow it, until the next meter,
// customer or route, as one HIF record. The lines are read and folded on a
// second thread while this one writes the meters.
void FoldMeters(clsExchange& exchange, std::unique_ptr<clsMVRSDownload> reader,
                const std::vector<MVRSRouteEntry>& table) {
  IShell& shell = exchange.Environment().shell;
  MVRSFold fold(std::move(reader), table, exchange.ActiveMap->MapOptions(1) == "Y");
  Prefetch<MVRSFoldStep> steps([&fold](MVRSFoldStep& step) { return fold.Make(step); }, MVRSFoldStep());
  std::string room;  // where a text of a meter's record is put together
  while (MVRSFoldStep* step = steps.Next()) {
    for (const int16_t progress : step->progress) shell.SetProgressButton(765, progress);
    switch (step->kind) {
      case MVRSFoldStep::Kind::Meter:
        WriteFoldedMeter(exchange, *step, room);
        break;
      case MVRSFoldStep::Kind::Radio:
        if (exchange.CheckDuplicateTag(step->tag, step->info, step->lineNo)) exchange.HadProblems = true;
        break;
      case MVRSFoldStep::Kind::ReadFailure:
        shell.MsgBox("Error in Readnext: " + step->failureText);
        break;
      case MVRSFoldStep::Kind::Failure:
        std::rethrow_exception(step->failure);
    }
  }
}

}  // namespace

std::string clsExchange::CombineUser(std::initializer_list<std::string_view> values) {
  std::string joined;
  CombineUser(values, joined);
  return joined;
}

std::string_view clsExchange::CombineUser(std::initializer_list<std::string_view> values, std::string& joined) {
  size_t length = values.size() > 0 ? values.size() - 1 : 0;  // the tildes
  for (const std::string_view value : values) length += value.size();
  joined.assign(length, '~');  // the values are written between the tildes
  size_t at = 0;
  for (const std::string_view value : values) {
    value.copy(joined.data() + at, value.size());
    at += value.size() + 1;
  }
  // A NUL would end the text on the handheld: it travels as 0x01.
  for (size_t nul = joined.find('\0'); nul != std::string::npos; nul = joined.find('\0', nul + 1)) joined[nul] = '\x01';
  return joined;
}

bool clsExchange::ConvertRouteMVRS() {
  HadWarnings = false;
  HadProblems = false;
  const std::string source(Trim(RouteSource));
  auto reader = std::make_unique<clsMVRSDownload>(&env_.shell);
  if (!reader->OpenFile(source)) return false;
  const MVRSRouteCounts counts = CountRoutes(*reader, env_.shell);

  const auto routes = static_cast<int32_t>(counts.table.size());
  if (!RecordsFit(counts.meterLines, routes)) return false;
  const int32_t records = counts.meterLines + routes + 2 + kCodeRecordReserve;
  const int32_t fileType = (RouteHIFType == "PRC" || RouteHIFType == "PDB") ? kFilePDB : kFileVFS;
  if (ActiveHIF->CreateHIF(RouteFile.Written(), fileType, records) != 0) {
    return Fail("Error: Could not Create Route HIF File");
  }
  WriteHeaderRecord(*this, counts, source);
  WriteRouteRecords(*ActiveHIF, counts.table);

  reader = std::make_unique<clsMVRSDownload>(nullptr);
  if (!reader->OpenFile(source)) return false;
  FoldMeters(*this, std::move(reader), counts.table);
  return !HadProblems;
}

}  // namespace hifx
