// E5000 upload files: two passes over the reading HIF, the first to sum up
// each route, the second to write an "A" line a route, "C" and "S" lines an
// account, "D" and "E" lines a meter, and a closing "Z" line a route.
#include "base/Failure.h"
#include "exchange/ExchangeText.h"
#include "exchange/clsExchange.h"
#include "formats/e5000/clsE5KUpload.h"

namespace hifx {
namespace {

// What the first pass learns of a route.
struct E5kRouteSummary {
  int32_t accounts = 0;
  int32_t meters = 0;
  std::string readDate;
  int32_t firstSequence = 0;
  int32_t lastSequence = 0;
};

// The text from the character at `from` (counted from 0) on.
std::string From(const std::string& text, size_t from) { return from < text.size() ? text.substr(from) : ""; }

// Whether a meter goes into the upload. A meter without a date was never
// visited; one of ReadType 2 with a reading of 0 counts as unread, one of
// ReadType 1 with 0 is written.
bool Passes(clsHIF& hif) {
  const int32_t readType = NumberOf(hif.Item("ReadType"));
  return readType != 4 && NumberOf(hif.Item("ReadingDate")) != 0 &&
         !(readType == 2 && NumberOf(hif.Item("CurReading")) == 0);
}

size_t RouteOf(clsHIF& hif, size_t routes) {
  const int32_t route = NumberOf(hif.Item("RouteNbr"));
  if (route < 0 || static_cast<size_t>(route) >= routes) throw Failure(fail::kSubscript);
  return static_cast<size_t>(route);
}

}  // namespace

bool clsExchange::ConvertReadingE5K(int16_t version) {
  ClearRoute();
  RouteInitials.assign(1, std::string());
  clsE5KUpload upload(&env_.shell);
  upload.Open(Trim(ReadingDestination));
  ReadingHIF = std::make_unique<clsHIF>(env_.shell);
  ReadingHIF->SetVersion(version);
  if (ReadingHIF->OpenHIF(Trim(ReadingSource))) throw Failure(fail::kFileNotFound, "Could not read HIF file");
  clsHIF& hif = *ReadingHIF;

  // First pass: the file's processor and employer numbers, and each route's
  // name, account count, meters, read date and first and last sequence, in
  // file order.
  std::string processor;
  std::string employer;
  std::vector<E5kRouteSummary> summaries(1);
  while (hif.ReadData()) {
    env_.shell.SetProgressButton(255, hif.Position255());
    const int32_t recType = NumberOf(hif.Item("RecType"));
    if (recType == kRecFileHeader) {
      KeepRouteRecord(hif, recType);
      summaries.assign(RouteInitials.size(), E5kRouteSummary());
      processor = TextOf(hif.Item("Initials")).substr(0, 3);
      const std::string response = TextOf(hif.Item("ResponseText"));
      employer = response.substr(response.size() - std::min<size_t>(response.size(), 3));
    } else if (recType == kRecRouteHeader || recType == kRecRouteHeaderAlt) {
      KeepRouteRecord(hif, recType);
      // The route conversion left the download's account count here.
      summaries[RouteOf(hif, summaries.size())].accounts = NumberOf(hif.Item("User1"));
    } else if (recType == kRecMeter && Passes(hif)) {
      E5kRouteSummary& summary = summaries[RouteOf(hif, summaries.size())];
      ++summary.meters;
      if (summary.readDate.empty()) summary.readDate = From(TextOf(hif.Item("ReadingDate")), 2);
      const int32_t sequence = NumberOf(hif.Item("Sequence"));
      if (summary.firstSequence == 0) summary.firstSequence = sequence;
      summary.lastSequence = sequence;
    }
  }

  // Second pass: the lines of the meters that pass, a route's "A" and "Z"
  // lines around them, and an account's "C" and "S" lines wherever the
  // account differs from the meter before.
  const auto writeRouteEnd = [&](size_t route) {
    clsRecType& z = *upload.SetupRecord("Z");
    z.SetValue("Route", Value(RouteInitials[route]));
    z.SetValue("ProcessorNumber", Value(processor));
    z.SetValue("EmployerNumber", Value(employer));
    upload.WriteRecord(z);
  };
  size_t current = 0;
  std::string lastAccount;
  hif.Rewind();
  while (hif.ReadData()) {
    if (NumberOf(hif.Item("RecType")) != kRecMeter || !Passes(hif)) continue;
    const size_t route = RouteOf(hif, summaries.size());
    if (route != current) {
      if (current != 0) writeRouteEnd(current);
      const E5kRouteSummary& summary = summaries[route];
      clsRecType& a = *upload.SetupRecord("A");
      a.SetValue("Route", Value(RouteInitials[route]));
      a.SetValue("NoofAccounts", Value::Long(summary.accounts));
      a.SetValue("NoofMeters", Value::Long(summary.meters));
      a.SetValue("ProcessorNumber", Value(processor));
      a.SetValue("ReadDate", Value(summary.readDate));
      a.SetValue("SurveyQuestionNumber", Value(""));
      a.SetValue("BeginningSequenceNumber", Value::Long(summary.firstSequence));
      a.SetValue("EndingSequenceNumber", Value::Long(summary.lastSequence));
      a.SetValue("ResequenceFlag", Value("0"));
      upload.WriteRecord(a);
      lastAccount.clear();
      current = route;
    }
    // Accounts are told apart by the exact text; a route's first meter with
    // no account text therefore opens none.
    const std::string account = TextOf(hif.Item("ServiceUniqueID"));
    const std::string user1 = TextOf(hif.Item("User1"));
    if (account != lastAccount) {
      clsRecType& c = *upload.SetupRecord("C");
      c.SetValue("Route", Value(RouteInitials[route]));
      c.SetValue("AccountNumber", Value(account));
      c.SetValue("ReadingStatus", Value("2"));
      c.SetValue("ResequenceFlag", Value("0"));
      c.SetValue("ReadDate", Value(From(TextOf(hif.Item("ReadingDate")), 4)));
      upload.WriteRecord(c);
      if (!user1.empty()) {
        clsRecType& s = *upload.SetupRecord("S");
        s.SetValue("RecordCategory", Value("02"));
        s.SetValue("PropertyVGKey", Value(user1));
        upload.WriteRecord(s);
      }
      lastAccount = account;
    }
    clsRecType& d = *upload.SetupRecord("D");
    d.SetValue("RelativeMeterNumber", hif.Item("User2"));
    d.SetValue("MeterNumber", hif.Item("MeterSerialNbr"));
    d.SetValue("SpecialInstructionsCode2", Value(""));
    d.SetValue("MeterConditionCode1", Value(""));
    d.SetValue("MeterConditionCode2", Value(""));
    d.SetValue("MeterSize", Value(user1));
    d.SetValue("MeterChangedFlags", Value(""));
    upload.WriteRecord(d);
    clsRecType& e = *upload.SetupRecord("E");
    e.SetValue("NumberofDials", Value::Long(0));
    e.SetValue("CurrentReading", hif.Item("CurReading"));
    e.SetValue("Decimals", Value::Long(0));
    e.SetValue("ReadTime", hif.Item("ReadingTime"));
    e.SetValue("ReadChangeFlags", Value(""));
    e.SetValue("DisplayCode", Value(""));
    e.SetValue("ReadCount", Value::Long(1));
    e.SetValue("ReadVerifyFlag", Value::Long(0));
    e.SetValue("NoReadCode", Value("00"));
    upload.WriteRecord(e);
  }
  // The file always ends with a "Z" line: with no meter to upload it is the
  // only line, and names no route.
  writeRouteEnd(current);
  upload.Finish();
  return true;
}

}  // namespace hifx
