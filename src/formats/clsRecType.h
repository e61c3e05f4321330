// One kind of fixed-column record: the text that identifies its lines and
// its fields in order. A file class builds one per kind and reuses it for
// every line; conversions then work by field name only.
#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "base/CaseBlind.h"
#include "base/KeyedCollection.h"
#include "base/Shell.h"
#include "base/Text.h"
#include "base/Value.h"
#include "formats/FieldKey.h"
#include "formats/clsField.h"

namespace hifx {

class clsRecType {
 public:
  // Messages of the record type (an unknown field type, a failed line) are
  // shown through the shell when one is given.
  explicit clsRecType(IShell* shell = nullptr) : shell_(shell) {}

  std::string RawText;  // the line last given to Parse
  int16_t IDStart = 0;
  int16_t IDLength = 0;
  std::string IDText;

  void SetID(int16_t start, int16_t length, std::string id);
  // Appends a field; start 0 places it straight behind the fields so far.
  // A name already present, in any case, is failure 457.
  void AddField(std::string fieldName, int16_t fieldType, int16_t start, int16_t length);
  // The sum of the widths of all fields ever added.
  int16_t RecLen() const { return recLen_; }
  // True when the identifying columns of the line hold IDText, case and all.
  // Inline: a reader tries every kind it knows on every line.
  bool TestID(std::string_view line) const {
    if (IDStart < 1 || IDLength < 0) return false;
    const auto start = static_cast<size_t>(IDStart - 1);
    if (start >= line.size()) return IDText.empty();
    const std::string_view id = line.substr(start, static_cast<size_t>(IDLength));
    return SameShortText(id, IDText);
  }
  void ClearFields();
  void ClearValues();
  // Every field's value from the line; fields past its end read as zeros.
  void Parse(std::string_view line);
  // Walks the fields as a debugging aid would; leaves no trace.
  std::string Dump() const;
  // The value of a field, or empty when it has none.
  const Value& GetValue(std::string_view name) const;
  // The value as TextOf gives it. A text field still lying in the parsed
  // line is read from it as it stands, without keeping a value.
  std::string GetText(std::string_view name) const;
  std::string GetText(const FieldKey& key) const;
  // GetText written over `into`, which keeps its room.
  void GetText(const FieldKey& key, std::string& into) const;
  // The value as NumberOf gives it, a zero-filled number field read from
  // the parsed line in the same way.
  int32_t GetNumber(std::string_view name) const;
  int32_t GetNumber(const FieldKey& key) const;
  void SetValue(std::string_view name, Value value);
  // SetValue of a text or a Long, written over the value the field held
  // before, so that a line kind filled line after line keeps its room.
  void SetText(std::string_view name, std::string_view text);
  void SetLong(std::string_view name, int32_t number);
  // The same, with the field found by its key.
  void SetValue(const FieldKey& key, Value value);
  void SetText(const FieldKey& key, std::string_view text);
  void SetLong(const FieldKey& key, int32_t number);
  // Clears the values; always false.
  bool Init();
  // The line made from the values, padded with blanks to `length` but never
  // cut. Fields without a value are skipped; a failure is shown and gives an
  // empty text.
  std::string Buffer(int16_t length) const;
  // The same written over `line`, which keeps its room.
  void Buffer(int16_t length, std::string& line) const;

  const std::vector<clsField>& Fields() const { return fields_; }

 private:
  const clsField* FindField(std::string_view name, size_t& slot) const;
  const clsField* FindField(const FieldKey& key, size_t& slot) const;
  // What GetValue, GetText and GetNumber give of a field found, or of the
  // name when none has it.
  const Value& ValueOf(const clsField* field, size_t slot, std::string_view name) const;
  std::string TextOfField(const clsField* field, size_t slot, std::string_view name) const;
  int32_t NumberOfField(const clsField* field, size_t slot, std::string_view name) const;

  IShell* shell_;
  int16_t recLen_ = 0;
  std::vector<clsField> fields_;
  // Fields by name: an open-addressed table of field numbers from 1, keyed
  // by a signature of the name.
  static constexpr size_t kTableBits = 7;
  static constexpr size_t kTableSize = size_t{1} << kTableBits;
  static size_t SlotOf(uint32_t signature);
  std::vector<uint32_t> signatures_;  // one a field
  std::array<uint16_t, kTableSize> table_{};
  struct NameHit {
    const char* name = nullptr;
    size_t slot = 0;
  };
  // Where a name's text was found, by the text's address: an open table
  // filled to half at most, so that names met line after line stay found.
  static constexpr size_t kHitCacheBits = 7;
  static constexpr size_t kHitCacheSize = size_t{1} << kHitCacheBits;
  mutable std::array<NameHit, kHitCacheSize> hits_{};
  mutable size_t hitCount_ = 0;
  NameHit* HitFor(const char* address) const;
  // The search behind FindField when the address isn't remembered, kept
  // apart so that the remembered case stays short.
  [[gnu::noinline]] const clsField* FindFieldByName(std::string_view name, size_t& slot, NameHit* hit) const;
  // Where a field's value stands. A kind whose fields are all usable and
  // apart has its texts and whole numbers written into the line as they are
  // set, so that building the line only copies it.
  enum State : uint8_t {
    kUnset,       // no value since the clear
    kValue,       // the value is kept; its columns are written when built
    kPending,     // parsed: the value is taken from the line when asked for
    kRendered,    // the value is kept and its columns written already
    kTextInLine,  // a text that stands whole in its columns, first bytes on
  };
  enum Placement : uint8_t { kOnBuild, kTextAtSet, kWholeAtSet };
  void Materialize(size_t slot) const {
    if (state_[slot] == kPending || state_[slot] == kTextInLine) TakeValue(slot);
  }
  void TakeValue(size_t slot) const;
  std::string_view TextInLine(size_t slot) const {
    return std::string_view(line_).substr(static_cast<size_t>(fields_[slot].Start - 1), textLength_[slot]);
  }
  // Decides which fields are written as they are set, after the fields
  // changed; values written so far are kept as values.
  void PlanColumns();
  // The value a set writes over: the field's, marked as set, or when no
  // field has the name the one kept under it aside, empty when new.
  Value& ValueToSet(const clsField* field, size_t slot, std::string_view name) {
    if (field == nullptr) return OtherValueToSet(name);
    MarkSet(slot, kValue);
    return values_[slot];
  }
  // A field's value now stands as `state` says; the line reaches its end.
  void MarkSet(size_t slot, State state) const {
    state_[slot] = state;
    end_ = std::max(end_, stop_[slot]);
    const uint64_t bit = uint64_t{1} << slot;
    toBuild_ = state == kValue || state == kPending ? toBuild_ | bit : toBuild_ & ~bit;
  }
  [[gnu::noinline]] Value& OtherValueToSet(std::string_view name);
  void SetTextOf(const clsField* field, size_t slot, std::string_view name, std::string_view text);
  // The set a writer makes most: a text that fits into a text field not set
  // since the clear, whose columns are still blank. False, with nothing
  // done, for any other.
  bool SetTextIntoBlank(const clsField* field, size_t slot, std::string_view text) {
    if (field == nullptr || placement_[slot] != kTextAtSet || state_[slot] != kUnset ||
        text.size() > static_cast<size_t>(field->Length)) {
      return false;
    }
    std::copy_n(text.data(), text.size(), line_.data() + (field->Start - 1));
    lineWritten_ = true;
    textLength_[slot] = static_cast<uint16_t>(text.size());
    state_[slot] = kTextInLine;
    end_ = std::max(end_, stop_[slot]);
    return true;
  }
  void SetLongOf(const clsField* field, size_t slot, std::string_view name, int32_t number);
  void SetValueOf(const clsField* field, size_t slot, std::string_view name, Value value);
  // A field of a value kept, or of a parsed line, written into the line.
  void BuildField(size_t slot, std::string& line) const;
  // The slot of each key's field, by key number: 0 not looked for yet,
  // kNoField for a key no field has, else the slot + 1.
  static constexpr uint16_t kNoField = UINT16_MAX;
  mutable std::vector<uint16_t> slotOfKey_;
  // One a field, in field order; a value counts only by its state, and
  // keeps its room when cleared.
  mutable std::vector<Value> values_;
  mutable std::vector<uint8_t> state_;
  std::vector<uint16_t> textLength_;  // of a kTextInLine field
  std::vector<uint8_t> placement_;
  std::vector<size_t> stop_;  // past the field's last column, from 0
  // The line as the fields written at set time make it, blank elsewhere, as
  // wide as the record and its furthest field.
  std::string line_;
  bool lineWritten_ = false;
  // The fields that building the line renders, one bit a slot, and the end
  // of the furthest field set since the clear.
  static constexpr size_t kMaxFields = 64;
  static_assert(kMaxFields <= kTableSize / 2, "the name table stays half empty");
  mutable uint64_t toBuild_ = 0;
  mutable size_t end_ = 0;
  size_t everyStop_ = 0;  // the end of the furthest field of all
  std::string parsedLine_;
  KeyedCollection<Value> otherValues_;        // set under names no field has
};

}  // namespace hifx
