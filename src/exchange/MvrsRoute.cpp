// MVRS route files: a hierarchy of cycles, routes, customers, meters and
// their reading and device lines, folded into one HIF record a meter. What
// the handheld doesn't use but the reading file must give back travels in
// the five user fields.
#include "base/Failure.h"
#include "base/Numbers.h"
#include "exchange/ExchangeText.h"
#include "exchange/clsExchange.h"
#include "formats/mvrs/clsMVRSDownload.h"
#include "hif/FileVersion.h"

namespace hifx {
namespace {

// Reserve for the code and index records behind the meters.
constexpr int32_t kCodeRecordReserve = 4200;

struct MvrsRouteEntry {
  std::string RouteNumber;
  std::string Region;
  std::string Zone;
  std::string Office;
  Value CycleDate = Value::Date(0);
  int16_t NumberRemoteWandReads = 0;
  int16_t MeterCount = 0;
};

struct MvrsCustomer {
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
};

struct MvrsMeter {
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

std::string Text(const clsRecType& record, const char* name) {
  const Value& value = record.GetValue(name);
  return value.IsText() ? value.Text() : TextOf(value);
}
int32_t Number(const clsRecType& record, const char* name) { return NumberOf(record.GetValue(name)); }
std::string Str(int32_t number) { return std::to_string(number); }

int16_t Add16(int16_t total, int32_t more) { return ToInt16(static_cast<double>(total) + more); }

// The route table's entry, counted from 1; failure 9 outside it.
MvrsRouteEntry& EntryAt(std::vector<MvrsRouteEntry>& table, int32_t index) {
  if (index < 1 || static_cast<size_t>(index) > table.size()) throw Failure(fail::kSubscript);
  return table[static_cast<size_t>(index - 1)];
}

}  // namespace

std::string clsExchange::CombineUser(const std::vector<std::string>& values) {
  std::string joined;
  for (size_t i = 0; i < values.size(); ++i) {
    if (i > 0) joined += '~';
    joined += values[i];
  }
  for (char& c : joined) {
    if (c == '\0') c = '\x01';
  }
  return joined;
}

bool clsExchange::ConvertRouteMVRS() {
  HadWarnings = false;
  HadProblems = false;
  const std::string source = Trim(RouteSource);
  auto reader = std::make_unique<clsMVRSDownload>(&env_.shell);
  if (!reader->OpenFile(source)) return false;

  // Pass 1: the routes and the totals that the header needs.
  std::vector<MvrsRouteEntry> table;
  int16_t routeTotal = 0;
  int16_t customerTotal = 0;
  int16_t meterTotal = 0;
  int16_t meterLines = 0;
  Value cycleDate = Value::Date(0);
  int32_t filled = 0;
  while (clsRecType* record = reader->ReadNext()) {
    env_.shell.SetProgressButton(765, reader->Position255());
    const std::string& kind = record->IDText;
    if (kind == "FHD") {
      routeTotal = customerTotal = meterTotal = 0;
    } else if (kind == "CHD") {
      cycleDate = record->GetValue("CycleDate");
      const int32_t routes = Number(*record, "NumberRoutes");
      routeTotal = Add16(routeTotal, routes == 0 ? 1 : routes);
      table.resize(static_cast<size_t>(std::max<int16_t>(routeTotal, 0)));
    } else if (kind == "RHD") {
      customerTotal = Add16(customerTotal, Number(*record, "NumberCustomerRecords"));
      meterTotal = Add16(meterTotal, Number(*record, "NumberMeterRecords"));
      MvrsRouteEntry& entry = EntryAt(table, ++filled);
      entry.RouteNumber = Text(*record, "RouteNumber");
      entry.Region = Text(*record, "Region");
      entry.Zone = Text(*record, "Zone");
      entry.Office = Text(*record, "Office");
      entry.CycleDate = cycleDate;
      entry.NumberRemoteWandReads = ToInt16(Number(*record, "NumberRemoteWandReads"));
    } else if (kind == "MTR") {
      MvrsRouteEntry& entry = EntryAt(table, filled);
      entry.MeterCount = Add16(entry.MeterCount, 1);
      meterLines = Add16(meterLines, 1);
    }
  }

  if (!RecordsFit(meterLines, static_cast<int32_t>(table.size()))) return false;
  const int32_t records = meterLines + static_cast<int32_t>(table.size()) + 2 + kCodeRecordReserve;
  const int32_t fileType = (RouteHIFType == "PRC" || RouteHIFType == "PDB") ? kFilePDB : kFileVFS;
  if (ActiveHIF->CreateHIF(RouteFile.Written(), fileType, records) != 0) {
    return Fail("Error: Could not Create Route HIF File");
  }
  clsHIF& hif = *ActiveHIF;
  const CivilTime now = env_.clock.Now();
  hif.AddNew();
  hif.SetItem("RecType", Value::Long(kRecFileHeader));
  hif.SetItem("RouteNbr", Value::Long(static_cast<int32_t>(table.size())));
  hif.SetItem("Sequence", Value::Long(DateNumber(now)));
  hif.SetItem("MeterTagNbr", Value::Long(TimeNumber(now)));
  hif.SetItem("MeterType", Value::Long(LookupFileVersion(env_.shell, kProgramMajor, kProgramMinor)));
  hif.SetItem("PrvReading", Value::Long(meterLines));
  // The pattern stands where the value should: the text comes back as it
  // went in. No reader looks at this field.
  hif.SetItem("ReadingDate", Value("yyyymmdd"));
  hif.SetItem("Initials", Value("HIF loaded from " + source));
  hif.SetItem("User1", Value(CombineUser({Str(customerTotal), Str(meterTotal)})));
  hif.WriteData();
  for (size_t i = 0; i < table.size(); ++i) {
    const MvrsRouteEntry& entry = table[i];
    hif.AddNew();
    hif.SetItem("RecType", Value::Long(kRecRouteHeader));
    hif.SetItem("RouteNbr", Value::Long(static_cast<int32_t>(i + 1)));
    hif.SetItem("PrvReading", Value::Long(entry.MeterCount));
    hif.SetItem("Initials", Value(entry.RouteNumber));
    hif.SetItem("ResponseText", Value(entry.RouteNumber));
    hif.SetItem("User1", Value(CombineUser({entry.Region, entry.Zone, entry.Office, TextOf(entry.CycleDate),
                                            Str(entry.NumberRemoteWandReads)})));
    hif.WriteData();
  }

  // Pass 2: each meter with the lines that follow it, until the next meter,
  // customer or route.
  reader = std::make_unique<clsMVRSDownload>(&env_.shell);
  if (!reader->OpenFile(source)) return false;
  AutoNumber = 0;
  const bool radioOption = ActiveMap->MapOptions(1) == "Y";
  int32_t route = 0;  // the lower bound of the route list until the first route
  std::string routeNumber;
  MvrsCustomer customer;
  MvrsMeter meter;

  auto flush = [&] {
    if (!meter.Pending) return;
    const std::string tag = Str(meter.TagNumber);
    hif.AddNew();
    hif.SetItem("RecType", Value::Long(kRecMeter));
    hif.SetItem("RouteNbr", Value::Long(route));
    hif.SetItem("Sequence", Value::Long(meter.ReadSequence));
    hif.SetItem("MeterTagNbr", Value::Long(meter.TagNumber));
    static const std::string kCategories = "WGESI";
    if (meter.MeterCategory.size() == 1 && kCategories.find(meter.MeterCategory[0]) != std::string::npos) {
      hif.SetItem("MeterType", Value::Long(static_cast<int32_t>(kCategories.find(meter.MeterCategory[0]) + 1)));
    }
    hif.SetItem("Digits", Value::Long(meter.NumberDials));
    hif.SetItem("Decimals", Value::Long(meter.NumberDecimals));
    hif.SetItem("PrvReading", Value::Long(meter.PreviousReading));
    hif.SetItem("MaxReading", Value::Long(meter.High1));
    hif.SetItem("MinReading", Value::Long(meter.Low1));
    hif.SetItem("Status", Value::Long(0));
    if (meter.ReadMethod == "K") hif.SetItem("ReadType", Value::Long(2));
    if (meter.ReadMethod == "P" || meter.ReadMethod == "W") hif.SetItem("ReadType", Value::Long(3));
    if (meter.ReadMethod == "R") hif.SetItem("ReadType", Value::Long(1));
    if (meter.ReadMethod == "N") hif.SetItem("ReadType", Value::Long(0));
    hif.SetItem("LstReadingDate", Value::Long(0));
    hif.SetItem("TamperCount", Value::Long(meter.Tamper));
    hif.SetItem("UtilityCode", Value(customer.UtilityID));
    hif.SetItem("Lat", Value::Long(0));
    hif.SetItem("Lng", Value::Long(0));
    hif.SetItem("InitPulseCount", Value::Long(0));
    hif.SetItem("InitTamperCount", Value::Long(0));
    hif.SetItem("Message", Value(Advanced().LookupMessage(Trim(meter.SpecialMessageText), routeNumber,
                                                          Trim(customer.Account), Trim(meter.MeterNumber),
                                                          Trim(tag))));
    hif.SetItem("ServiceAddress", Value(Trim(customer.Address1 + customer.Address2 + customer.Address3)));
    hif.SetItem("BillingName", Value(Trim(customer.Name + customer.Name2)));
    hif.SetItem("ServiceUniqueID", Value(customer.Account));
    hif.SetItem("MeterSerialNbr", Value(meter.MeterNumber));
    hif.SetItem("ReceiverData", Value(""));
    hif.SetItem("User1", Value(CombineUser({Str(customer.CustomerSlot), customer.Account, customer.GroupCode,
                                            customer.ExtraIndicator, customer.SegmentCode, customer.PassThru,
                                            customer.CustomerInfo})));
    hif.SetItem("User2", Value(CombineUser(
                             {meter.GroupCode, meter.SurveyCode1DisplayIndicator, meter.SurveyCode2DisplayIndicator,
                              meter.BillCode, meter.MeterStatus, meter.OpticalProbeID, Str(meter.MeterType),
                              meter.MeterLocation, Str(meter.ReadInstruction1), Str(meter.ReadInstruction2),
                              Str(meter.SpecialMessageDisplayIndicator), meter.SurveyText1, meter.LocationExtraMeter,
                              meter.AdditionalMeterInfo, meter.ReadSequenceText})));
    hif.SetItem("User3", Value(CombineUser({meter.TextPrompt, meter.ReadDirection, Str(meter.CompareCode),
                                            Str(meter.ValidationCode), meter.ReadMethod, Str(meter.MeterConstant),
                                            Str(meter.ConstantFlag), Str(meter.HHFPosition),
                                            Str(meter.NumberDecimals)})));
    hif.SetItem("User4", Value(CombineUser({Str(meter.GeographicArea), meter.RFFrequency, meter.RFTone, "",
                                            meter.DeviceID, meter.WandProgram})));
    hif.SetItem("User5", Value(CombineUser({meter.SpecialMessageText})));
    hif.WriteData();
    ++MetersWritten;
    meter = MvrsMeter();
    if (CreateIndexes) {
      UpdateIndexes(NumberOf(hif.Item("RouteNbr")), MeterRecordNumber, TextOf(hif.Item("MeterTagNbr")),
                    TextOf(hif.Item("MeterSerialNbr")), TextOf(hif.Item("BillingName")),
                    TextOf(hif.Item("ServiceAddress")), TextOf(hif.Item("ServiceUniqueID")));
    }
    MeterRecordNumber = Add16(MeterRecordNumber, 1);
  };

  while (clsRecType* record = reader->ReadNext()) {
    env_.shell.SetProgressButton(765, reader->Position255() + 255);
    const clsRecType& line = *record;
    const std::string& kind = line.IDText;
    if (kind == "RHD") {
      flush();
      routeNumber = Text(line, "RouteNumber");
      route = static_cast<int32_t>(table.size()) + 1;
      for (size_t i = 0; i < table.size(); ++i) {
        if (table[i].RouteNumber == routeNumber) {
          route = static_cast<int32_t>(i + 1);
          break;
        }
      }
    } else if (kind == "CUS") {
      flush();
      customer = MvrsCustomer();
      customer.Name = MvrsCustomer::Fixed20(Text(line, "Name"));
      customer.Address1 = MvrsCustomer::Fixed20(Text(line, "Address1"));
      customer.Address2 = MvrsCustomer::Fixed20(Text(line, "Address2"));
      customer.UtilityID = Text(line, "UtilityID");
      customer.Account = Text(line, "Account");
      customer.GroupCode = Text(line, "GroupCode");
      customer.ExtraIndicator = Text(line, "ExtraIndicator");
      customer.SegmentCode = Text(line, "SegmentCode");
      customer.PassThru = Text(line, "PassThru");
      customer.CustomerInfo = Text(line, "CustomerInfo");
    } else if (kind == "CSX") {
      customer.Name2 = MvrsCustomer::Fixed20(Text(line, "Name"));
      customer.Address3 = MvrsCustomer::Fixed20(Text(line, "Address3"));
    } else if (kind == "MTR") {
      flush();
      meter = MvrsMeter();
      meter.Pending = true;
      meter.MeterNumber = Text(line, "MeterNumber");
      meter.MeterCategory = Text(line, "MeterCategory");
      meter.MeterType = Number(line, "MeterType");
      meter.GroupCode = Text(line, "GroupCode");
      // Through a number and back: leading zeros go.
      meter.MeterLocation = Str(ToInt32(NumericPrefix(Text(line, "MeterLocation"))));
      meter.NumberReadings = Number(line, "NumberReadings");
      meter.SurveyCode1DisplayIndicator = Text(line, "SurveyCode1DisplayIndicator");
      meter.SurveyCode2DisplayIndicator = Text(line, "SurveyCode2DisplayIndicator");
      meter.BillCode = Text(line, "BillCode");
      meter.MeterStatus = Text(line, "MeterStatus");
      meter.OpticalProbeID = Text(line, "OpticalProbeID");
      meter.ReadInstruction1 = Number(line, "ReadInstruction1");
      meter.ReadInstruction2 = Number(line, "ReadInstruction2");
      meter.SpecialMessageDisplayIndicator = Number(line, "SpecialMessageDisplayIndicator");
      meter.LocationExtraMeter = Text(line, "LocationExtraMeter");
      meter.AdditionalMeterInfo = Text(line, "AdditionalMeterInfo");
      const int32_t sequence = Number(line, "ReadSequence");
      meter.ReadSequence = sequence >= -32768 && sequence <= 32767 ? static_cast<int16_t>(sequence) : 0;
      meter.ReadSequenceText = Str(sequence);
      double number = 0.0;
      if (radioOption && Trim(meter.MeterNumber).size() == 8 && ParseWholeNumber(meter.MeterNumber, number)) {
        meter.TagNumber = ToInt32(number);
        meter.Radio = true;
      }
    } else if (kind == "RTS") {
      meter.SurveyText1 = Text(line, "SurveyText1");
      meter.SurveyText2 = Text(line, "SurveyText2");
    } else if (kind == "RFF") {
      meter.TagNumber = ToInt32(NumericPrefix(Text(line, "RFERTID")));
      meter.GeographicArea = Number(line, "GeographicArea");
      meter.RFFrequency = Text(line, "RFFrequency");
      meter.RFTone = Text(line, "RFTone");
      meter.Tamper = Number(line, "Tamper");
      if (CheckDuplicateTag(Str(meter.TagNumber), customer.Name + " " + customer.Address1, reader->LineNo())) {
        HadProblems = true;
      }
    } else if (kind == "WRR") {
      meter.WandProgram = Text(line, "WandProgram");
      meter.DeviceID = Text(line, "DeviceID");
    } else if (kind == "MTS") {
      meter.SpecialMessageText = Text(line, "SpecialMessageText");
    } else if (kind == "RDG") {
      // One reading a meter: a second line overwrites the first.
      meter.NumberDials = Number(line, "NumberDials");
      meter.PreviousReading = Number(line, "PreviousReading");
      meter.TextPrompt = Text(line, "TextPrompt");
      meter.ReadDirection = Text(line, "ReadDirection");
      meter.CompareCode = Number(line, "CompareCode");
      meter.ValidationCode = Number(line, "ValidationCode");
      meter.ReadMethod = meter.Radio ? "R" : Text(line, "ReadMethod");
      meter.MeterConstant = Number(line, "MeterConstant");
      meter.ConstantFlag = Number(line, "ConstantFlag");
      meter.HHFPosition = Number(line, "HHFPosition");
      meter.NumberDecimals = Number(line, "NumberDecimals");
      meter.High1 = Number(line, "High1");
      meter.Low1 = Number(line, "Low1");
    }
  }
  flush();
  return !HadProblems;
}

}  // namespace hifx
