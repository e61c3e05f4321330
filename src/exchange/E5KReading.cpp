// E5000 upload files: two passes over the reading HIF, the first to sum up
// each route, the second to write an "A" line a route, "C" and "S" lines an
// account, "D" and "E" lines a meter, and a closing "Z" line a route.
#include "base/Failure.h"
#include "base/Text.h"
#include "exchange/ExchangeText.h"
#include "exchange/clsExchange.h"
#include "formats/e5000/clsE5KUpload.h"

namespace hifx {
namespace {

// What the first pass learns of a route.
struct E5KRouteSummary {
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
  const int32_t readType = hif.NumberItem(MeterField::ReadType);
  return readType != 4 && hif.NumberItem(MeterField::ReadingDate) != 0 &&
         !(readType == 2 && hif.NumberItem(MeterField::CurReading) == 0);
}

size_t RouteOf(clsHIF& hif, size_t routes) {
  const int32_t route = hif.NumberItem(MeterField::RouteNbr);
  if (route < 0 || static_cast<size_t>(route) >= routes) throw Failure(fail::kSubscript);
  return static_cast<size_t>(route);
}

// What a conversion keeps from pass to pass.
struct E5KUploadRun {
  explicit E5KUploadRun(IShell& shell) : upload(&shell) {}

  clsE5KUpload upload;
  std::string processor;  // of the file header, for every route
  std::string employer;
  std::vector<E5KRouteSummary> summaries = std::vector<E5KRouteSummary>(1);
  size_t current = 0;  // the route whose lines are being written; 0 before the first
  std::string lastAccount;
};

// First pass, one record: the file header gives the file's processor and
// employer numbers, a route header its account count, and a meter that
// passes counts in its route. `routes` is the size of the route list.
void SummariseRecord(E5KUploadRun& run, clsHIF& hif, int32_t recType, size_t routes) {
  if (recType == kRecFileHeader) {
    run.summaries.assign(routes, E5KRouteSummary());
    run.processor = TextOf(hif.Item(MeterField::Initials)).substr(0, 3);
    const std::string response = TextOf(hif.Item(MeterField::ResponseText));
    run.employer = response.substr(response.size() - std::min<size_t>(response.size(), 3));
  } else if (recType == kRecRouteHeader || recType == kRecRouteHeaderAlt) {
    // The route conversion left the download's account count here.
    run.summaries[RouteOf(hif, run.summaries.size())].accounts = hif.NumberItem(MeterField::User1);
  } else if (recType == kRecMeter && Passes(hif)) {
    E5KRouteSummary& summary = run.summaries[RouteOf(hif, run.summaries.size())];
    ++summary.meters;
    if (summary.readDate.empty()) summary.readDate = From(TextOf(hif.Item(MeterField::ReadingDate)), 2);
    const int32_t sequence = hif.NumberItem(MeterField::Sequence);
    if (summary.firstSequence == 0) summary.firstSequence = sequence;
    summary.lastSequence = sequence;
  }
}

// The "A" line that opens a route, with the counts of the first pass.
void WriteRouteStart(E5KUploadRun& run, const std::string& routeText, const E5KRouteSummary& summary) {
  clsRecType& a = *run.upload.SetupRecord("A");
  a.SetText(Key<"Route">(), routeText);
  a.SetLong(Key<"NoofAccounts">(), summary.accounts);
  a.SetLong(Key<"NoofMeters">(), summary.meters);
  a.SetText(Key<"ProcessorNumber">(), run.processor);
  a.SetText(Key<"ReadDate">(), summary.readDate);
  a.SetText(Key<"SurveyQuestionNumber">(), "");
  a.SetLong(Key<"BeginningSequenceNumber">(), summary.firstSequence);
  a.SetLong(Key<"EndingSequenceNumber">(), summary.lastSequence);
  a.SetText(Key<"ResequenceFlag">(), "0");
  run.upload.WriteRecord(a);
}

// The "Z" line that closes a route.
void WriteRouteEnd(E5KUploadRun& run, const std::string& routeText) {
  clsRecType& z = *run.upload.SetupRecord("Z");
  z.SetText(Key<"Route">(), routeText);
  z.SetText(Key<"ProcessorNumber">(), run.processor);
  z.SetText(Key<"EmployerNumber">(), run.employer);
  run.upload.WriteRecord(z);
}

// The "C" line of a new account, and its "S" line when the meter has a
// User1.
void WriteAccountLines(E5KUploadRun& run, clsHIF& hif, const std::string& routeText, const std::string& account,
                       const std::string& user1) {
  clsRecType& c = *run.upload.SetupRecord("C");
  c.SetText(Key<"Route">(), routeText);
  c.SetText(Key<"AccountNumber">(), account);
  c.SetText(Key<"ReadingStatus">(), "2");
  c.SetText(Key<"ResequenceFlag">(), "0");
  c.SetText(Key<"ReadDate">(), From(TextOf(hif.Item(MeterField::ReadingDate)), 4));
  run.upload.WriteRecord(c);
  if (!user1.empty()) {
    clsRecType& s = *run.upload.SetupRecord("S");
    s.SetText(Key<"RecordCategory">(), "02");
    s.SetText(Key<"PropertyVGKey">(), user1);
    run.upload.WriteRecord(s);
  }
}

// The "D" and "E" lines of a meter.
void WriteMeterLines(E5KUploadRun& run, clsHIF& hif, const std::string& user1) {
  clsRecType& d = *run.upload.SetupRecord("D");
  d.SetValue("RelativeMeterNumber", hif.Item(MeterField::User2));
  d.SetValue("MeterNumber", hif.Item(MeterField::MeterSerialNbr));
  d.SetText(Key<"SpecialInstructionsCode2">(), "");
  d.SetText(Key<"MeterConditionCode1">(), "");
  d.SetText(Key<"MeterConditionCode2">(), "");
  d.SetText(Key<"MeterSize">(), user1);
  d.SetText(Key<"MeterChangedFlags">(), "");
  run.upload.WriteRecord(d);
  clsRecType& e = *run.upload.SetupRecord("E");
  e.SetLong(Key<"NumberofDials">(), 0);
  e.SetValue("CurrentReading", hif.Item(MeterField::CurReading));
  e.SetLong(Key<"Decimals">(), 0);
  e.SetValue("ReadTime", hif.Item(MeterField::ReadingTime));
  e.SetText(Key<"ReadChangeFlags">(), "");
  e.SetText(Key<"DisplayCode">(), "");
  e.SetLong(Key<"ReadCount">(), 1);
  e.SetLong(Key<"ReadVerifyFlag">(), 0);
  e.SetText(Key<"NoReadCode">(), "00");
  run.upload.WriteRecord(e);
}

// Second pass, one meter that passes: the "Z" and "A" lines of a change of
// route, the account's lines where the account differs from the meter
// before, and the meter's own lines.
void WriteMeter(E5KUploadRun& run, clsHIF& hif, const std::vector<std::string>& routeInitials) {
  const size_t route = RouteOf(hif, run.summaries.size());
  if (route != run.current) {
    if (run.current != 0) WriteRouteEnd(run, routeInitials[run.current]);
    WriteRouteStart(run, routeInitials[route], run.summaries[route]);
    run.lastAccount.clear();
    run.current = route;
  }
  // Accounts are told apart by the exact text; a route's first meter with
  // no account text therefore opens none.
  const std::string account = TextOf(hif.Item(MeterField::ServiceUniqueID));
  const std::string user1 = TextOf(hif.Item(MeterField::User1));
  if (account != run.lastAccount) {
    WriteAccountLines(run, hif, routeInitials[route], account, user1);
    run.lastAccount = account;
  }
  WriteMeterLines(run, hif, user1);
}

}  // namespace

bool clsExchange::ConvertReadingE5K(int16_t version) {
  ClearRoute();
  RouteInitials.assign(1, std::string());
  E5KUploadRun run(env_.shell);
  run.upload.Open(std::string(Trim(ReadingDestination)));
  ReadingHIF = std::make_unique<clsHIF>(env_.shell);
  ReadingHIF->SetVersion(version);
  if (ReadingHIF->OpenHIF(Trim(ReadingSource))) throw Failure(fail::kFileNotFound, "Could not read HIF file");
  clsHIF& hif = *ReadingHIF;

  // First pass: the file's processor and employer numbers, and each route's
  // name, account count, meters, read date and first and last sequence, in
  // file order.
  while (hif.ReadData()) {
    env_.shell.SetProgressButton(255, hif.Position255());
    const int32_t recType = hif.NumberItem(MeterField::RecType);
    if (recType == kRecFileHeader || recType == kRecRouteHeader || recType == kRecRouteHeaderAlt) {
      KeepRouteRecord(hif, recType);
    }
    SummariseRecord(run, hif, recType, RouteInitials.size());
  }

  // Second pass: the lines of the meters that pass.
  hif.Rewind();
  while (hif.ReadData()) {
    if (hif.NumberItem(MeterField::RecType) == kRecMeter && Passes(hif)) WriteMeter(run, hif, RouteInitials);
  }
  // The file always ends with a "Z" line: with no meter to upload it is the
  // only line, and names no route.
  WriteRouteEnd(run, RouteInitials[run.current]);
  run.upload.Finish();
  return true;
}

}  // namespace hifx
