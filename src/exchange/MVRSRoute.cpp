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
#include "exchange/MVRSFold.h"
#include "exchange/clsExchange.h"
#include "formats/mvrs/clsMVRSDownload.h"
#include "hif/FileVersion.h"

namespace hifx {
namespace {

// Reserve for the code and index records behind the meters.
constexpr int32_t kCodeRecordReserve = 4200;

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
      const int32_t routes = record->GetNumber(Key<"NumberRoutes">());
      routeTotal = Add16(routeTotal, routes == 0 ? 1 : routes);
      counts.table.resize(static_cast<size_t>(std::max<int16_t>(routeTotal, 0)));
    } else if (SameShortText(kind, "RHD")) {
      counts.customerTotal = Add16(counts.customerTotal, record->GetNumber(Key<"NumberCustomerRecords">()));
      counts.meterTotal = Add16(counts.meterTotal, record->GetNumber(Key<"NumberMeterRecords">()));
      MVRSRouteEntry& entry = EntryAt(counts.table, ++filled);
      record->GetText(Key<"RouteNumber">(), entry.RouteNumber);
      record->GetText(Key<"Region">(), entry.Region);
      record->GetText(Key<"Zone">(), entry.Zone);
      record->GetText(Key<"Office">(), entry.Office);
      entry.CycleDate = cycleDate;
      entry.NumberRemoteWandReads = ToInt16(record->GetNumber(Key<"NumberRemoteWandReads">()));
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
  hif.SetNumber(MeterField::RecType, kRecFileHeader);
  hif.SetNumber(MeterField::RouteNbr, static_cast<int32_t>(counts.table.size()));
  hif.SetNumber(MeterField::Sequence, DateNumber(now));
  hif.SetNumber(MeterField::MeterTagNbr, TimeNumber(now));
  hif.SetNumber(MeterField::MeterType, LookupFileVersion(env.shell, kProgramMajor, kProgramMinor));
  hif.SetNumber(MeterField::PrvReading, counts.meterLines);
  // The pattern stands where the value should: the text comes back as it
  // went in. No reader looks at this field.
  hif.SetItem(MeterField::ReadingDate, Value("yyyymmdd"));
  hif.SetItem(MeterField::Initials, Value("HIF loaded from " + source));
  hif.SetItem(
      MeterField::User1,
      Value(clsExchange::CombineUser({std::to_string(counts.customerTotal), std::to_string(counts.meterTotal)})));
  hif.WriteData();
}

// One route record a table entry, in table order.
void WriteRouteRecords(clsHIF& hif, const std::vector<MVRSRouteEntry>& table) {
  for (size_t i = 0; i < table.size(); ++i) {
    const MVRSRouteEntry& entry = table[i];
    hif.AddNew();
    hif.SetNumber(MeterField::RecType, kRecRouteHeader);
    hif.SetNumber(MeterField::RouteNbr, static_cast<int32_t>(i + 1));
    hif.SetNumber(MeterField::PrvReading, entry.MeterCount);
    hif.SetItem(MeterField::Initials, Value(entry.RouteNumber));
    hif.SetItem(MeterField::ResponseText, Value(entry.RouteNumber));
    hif.SetItem(MeterField::User1,
                Value(clsExchange::CombineUser({entry.Region, entry.Zone, entry.Office, TextOf(entry.CycleDate),
                                                std::to_string(entry.NumberRemoteWandReads)})));
    hif.WriteData();
  }
}

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
  const std::string tag = std::to_string(meter.TagNumber);
  hif.AddNew();
  hif.SetNumber(MeterField::RecType, kRecMeter);
  hif.SetNumber(MeterField::RouteNbr, step.route);
  hif.SetNumber(MeterField::Sequence, meter.ReadSequence);
  hif.SetNumber(MeterField::MeterTagNbr, meter.TagNumber);
  static const std::string kCategories = "WGESI";
  if (meter.MeterCategory.size() == 1 && kCategories.find(meter.MeterCategory[0]) != std::string::npos) {
    hif.SetNumber(MeterField::MeterType, static_cast<int32_t>(kCategories.find(meter.MeterCategory[0]) + 1));
  }
  hif.SetNumber(MeterField::Digits, meter.NumberDials);
  hif.SetNumber(MeterField::Decimals, meter.NumberDecimals);
  hif.SetNumber(MeterField::PrvReading, meter.PreviousReading);
  hif.SetNumber(MeterField::MaxReading, meter.High1);
  hif.SetNumber(MeterField::MinReading, meter.Low1);
  hif.SetNumber(MeterField::Status, 0);
  if (meter.ReadMethod == "K") hif.SetNumber(MeterField::ReadType, 2);
  if (meter.ReadMethod == "P" || meter.ReadMethod == "W") hif.SetNumber(MeterField::ReadType, 3);
  if (meter.ReadMethod == "R") hif.SetNumber(MeterField::ReadType, 1);
  if (meter.ReadMethod == "N") hif.SetNumber(MeterField::ReadType, 0);
  hif.SetNumber(MeterField::LstReadingDate, 0);
  hif.SetItem("TamperCount", Value::Long(meter.Tamper));
  hif.SetItem(MeterField::UtilityCode, Value(customer.UtilityID));
  hif.SetNumber(MeterField::Lat, 0);
  hif.SetNumber(MeterField::Lng, 0);
  hif.SetNumber(MeterField::InitPulseCount, 0);
  hif.SetNumber(MeterField::InitTamperCount, 0);
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
