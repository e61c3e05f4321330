#include "hif/clsHIF.h"

#include <array>

#include "base/Failure.h"
#include "handheld/PalmFileCheck.h"

namespace hifx {
namespace {

struct NumericField {
  const char* name;
  int32_t type;
};

constexpr std::array<const char*, 13> kTextFields = {
    "Initials",       "ResponseText",    "Message", "ServiceAddress", "BillingName",
    "ServiceUniqueID", "MeterSerialNbr", "ReceiverData", "User1",     "User2",
    "User3",          "User4",           "User5"};

// From PrvReading to Lng, the run that every version from 1 holds.
constexpr std::array<NumericField, 15> kReadingFields = {{
    {"PrvReading", kFieldInt32},    {"MaxReading", kFieldInt32},   {"MinReading", kFieldInt32},
    {"CurReading", kFieldInt32},    {"ReadingDate", kFieldInt32},  {"ReadingTime", kFieldInt32},
    {"Status", kFieldInt8},         {"ReadType", kFieldInt8},      {"ResponseCode", kFieldInt16},
    {"LstReadingDate", kFieldInt32}, {"TamperCount", kFieldInt16}, {"UtilityCode", kFieldInt8},
    {"Signal", kFieldInt8},         {"Lat", kFieldInt32},          {"Lng", kFieldInt32},
}};

}  // namespace

clsHIF::clsHIF(IShell& shell) : shell_(shell) {}

clsPalmDB& clsHIF::DB() {
  if (!db_) {
    db_ = std::make_unique<clsPalmDB>(shell_);
    BuildSchema(0);
  }
  return *db_;
}

void clsHIF::BuildSchema(int16_t version) {
  clsPalmDB& db = DB();
  version_ = version;
  db.ClearSchema();
  db.AddField(kFieldInt16, "RecType");
  db.AddField(kFieldInt32, "RouteNbr");
  db.AddField(kFieldInt32, "Sequence");
  db.AddField(kFieldInt32, "MeterTagNbr");
  db.AddField(kFieldInt8, "MeterType");
  if (version != 0) {
    db.AddField(kFieldInt8, "Digits");
    if (version >= 2) {
      db.AddField(kFieldInt8, "Decimals");
      db.AddField(kFieldInt8, "Reserved1");
    }
    for (const auto& field : kReadingFields) db.AddField(field.type, field.name);
  }
  if (version >= 1) {
    db.AddField(kFieldInt32, "ScaleFactor");
    db.AddField(kFieldInt32, "InitReading");
  }
  if (version >= 3) {
    db.AddField(kFieldInt32, "InitPulseCount");
    db.AddField(kFieldInt16, "InitTamperCount");
  }
  if (version != 0) {
    for (const char* name : kTextFields) db.AddField(kFieldText, name);
  }
  for (size_t i = 0; i < kMeterFieldCount; ++i) meterPlaces_[i] = db.PlaceOf(db.FindItem(kMeterFieldNames[i]));
}

void clsHIF::SetVersion(int16_t version) { BuildSchema(version); }

bool clsHIF::OpenHIF(const std::filesystem::path& fileName) {
  return DB().OpenDB(fileName, -1) != 0;
}

int16_t clsHIF::CreateHIF(const std::filesystem::path& fileName, int32_t fileType,
                          int32_t recordCount) {
  std::string appInfo;
  std::string sortInfo;
  return DB().CreateDB(fileType, fileName, kHifTitle, kHifCreator, kHifDBType, recordCount,
                       appInfo, sortInfo);
}

Value clsHIF::Item(std::string_view name) { return DB().Item(name); }
void clsHIF::SetItem(std::string_view name, const Value& value) { DB().SetItem(name, value); }
Value clsHIF::Item(MeterField field) {
  const int16_t index = meterPlaces_[IndexOf(field)].index;
  return index == 0 ? Item(NameOf(field)) : DB().Item(int32_t{index});
}


void clsHIF::AddNew() { DB().AddNew(); }
bool clsHIF::WriteData() { return DB().WriteData(); }
void clsHIF::Rewind() { DB().Rewind(); }

bool clsHIF::ReadData() {
  int32_t number = -1;
  return DB().ReadData(number);
}

KeyedCollection<Value> clsHIF::GetValues() { return DB().GetValues(); }
int16_t clsHIF::Position255() { return DB().Position255(); }
int32_t clsHIF::GetType() { return DB().GetType(); }
int16_t clsHIF::RecordCount() { return DB().RecordCount(); }
void clsHIF::FinishHIF() { DB().FinishDB(); }
const std::string& clsHIF::RawData() { return DB().RawData(); }
void clsHIF::SetRawData(std::string bytes) { DB().SetRawData(std::move(bytes)); }

namespace {

// The version the next record of an open file gives: a file header (RecType
// 0) with a MeterType above 0 gives that version, anything else 0.
int16_t VersionOfNextRecord(clsHIF& hif) {
  if (!hif.ReadData()) return 0;
  const Value recType = hif.Item("RecType");
  const Value meterType = hif.Item("MeterType");
  if (recType.IsEmpty() || meterType.IsEmpty()) return 0;
  if (recType.ToInt32() == kRecFileHeader && meterType.ToInt32() > 0) {
    return static_cast<int16_t>(meterType.ToInt32());
  }
  return 0;
}

}  // namespace

int16_t ReadFileVersion(IShell& shell, const std::filesystem::path& fileName) {
  clsHIF probe(shell);
  if (probe.OpenHIF(fileName)) return -1;
  return VersionOfNextRecord(probe);
}

void OpenToRead(clsHIF& hif, const std::filesystem::path& fileName) {
  RaiseIfDamaged(fileName);
  // The first record is read with the schema of no version, then the file
  // is read again from its start with the schema its version gives.
  hif.SetVersion(0);
  if (hif.OpenHIF(fileName)) {
    std::error_code error;
    const bool there = std::filesystem::exists(fileName, error);
    throw Failure(there ? FailureKind::BadInput : FailureKind::MissingInput, fail::kFileNotFound,
                  "could not read HIF file", fileName,
                  there ? "not a handheld file of a version this program reads" : "no such file");
  }
  hif.SetVersion(VersionOfNextRecord(hif));
  hif.Rewind();
  hif.SetRawData({});
}

}  // namespace hifx
