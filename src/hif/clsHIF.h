// The handheld interchange file: the one data file that passes between the
// office and the handheld. A route conversion writes it, the handheld fills in
// the readings of the same records, the reading conversions read it back.
#pragma once

#include <array>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "base/KeyedCollection.h"
#include "base/Shell.h"
#include "base/Value.h"
#include "handheld/clsPalmDB.h"
#include "hif/MeterField.h"

namespace hifx {

// RecType values of the records of a HIF.
enum HifRecType : int32_t {
  kRecFileHeader = 0,
  kRecRouteHeader = 1,
  kRecMeter = 2,
  kRecOrphan = 3,
  kRecLogins = 4,
  kRecCodes = 5,
  kRecIndex = 6,
  kRecAlerts = 7,
  kRecRouteHeaderAlt = 256,  // also taken as a route header by readers
};

inline constexpr std::string_view kHifTitle = "RouteHIF";
inline constexpr std::string_view kHifCreator = "qHVN";
inline constexpr std::string_view kHifDBType = "DATA";
inline constexpr int16_t kLatestSchemaVersion = 3;

class clsHIF {
 public:
  explicit clsHIF(IShell& shell);

  // True when the open FAILED: callers test it so.
  bool OpenHIF(const std::filesystem::path& fileName);
  // fileType 1 for PDB, 2 for VFS; recordCount the table slots (0 default).
  int16_t CreateHIF(const std::filesystem::path& fileName, int32_t fileType, int32_t recordCount);
  void SetVersion(int16_t version);
  void BuildSchema(int16_t version);
  int16_t Version() const { return version_; }

  Value Item(std::string_view name);
  void SetItem(std::string_view name, const Value& value);
  // A meter field by the place the schema gave it when it was built; one the
  // schema lacks reads and writes as by its name.
  Value Item(MeterField field);
  // NumberOf the field's value, a number field read in place.
  int32_t NumberItem(MeterField field) {
    const int16_t index = meterPlaces_[IndexOf(field)].index;
    return index == 0 ? NumberOf(Item(NameOf(field))) : db_->NumberItem(int32_t{index});
  }
  // The same into a value kept from record to record: a text reuses its room.
  void ReadItem(MeterField field, Value& value) {
    const int16_t index = meterPlaces_[IndexOf(field)].index;
    if (index == 0) {
      value = Item(NameOf(field));
    } else {
      db_->ReadItem(int32_t{index}, value);  // a schema index means the schema is built
    }
  }
  void SetItem(MeterField field, const Value& value) {
    const clsPalmDB::Place& place = meterPlaces_[IndexOf(field)];
    if (place.index == 0) return SetItem(NameOf(field), value);
    db_->SetItem(place, value);  // a schema index means the schema is built
  }
  // SetItem of a Long, with no value made for it.
  [[gnu::always_inline]] void SetNumber(MeterField field, int32_t number) {
    const clsPalmDB::Place& place = meterPlaces_[IndexOf(field)];
    if (place.index == 0) return SetItem(NameOf(field), Value::Long(number));
    db_->SetNumber(place, number);
  }
  // A text into a text field as it stands, with no value made for it.
  void SetText(MeterField field, std::string_view text) {
    const int16_t index = meterPlaces_[IndexOf(field)].index;
    if (index == 0) return SetItem(NameOf(field), Value(std::string(text)));
    db_->SetTextItem(int32_t{index}, text);
  }
  void AddNew();
  bool WriteData();
  void Rewind();
  // The next record in sequence.
  bool ReadData();
  KeyedCollection<Value> GetValues();
  int16_t Position255();
  int32_t GetType();
  int16_t RecordCount();
  // The checked end of the file being written: on the disk and closed; raises,
  // naming the file, when that or any earlier write failed.
  void FinishHIF();
  const std::string& RawData();
  void SetRawData(std::string bytes);

  // A code record: RecType, group, flag, the number of entries, then three
  // packed texts an entry and the end mark. The lists hold count entries.
  void AddCodeRecord(int16_t recType, int16_t group, int16_t flag, int16_t count,
                     const std::vector<std::string>& texts1, const std::vector<std::string>& texts2,
                     const std::vector<std::string>& texts3);
  // An index record of one route and one index type; keys sorted, equal keys
  // next to each other, numbers parallel to them.
  void AddIndexRecord(int16_t route, int16_t type, int32_t count, const std::vector<std::string_view>& keys,
                      const std::vector<int16_t>& numbers);
  // With an index record in the buffer: its route, type, and one text an
  // entry, the key and each meter number joined by ":" ("MAIN:12:40").
  void GetIndexRecord(int32_t& route, int32_t& type, int32_t& count, std::vector<std::string>& entries);

  // The typed record layer underneath, for the hand-built code and index
  // records and for readers that walk the schema.
  clsPalmDB& DB();

 private:
  IShell& shell_;
  std::unique_ptr<clsPalmDB> db_;
  int16_t version_ = 0;
  std::array<clsPalmDB::Place, kMeterFieldCount> meterPlaces_{};  // index 0 for none
};

// A code record taken apart, for readers.
struct CodeRecord {
  int32_t recType = 0;
  int32_t group = 0;
  int32_t flag = 0;
  int32_t count = 0;
  std::vector<std::array<std::string, 3>> entries;
};
// Raises a failure for a record cut short or with a count it can't hold.
CodeRecord ReadCodeRecord(const std::string& raw);

// The schema version of a file, told from its first record: a file header
// (RecType 0) with a MeterType above 0 gives that version, anything else 0.
// Returns -1 when the file can't be opened.
int16_t ReadFileVersion(IShell& shell, const std::filesystem::path& fileName);

// Opens the file in hif to be read through, at the version its first record
// gives, after the strict check of its structure. Raises a failure of kind
// BadInput naming the file when it is damaged or can't be read.
void OpenToRead(clsHIF& hif, const std::filesystem::path& fileName);

}  // namespace hifx
