// Records with named, typed fields over a handheld container. Numeric fields
// sit at fixed offsets at the front of a record, every text behind them closed
// by a NUL; the schema says where. One record buffer moves field values in and
// out and is moved whole to and from the file.
#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "base/CaseBlind.h"
#include "base/KeyedCollection.h"
#include "base/Shell.h"
#include "base/Value.h"
#include "handheld/IPalmFile.h"

namespace hifx {

// Field type codes of a schema entry.
enum FieldTypeCode : int32_t { kFieldText = 0, kFieldInt8 = 1, kFieldInt16 = 2, kFieldInt32 = 3 };

// Container kinds, as GetType reports them.
enum FileTypeCode : int32_t { kFileNone = 0, kFilePDB = 1, kFileVFS = 2 };

class clsPalmDB {
 public:
  // Where a field's value goes, worked out once by a caller that sets the
  // same fields record after record.
  struct Place {
    int16_t index = 0;     // in the schema; 0 for none
    int16_t position = 0;  // the field's
    uint8_t width = 0;     // of a number wholly within the fixed part, else 0
    bool text = false;
  };
  struct SchemaField {
    int32_t type = kFieldText;
    int16_t position = 0;  // byte offset of a number; ordinal from 1 of a text
    std::string name;
    bool firstOfName = true;  // no earlier field has this name in any case
    size_t width = 0;         // bytes of a number, 0 for a text
    Place place;
  };

  explicit clsPalmDB(IShell& shell);

  int16_t CreateDB(int32_t fileType, const std::filesystem::path& fileName, std::string_view title,
                   std::string_view creator, std::string_view dbType, int32_t recordCount,
                   std::string& appInfo, std::string& sortInfo);
  // fileType -1 detects the container; returns -1 when neither takes the
  // file, else the open's status (0 for success).
  int16_t OpenDB(const std::filesystem::path& fileName, int32_t fileType);

  void ClearSchema();
  void AddField(int32_t type, std::string_view name, int16_t position = -1);
  // Fields are mostly reached in schema order: the one after the last found
  // is tried first, here, the other ways out of line.
  int16_t FindItem(std::string_view name) const {
    const auto next = static_cast<size_t>(lastFound_) + 1;
    if (next < schema_.size() && schema_[next].firstOfName && schema_[next].name == name) {
      return lastFound_ = static_cast<int16_t>(next);
    }
    return FindItemFurther(name);
  }
  int16_t FindItem(int32_t index) const {
    return (index >= 0 && index <= FieldCount()) ? static_cast<int16_t>(index) : int16_t{0};
  }
  int16_t FieldCount() const { return fieldCount_; }
  std::string FieldName(int16_t index) const;
  const SchemaField& Field(int16_t index) const { return schema_.at(static_cast<size_t>(index)); }
  int16_t FixedLength() const { return fixedLength_; }
  int16_t TextCount() const { return textCount_; }

  int16_t SetInt8(int16_t offset, const Value& value);
  int16_t SetInt16(int16_t offset, const Value& value);
  int16_t SetInt32(int16_t offset, const Value& value);
  int32_t GetInt8(int16_t offset) const;
  int32_t GetInt16(int16_t offset) const;
  int32_t GetInt32(int16_t offset) const;
  void SetString(int16_t ordinal, const Value& value);
  int16_t AppendString(int16_t offset, std::string_view text, bool pad);
  // Moves ordinal down to 1 as it walks the texts, as callers have seen.
  std::string GetString(int16_t& ordinal) const;

  // Field access by name or schema index. A read failure is shown and gives
  // the empty value; an unknown field reads as null.
  Value Item(std::string_view name);
  Value Item(int32_t index) {
    Value value;
    ReadField(FindItem(index), value);
    return value;
  }
  // The same into a value kept from record to record: a text reuses its room.
  void ReadItem(int32_t index, Value& value) { ReadField(FindItem(index), value); }
  // NumberOf the field's value; a number wholly within the record is read
  // in place, without a value made for it.
  int32_t NumberItem(int32_t index) {
    const int16_t at = FindItem(index);
    const SchemaField& field = schema_[static_cast<size_t>(at)];
    if (field.width != 0 && field.position >= 0 &&
        static_cast<size_t>(field.position) + field.width <= buffer_.size()) {
      return NumberAt(field.position, field.width);
    }
    Value value;
    ReadOtherField(at, value);
    return NumberOf(value);
  }
  // An unknown field is reported and nothing changes.
  void SetItem(std::string_view name, const Value& value);
  void SetItem(int32_t index, const Value& value) {
    if (index <= 0 || index > FieldCount()) return ReportNoField(index);
    SetItem(PlaceOf(static_cast<int16_t>(index)), value);
  }
  Place PlaceOf(int16_t index) const { return schema_.at(static_cast<size_t>(index)).place; }
  // A whole number into a number field, and a text into a text field, are
  // set here; what has to be converted, out of line. Inline, as every field
  // of every record written comes through here.
  void SetItem(Place place, const Value& value) {
    if (const int32_t* whole = value.IfLong()) return SetNumber(place, *whole);
    lastFound_ = place.index;
    if (place.text && value.IsText()) return SetText(place.position, value.Text());
    WriteField(place.index, value);
  }
  // SetItem of a Long, with no value made for it. Inline into every caller:
  // a caller sets the same fields record after record, so the choice of
  // width made in its own code goes the same way each time.
  [[gnu::always_inline]] void SetNumber(Place place, int32_t number) {
    // A caller that sets most fields by index and a few by name goes in
    // field order: the name is looked for behind this one first.
    lastFound_ = place.index;
    if (place.width != 0 && static_cast<size_t>(place.position) + place.width <= buffer_.size() &&
        (place.width != 4 || number >= 0)) {  // SetInt32 has its own rule for these
      return StoreNumber(place.position, place.width, static_cast<uint32_t>(number));
    }
    WriteNumber(place.index, number);
  }
  void WriteNumber(int16_t index, int32_t number);
  // The same for a text, set in place when the field holds a text.
  void SetTextItem(int32_t index, std::string_view text) {
    if (index > 0 && index <= FieldCount() && schema_[static_cast<size_t>(index)].type == kFieldText) {
      return SetText(schema_[static_cast<size_t>(index)].position, text);
    }
    SetItem(index, Value(std::string(text)));
  }

  void AddNew();
  void Rewind();
  bool WriteData();
  bool WriteRaw(std::string_view bytes);
  int16_t RecordCount();
  // The checked end of the file being written (IPalmFile::FinishFile).
  void FinishDB();
  bool ReadData(int32_t& number);
  bool ReadRaw(std::string& bytes, int32_t& number);

  std::string Title();
  std::string Creator();
  std::string DBType();
  std::string AppInfo();
  std::string SortInfo();
  double CreateDate();
  double ModifyDate();
  int16_t Attributes();
  int16_t Position255();

  KeyedCollection<Value> GetValues();
  // Each field of the record with its value, in the schema's order, as
  // GetValues holds them, without a collection built for the record: a name
  // met twice fails as the collection's add would.
  // The value passed is reused from one field to the next.
  template <typename Visit>
  void ForEachValue(Visit&& visit) {
    Value value;
    for (int16_t i = 1; i <= FieldCount(); ++i) {
      const SchemaField& field = schema_[static_cast<size_t>(i)];
      ReadField(i, value);
      if (!field.firstOfName) throw Failure(fail::kDuplicateKey);
      visit(field.name, static_cast<const Value&>(value));
    }
  }
  // Changes whenever a field is added or the fields are cleared, so that
  // what is worked out from the field list can be kept until then.
  uint32_t SchemaGeneration() const { return schemaGeneration_; }
  int32_t GetType() const { return fileType_; }
  const std::string& RawData() const {
    CloseTexts();
    return buffer_;
  }
  // The record is long enough for every number field, so that no field of
  // it fails to read.
  bool HoldsEveryNumber() const { return buffer_.size() >= numbersEnd_; }
  // The number of `width` (1, 2 or 4) bytes at `offset` of the record, read
  // in place, high byte first, as BytesToLong reads it: a 4-byte one past the
  // largest Long reads as 0. Inline, as every number field of every record
  // read comes through here; one past the record's end fails.
  int32_t NumberAt(int16_t offset, size_t width) const {
    if (offset < 0 || static_cast<size_t>(offset) + width > buffer_.size()) return NumberPastTheBuffer(offset, width);
    const auto* b = reinterpret_cast<const uint8_t*>(buffer_.data()) + offset;
    if (width == 1) return b[0];
    if (width == 2) return b[0] << 8 | b[1];
    const uint32_t value = uint32_t{b[0]} << 24 | uint32_t{b[1]} << 16 | uint32_t{b[2]} << 8 | b[3];
    return value > 0x7FFFFFFFu ? 0 : static_cast<int32_t>(value);
  }
  void SetRawData(std::string bytes) {
    textsHeld_ = kAllTexts;
    buffer_ = std::move(bytes);
    BufferChanged();
  }

 private:
  IPalmFile& Container();
  Value ReadField(int16_t index);
  // A number wholly within the record is read here; every other field, and
  // what a read has to say, out of line. Inline, as every number field of
  // every record read comes through here.
  void ReadField(int16_t index, Value& value) {
    const SchemaField& field = schema_[static_cast<size_t>(index)];  // index 0 is an empty text
    if (field.width == 0 || field.position < 0 || static_cast<size_t>(field.position) + field.width > buffer_.size()) {
      return ReadOtherField(index, value);
    }
    const int32_t number = NumberAt(field.position, field.width);
    if (field.type == kFieldInt8) return value.SetInteger(static_cast<int16_t>(number));
    value.SetLong(number);
  }
  void ReadOtherField(int16_t index, Value& value);
  // Text `ordinal` of the buffer, as GetString reads it.
  std::string_view TextAt(int16_t& ordinal) const;
  void WriteField(int16_t index, const Value& value);
  // SetString of a value's text. A text behind those set so far in a new
  // record is added to its end; any other, put in its place.
  void SetText(int16_t ordinal, std::string_view text);
  void ReplaceText(int16_t ordinal, std::string_view text);
  // A whole number into a number field of `width` bytes within the fixed
  // part, high byte first, as the setters write it. False, with nothing
  // written, for a text (width 0) and what the setters treat on their own.
  bool StoreWholeNumber(int16_t offset, size_t width, int32_t number);
  // The low `width` bytes of word at offset, high byte first.
  void StoreNumber(int16_t offset, size_t width, uint32_t word) {
    auto* bytes = reinterpret_cast<uint8_t*>(buffer_.data()) + offset;
    switch (width) {
      case 4:
        bytes[0] = static_cast<uint8_t>(word >> 24);
        bytes[1] = static_cast<uint8_t>(word >> 16);
        bytes[2] = static_cast<uint8_t>(word >> 8);
        bytes[3] = static_cast<uint8_t>(word);
        return;
      case 2:
        bytes[0] = static_cast<uint8_t>(word >> 8);
        bytes[1] = static_cast<uint8_t>(word);
        return;
      default:
        bytes[0] = static_cast<uint8_t>(word);
        return;
    }
  }
  void ReportNoField(std::string_view name);
  void ReportNoField(int32_t index);
  int16_t FindItemFurther(std::string_view name) const;
  [[noreturn]] static void ThrowPastTheEnd();
  // NumberAt of a number that lies past what the buffer holds: past the
  // record's end, or in texts not yet put in it.
  int32_t NumberPastTheBuffer(int16_t offset, size_t width) const;

  IShell& shell_;
  std::unique_ptr<IPalmFile> file_;
  int32_t fileType_ = kFileNone;
  int16_t fixedLength_ = 0;
  int16_t textCount_ = 0;
  size_t numbersEnd_ = 0;  // the length that holds every number field
  // The record. While a new one is filled its texts are added in order: the
  // buffer holds the texts up to the last one set, those behind it are empty
  // and are put in, each as its NUL, before the record is used in any other
  // way. Hence mutable: reading the record completes it.
  mutable std::string buffer_;
  static constexpr int16_t kAllTexts = -1;
  mutable int16_t textsHeld_ = kAllTexts;  // the texts in the buffer while filling
  void CloseTexts() const {
    if (textsHeld_ == kAllTexts) return;  // nothing is written: a record only read stays unchanged
    CloseHeldTexts();
  }
  void CloseHeldTexts() const;
  // Puts in the empty texts from the first not held to the one before
  // `ordinal`, each its NUL, and notes them as left empty.
  void AddEmptyTextsBefore(int16_t ordinal) const;
  // The texts of the record being filled that were put in empty and not set,
  // told apart from those set only when a text set held a NUL.
  mutable std::vector<int16_t> textsLeftEmpty_;
  void PutHeldTextsInPlace(int16_t held);
  std::vector<SchemaField> schema_{SchemaField{}};  // index 0 unused
  int16_t fieldCount_ = 0;                          // schema_'s fields from 1
  uint32_t schemaGeneration_ = 0;
  // First schema index of each name, so a lookup by name needs no scan: the
  // name as written first, then with no regard to case.
  struct ExactHash {
    using is_transparent = void;
    size_t operator()(std::string_view name) const noexcept { return std::hash<std::string_view>{}(name); }
  };
  std::unordered_map<std::string, int16_t, ExactHash, std::equal_to<>> byExactName_;
  mutable int16_t lastFound_ = 0;
  std::unordered_map<std::string, int16_t, CaseBlindHash, CaseBlindEqual> byName_;
  // Where each text of the buffer starts, worked out once a record.
  mutable std::vector<uint32_t> nuls_;
  mutable bool nulsKnown_ = false;
  void BufferChanged() { nulsKnown_ = false; }
  // A number set past the fixed part lands in the texts: they are put in
  // whole first.
  void TextsChanged() {
    CloseTexts();
    BufferChanged();
  }
  // The NULs of the text part, found once and kept up to date by SetString.
  std::vector<uint32_t>& TextNuls() const {
    CloseTexts();
    if (!nulsKnown_) FindTextNuls();
    return nuls_;
  }
  void FindTextNuls() const;
};

}  // namespace hifx
