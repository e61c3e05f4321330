// Files of given records: written through clsHIF, field by field or as they
// are, and the bytes such a file must have, built straight from the two
// container layouts so that a test can compare a written file with them byte
// for byte.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <utility>
#include <vector>

#include "hif/clsHIF.h"
#include "support/TempDir.h"

namespace hifx::test {

// A PDB HIF: the 78-byte header, a table of `slotCount` slots, the records.
inline std::string PdbImage(uint32_t slotCount, const std::vector<std::string>& records) {
  std::string header = std::string("RouteHIF") + std::string(24, '\0');  // name
  header += std::string(28, '\0');                                        // attributes to SortInfo
  header += "DATAqHVN";
  header += std::string(8, '\0');  // seed, next record list
  header += BigEndian(static_cast<uint32_t>(records.size()), 2);
  std::string table;
  std::string data;
  uint32_t offset = 78 + 8 * slotCount;
  for (size_t i = 0; i < records.size(); ++i) {
    table += BigEndian(offset, 4) + '\0' + '\0' + BigEndian(static_cast<uint32_t>(i), 2);
    offset += static_cast<uint32_t>(records[i].size());
    data += records[i];
  }
  table.resize(8 * slotCount, '\0');
  return header + table + data;
}

// A VFS HIF: each record behind its 4-byte length.
inline std::string VfsImage(const std::vector<std::string>& records) {
  std::string bytes;
  for (const auto& record : records) {
    bytes += BigEndian(static_cast<uint32_t>(record.size()), 4) + record;
  }
  return bytes;
}

inline std::string HifImage(int32_t fileType, uint32_t slotCount,
                            const std::vector<std::string>& records) {
  return fileType == kFilePDB ? PdbImage(slotCount, records) : VfsImage(records);
}

// One field of a record being written: a number or a text.
struct Field {
  Field(std::string n, int32_t number) : name(std::move(n)), value(Value::Long(number)) {}
  Field(std::string n, const char* text) : name(std::move(n)), value(Value(text)) {}
  Field(std::string n, std::string text) : name(std::move(n)), value(Value(std::move(text))) {}
  std::string name;
  Value value;
};

// Writes schema records to a new file, each from the fields it names (the
// rest zero), keeping every record's bytes in file order.
class HifWriter {
 public:
  HifWriter(IShell& shell, const std::filesystem::path& path, int16_t version = 3, int32_t fileType = kFilePDB,
            int32_t slotCount = 100)
      : hif(shell) {
    hif.SetVersion(version);
    hif.CreateHIF(path, fileType, slotCount);
  }
  void Add(std::initializer_list<Field> fields) {
    hif.AddNew();
    for (const Field& f : fields) hif.SetItem(f.name, f.value);
    Write();
  }
  // Writes the record as it stands: one built through hif.
  void Write() {
    records.push_back(hif.RawData());
    hif.WriteData();
  }

  clsHIF hif;
  std::vector<std::string> records;
};

// Writes the records, as they are, to a new file of that container.
inline void WriteRecords(IShell& shell, const std::filesystem::path& path, int32_t fileType,
                         int32_t slotCount, const std::vector<std::string>& records) {
  clsHIF hif(shell);
  hif.CreateHIF(path, fileType, slotCount);
  for (const auto& record : records) {
    hif.SetRawData(record);
    hif.WriteData();
  }
}

}  // namespace hifx::test
