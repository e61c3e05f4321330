// The handheld interchange file: the one data file that passes between the
// office and the handheld. A route conversion writes it, the handheld fills in
// the readings of the same records, the reading conversions read it back.
#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>

#include "base/KeyedCollection.h"
#include "base/Shell.h"
#include "base/Value.h"
#include "handheld/clsPalmDB.h"

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
  void AddNew();
  bool WriteData();
  void Rewind();
  // The next record in sequence.
  bool ReadData();
  KeyedCollection<Value> GetValues();
  int16_t Position255();
  int32_t GetType();
  int16_t RecordCount();
  const std::string& RawData();
  void SetRawData(std::string bytes);

  // The typed record layer underneath, for the hand-built code and index
  // records and for readers that walk the schema.
  clsPalmDB& DB();

 private:
  IShell& shell_;
  std::unique_ptr<clsPalmDB> db_;
  int16_t version_ = 0;
};

// The schema version of a file, told from its first record: a file header
// (RecType 0) with a MeterType above 0 gives that version, anything else 0.
// Returns -1 when the file can't be opened.
int16_t ReadFileVersion(IShell& shell, const std::filesystem::path& fileName);

}  // namespace hifx
