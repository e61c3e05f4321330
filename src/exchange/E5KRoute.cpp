// E5000 download files: two passes, the first to find the routes and count
// their meters and accounts, the second to gather the lines of each meter
// and write it as one record of the route HIF. The layout is the format's
// own: the map gives no columns.
#include <array>
#include <initializer_list>
#include <utility>

#include "base/Numbers.h"
#include "base/Text.h"
#include "exchange/ExchangeText.h"
#include "exchange/clsExchange.h"
#include "formats/e5000/E5KCatalogue.h"
#include "formats/e5000/clsE5KDownload.h"

namespace hifx {
namespace {

// What the lines of an account ("A", "B", "E", "C") give every meter of it.
// Nothing empties it: a field an account's lines don't give stays as the
// account before left it.
struct E5KAccount {
  std::string AccountNumber;
  Value MeterSequenceNumber;
  std::string SpecialInstruction;
  std::string CustomerName;
  std::string Address;
  std::string CustomerAddressLotandPlan;
  std::string PropertyVGKey;
};

// What the lines of a meter ("D", "H" or "I", "K01", "K05", "L") give it;
// emptied after each write. Only the fields that reach the HIF are kept.
struct E5KMeter {
  bool pending = false;
  std::string SpecialInstructions;
  std::string MeterSerialNumber;
  std::string MeterType;
  Value NumberofDials;
  Value MinimumRead;
  Value MaximumRead;
  Value PriorRead;
  Value NoDecimals;
  std::string MeterLocationDesc1;
  std::string MeterLocationDesc2;
  std::string Location;
};

std::string TextField(const clsRecType& record, std::string_view name) {
  return std::string(Trim(record.GetText(name)));
}

// The parts joined by single blanks and trimmed as a whole: an empty part
// in the middle leaves two blanks.
std::string JoinTrimmed(std::initializer_list<const std::string*> parts) {
  std::string joined;
  bool first = true;
  for (const std::string* part : parts) {
    if (!first) joined += ' ';
    joined += *part;
    first = false;
  }
  return std::string(Trim(joined));
}

// The HIF meter type of an E5000 meter type letter; 0 for a letter it
// doesn't know, which leaves the field unset.
int32_t HifMeterType(const std::string& letter) {
  static constexpr std::array<std::pair<std::string_view, int32_t>, 5> kTypes = {
      {{"W", 1}, {"G", 2}, {"E", 3}, {"S", 4}, {"I", 5}}};
  for (const auto& [code, type] : kTypes) {
    if (letter == code) return type;
  }
  return 0;
}

void TakeAccountLine(const clsRecType& record, E5KAccount& account) {
  const std::string& kind = record.IDText;
  if (SameShortText(kind, "A")) {
    account.AccountNumber = TextField(record, "AccountNumber");
    account.MeterSequenceNumber = record.GetValue("MeterSequenceNumber");
    account.SpecialInstruction = TextField(record, "SpecialInstruction");
  } else if (SameShortText(kind, "B")) {
    account.CustomerName = TextField(record, "CustomerName");
    account.Address = TextField(record, "Address");
  } else if (SameShortText(kind, "E")) {
    account.CustomerAddressLotandPlan = TextField(record, "CustomerAddressLotandPlan");
  } else if (SameShortText(kind, "C")) {
    account.PropertyVGKey = TextField(record, "PropertyVGKey");
  }
}

void TakeMeterLine(const clsRecType& record, E5KMeter& meter) {
  const std::string& kind = record.IDText;
  if (SameShortText(kind, "D")) {
    meter.SpecialInstructions = TextField(record, "SpecialInstructions");
  } else if (SameShortText(kind, "H") || SameShortText(kind, "I")) {
    meter.pending = true;
    meter.MeterSerialNumber = TextField(record, "MeterSerialNumber");
    meter.NumberofDials = record.GetValue("NumberofDials");
    meter.MinimumRead = record.GetValue("MinimumRead");
    meter.MaximumRead = record.GetValue("MaximumRead");
    meter.PriorRead = record.GetValue("PriorRead");
    meter.MeterType = TextField(record, "MeterType");
    meter.NoDecimals = record.GetValue("NoDecimals");
  } else if (SameShortText(kind, "K01")) {
    meter.MeterLocationDesc1 = TextField(record, "MeterLocationDesc1");
  } else if (SameShortText(kind, "K05")) {
    meter.MeterLocationDesc2 = TextField(record, "MeterLocationDesc2");
  } else if (SameShortText(kind, "L")) {
    meter.Location = TextField(record, "Location");
  }
}

}  // namespace

bool clsExchange::IsAllDigits(const std::string& text) {
  for (const char c : Trim(text)) {
    if (c < '0' || c > '9') return false;
  }
  return true;
}

// What the conversion keeps from step to step.
struct clsExchange::E5KRouteRun {
  E5KRouteRun(IShell& shell, std::string sourceName) : download(&shell), source(std::move(sourceName)) {}

  clsE5KDownload download;
  const std::string source;
  std::vector<int32_t> accounts{0};  // of each route's "Z" line, by route
  int32_t meters = 0;
  size_t route = 0;  // the route of the lines being read
  E5KAccount account;
  E5KMeter meter;
};

// First pass: the routes of the "F" lines, the meters of the "H" and "I"
// lines under each, and the account count of each route's "Z" line.
void clsExchange::CountE5KRoutes(E5KRouteRun& run) {
  clsE5KDownload& download = run.download;
  while (const clsRecType* record = download.ReadNext()) {
    env_.shell.SetProgressButton(255, download.Position255());
    const std::string& kind = record->IDText;
    if (SameShortText(kind, "F")) {
      run.route = static_cast<size_t>(AddRoute(TextField(*record, "Route")));
      run.accounts.resize(RouteNames.size(), 0);
    } else if (SameShortText(kind, "H") || SameShortText(kind, "I")) {
      CountUp(RouteCounts[run.route]);
      ++run.meters;
    } else if (SameShortText(kind, "Z")) {
      run.accounts[run.route] = NumberOf(record->GetValue("NumberofAccounts"));
    } else if (kind == kE5KUnknownKind) {
      Log("Error: Unknown record type '" + TextOf(record->GetValue("RecID")) + "' at line " +
          std::to_string(download.LineNo()));
    }
  }
}

// The route HIF with its file header and route headers; false, logged, when
// it can't be made.
bool clsExchange::CreateE5KRouteFile(E5KRouteRun& run) {
  if (!RecordsFit(run.meters)) return false;
  const int32_t records = run.meters + static_cast<int32_t>(RouteNames.size() - 1) + 2 + 2100;
  const int32_t fileType = (RouteHIFType == "PRC" || RouteHIFType == "PDB") ? kFilePDB : kFileVFS;
  if (ActiveHIF->CreateHIF(RouteFile.Written(), fileType, records) != 0) {
    return Fail("Error: Could not Create Route HIF File");
  }
  WriteFileHeader(run.source, run.meters, ActiveHIF->Version());
  // The account count goes to the route header, where the reading
  // conversion finds it again.
  std::vector<std::string> accountTexts;
  accountTexts.reserve(run.accounts.size());
  for (const int32_t count : run.accounts) accountTexts.push_back(std::to_string(count));
  WriteRouteHeaders(accountTexts);
  return true;
}

// Second pass: the lines of each meter gathered, and the meter written when
// the line of the next one begins.
void clsExchange::ReadE5KMeters(E5KRouteRun& run) {
  clsE5KDownload& download = run.download;
  run.route = 0;
  while (const clsRecType* record = download.ReadNext()) {
    env_.shell.SetProgressButton(255, download.Position255());
    const std::string& kind = record->IDText;
    if (SameShortText(kind, "F")) {
      WriteE5KMeter(run);
      run.route = static_cast<size_t>(AddRoute(TextField(*record, "Route")));
    } else if (SameShortText(kind, "A") || SameShortText(kind, "D") || SameShortText(kind, "H") ||
               SameShortText(kind, "I")) {
      WriteE5KMeter(run);
    }
    TakeAccountLine(*record, run.account);
    TakeMeterLine(*record, run.meter);
  }
  WriteE5KMeter(run);
}

// The pending meter, if any, as one record of the route HIF.
void clsExchange::WriteE5KMeter(E5KRouteRun& run) {
  const E5KAccount& account = run.account;
  E5KMeter& meter = run.meter;
  if (!meter.pending) return;
  clsHIF& hif = *ActiveHIF;
  const std::string& routeText = RouteNames[run.route];
  const std::string& serial = meter.MeterSerialNumber;
  // Set in the order of the record's fields.
  hif.AddNew();
  hif.SetNumber(MeterField::RecType, kRecMeter);
  hif.SetNumber(MeterField::RouteNbr, static_cast<int32_t>(run.route));
  hif.SetItem(MeterField::Sequence, account.MeterSequenceNumber);
  hif.SetItem(MeterField::MeterTagNbr, Value::Double(NumericPrefix(serial)));
  if (const int32_t type = HifMeterType(meter.MeterType); type != 0) hif.SetNumber(MeterField::MeterType, type);
  hif.SetItem(MeterField::Digits, meter.NumberofDials);
  hif.SetItem(MeterField::Decimals, meter.NoDecimals);
  hif.SetItem(MeterField::PrvReading, meter.PriorRead);
  hif.SetItem(MeterField::MaxReading, meter.MaximumRead);
  hif.SetItem(MeterField::MinReading, meter.MinimumRead);
  hif.SetNumber(MeterField::Status, 0);
  hif.SetNumber(MeterField::ReadType, IsAllDigits(serial) ? 1 : 2);
  const std::string billing = JoinTrimmed({&account.SpecialInstruction, &meter.SpecialInstructions,
                                           &meter.MeterLocationDesc1, &meter.MeterLocationDesc2});
  hif.SetItem(MeterField::Message, Value(Advanced().LookupMessage(billing, routeText, account.AccountNumber, serial, "")));
  hif.SetItem(MeterField::ServiceAddress,
              Value(JoinTrimmed({&account.Address, &account.CustomerAddressLotandPlan, &meter.Location})));
  hif.SetItem(MeterField::BillingName, Value(account.CustomerName));
  hif.SetItem(MeterField::ServiceUniqueID, Value(account.AccountNumber));
  hif.SetItem(MeterField::MeterSerialNbr, Value(serial));
  hif.SetItem(MeterField::ReceiverData, Value(""));
  hif.SetItem(MeterField::User1, Value(account.PropertyVGKey));
  hif.SetItem(MeterField::User5, Value(""));
  // A repeated serial spoils the file, but the meter is written all the
  // same. The line goes as text behind a blank.
  if (CheckDuplicateTag(serial, routeText, " " + std::to_string(run.download.LineNo()))) HadProblems = true;
  WriteIndexedMeter();
  meter = E5KMeter();
}

bool clsExchange::ConvertRouteE5K() {
  E5KRouteRun run(env_.shell, std::string(Trim(RouteSource)));
  if (!run.download.OpenFile(run.source)) return false;
  CountE5KRoutes(run);
  if (!CreateE5KRouteFile(run)) return false;
  if (!run.download.OpenFile(run.source)) return false;
  ReadE5KMeters(run);
  return !HadProblems;
}

}  // namespace hifx
