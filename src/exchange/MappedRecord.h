// A record read from a HIF for an output line: its values by their place in
// the file's schema, and where each field of the map finds its value there.
// The fields are matched by name once a run, so no record is looked up by
// name.
#pragma once

#include <cstdint>
#include <vector>

#include "base/Value.h"
#include "handheld/clsPalmDB.h"
#include "maps/clsExchMap.h"

namespace hifx {

class MappedRecord {
 public:
  // Matches each of the map's fields with the schema's field of its name,
  // and lays out the line a fixed-column map makes.
  void Plan(const clsExchMap& map, const clsPalmDB& db);
  // Where each field that a fixed-column map writes starts in the line, by
  // map field (from 0), and the length of the line. Each such field is
  // appended to the line, or written over the columns the line has reached,
  // and the line grows the same way for every record: a line exactly as
  // long as the field's position is appended to, so that field lands one
  // column late, as the files have always come out.
  size_t FixedColumn(size_t position) const { return fixedColumn_[position]; }
  size_t FixedLength() const { return fixedLength_; }
  // Takes the record in db's buffer: a short one, or one of a schema that
  // names a field twice, field by field at once, so that its messages and
  // failure come in that order; any other a field at a time as each is
  // first asked for. The buffer must hold the record until the next Read: a
  // field written to it before it is asked for reads as written.
  void Read(clsPalmDB& db);
  // The value of the map's field at position (from 0); none when the
  // schema has no field of its name.
  const Value* ForMapField(size_t position);
  // The value of the schema's field at index; failure 5 for index 0, a
  // field the schema lacks, as a look-up of a missing name is.
  Value& At(int16_t index);

 private:
  Value& Take(size_t index);

  std::vector<int16_t> schemaIndex_;  // by map field, 0 for none
  std::vector<size_t> fixedColumn_;   // by map field, from 0
  size_t fixedLength_ = 0;
  bool namesOnce_ = true;             // no name of the schema comes twice
  clsPalmDB* db_ = nullptr;
  std::vector<Value> values_;     // by schema index, from 1
  std::vector<uint64_t> readIn_;  // the record each value was read from
  uint64_t record_ = 0;           // the records read so far
};

}  // namespace hifx
