// What a HIF holds, as the viewer shows it: its routes in one table and the
// meters of a chosen route in another. The file is never changed.
#pragma once

#include <array>
#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "base/Shell.h"
#include "hif/clsHIF.h"

namespace hifx {

struct TextTable {
  std::vector<std::string> columns;
  std::vector<std::vector<std::string>> rows;
};

class HifView {
 public:
  explicit HifView(IShell& shell);

  // Opens the file and fills the route table. On failure logs
  // "Error: Could not read HIF file" and returns false.
  bool Display(const std::filesystem::path& fileName);
  const TextTable& Routes() const { return routes_; }
  // Every meter record of the route, one column per field; orphans are not
  // shown.
  TextTable Meters(int32_t route);
  // The meter table's columns, in order.
  static std::vector<std::string> MeterColumns();

 private:
  IShell& shell_;
  clsHIF hif_;
  TextTable routes_;
};

// Text as a JSON string, quoted: bytes outside printable ASCII as the
// Latin-1 characters of the same codes.
void AppendJsonText(std::string& out, std::string_view text);

// One JSON object of the record in the buffer of hif: schema records by field
// name, code records by group, flag and entries, index records by route,
// type and entries; one that can't be taken apart by its bytes in hex.
std::string RecordToJson(clsHIF& hif);

// The same objects for record after record of one file: each field's quoted
// name is worked out once for as long as the file's field list stands.
class RecordJsonWriter {
 public:
  // The record's object added to the end of out.
  void Append(std::string& out, clsHIF& hif);

 private:
  static constexpr size_t kKeyRoom = 32;     // keys up to this long are moved in one go
  static constexpr size_t kNumberRoom = 11;  // "-2147483648"
  struct PlannedField {
    std::string key;  // `"Name":`, behind a comma from the second on
    std::array<char, kKeyRoom> shortKey;
    int16_t position;
    size_t width;
  };
  // The fields' keys and places, worked out again only when the field list
  // has changed.
  void Plan(const clsPalmDB& db);
  // The fields straight from the record's bytes, when the record holds every
  // number field and is not a hand-built one; false, with nothing added, when
  // it must be read field by field.
  bool AppendInPlace(std::string& out, const clsPalmDB& db) const;
  void AppendFields(std::string& out, clsPalmDB& db);

  const clsPalmDB* db_ = nullptr;
  uint32_t generation_ = 0;
  std::vector<PlannedField> fields_;
  bool inPlace_ = false;  // every name once, every type known, RecType a number
  size_t room_ = 0;       // the most a record's object takes beyond its texts' bytes
  const PlannedField* recType_ = nullptr;
};

}  // namespace hifx
