#include "handheld/clsPalmDB.h"

#include <algorithm>
#include <cstring>

#include "base/Failure.h"
#include "base/Numbers.h"
#include "base/Text.h"
#include "handheld/clsPalmFilePDB.h"
#include "handheld/clsPalmFileVFS.h"
#include "handheld/modPDB.h"

namespace hifx {
namespace {

int16_t WidthOf(int32_t type) {
  switch (type) {
    case kFieldInt8: return 1;
    case kFieldInt16: return 2;
    case kFieldInt32: return 4;
    default: return 0;
  }
}

// Offsets and lengths of a record are 16-bit.
int16_t ToOffset(size_t value) {
  if (value > 32767) throw Failure(fail::kOverflow);
  return static_cast<int16_t>(value);
}

std::unique_ptr<IPalmFile> MakeContainer(int32_t fileType) {
  if (fileType == kFilePDB) return std::make_unique<clsPalmFilePDB>();
  if (fileType == kFileVFS) return std::make_unique<clsPalmFileVFS>();
  return nullptr;
}

}  // namespace

clsPalmDB::clsPalmDB(IShell& shell) : shell_(shell) {}

IPalmFile& clsPalmDB::Container() {
  if (!file_) throw Failure(fail::kNoObject);
  return *file_;
}

int16_t clsPalmDB::CreateDB(int32_t fileType, const std::filesystem::path& fileName,
                            std::string_view title, std::string_view creator,
                            std::string_view dbType, int32_t recordCount, std::string& appInfo,
                            std::string& sortInfo) {
  fileType_ = fileType;
  file_ = MakeContainer(fileType);
  return Container().CreateFile(fileName, title, creator, dbType, recordCount, appInfo, sortInfo);
}

int16_t clsPalmDB::OpenDB(const std::filesystem::path& fileName, int32_t fileType) {
  file_.reset();
  if (fileType == -1) {
    // VFS is tried first: the PDB test accepts nearly any readable file.
    if (clsPalmFileVFS().TestFileType(fileName)) {
      fileType_ = kFileVFS;
    } else if (clsPalmFilePDB().TestFileType(fileName)) {
      fileType_ = kFilePDB;
    } else {
      return -1;
    }
  }
  file_ = MakeContainer(fileType_);
  return Container().OpenFile(fileName);
}

void clsPalmDB::ClearSchema() {
  CloseTexts();  // the record being filled keeps the texts it was made with
  schema_.assign(1, SchemaField{});
  fieldCount_ = 0;
  ++schemaGeneration_;
  byName_.clear();
  byExactName_.clear();
  lastFound_ = 0;
  fixedLength_ = 0;
  textCount_ = 0;
  numbersEnd_ = 0;
}

void clsPalmDB::AddField(int32_t type, std::string_view name, int16_t position) {
  CloseTexts();
  const int16_t width = WidthOf(type);
  SchemaField field;
  field.type = type;
  field.name = std::string(Trim(name));
  field.width = static_cast<size_t>(width);
  if (type == kFieldText) {
    ++textCount_;
    field.position = textCount_;
  } else if (position < 0) {
    field.position = fixedLength_;
    fixedLength_ = static_cast<int16_t>(fixedLength_ + width);
  } else {
    // Fields may overlay each other when placed by hand.
    field.position = position;
    if (position + width > fixedLength_) fixedLength_ = static_cast<int16_t>(position + width);
  }
  if (width > 0) numbersEnd_ = std::max(numbersEnd_, static_cast<size_t>(field.position) + field.width);
  const auto index = static_cast<int16_t>(schema_.size());
  // The fixed part only grows: a number within it now stays within it.
  field.place = Place{.index = index, .position = field.position, .text = type == kFieldText};
  if (width > 0 && field.position >= 0 && field.position + width <= fixedLength_) {
    field.place.width = static_cast<uint8_t>(width);
  }
  field.firstOfName = byName_.try_emplace(field.name, index).second;  // the first of equal names wins
  if (FindItem(field.name) == index) byExactName_.try_emplace(field.name, index);
  schema_.push_back(std::move(field));
  fieldCount_ = index;
  ++schemaGeneration_;
}

int16_t clsPalmDB::FindItemFurther(std::string_view name) const {
  // The one after that: a field left out between.
  const auto next = static_cast<size_t>(lastFound_) + 2;
  if (next < schema_.size() && schema_[next].firstOfName && schema_[next].name == name) {
    lastFound_ = static_cast<int16_t>(next);
    return lastFound_;
  }
  // Callers nearly always spell a name as the schema does.
  if (const auto exact = byExactName_.find(name); exact != byExactName_.end()) {
    lastFound_ = exact->second;
    return lastFound_;
  }
  const auto it = byName_.find(name);
  if (it == byName_.end()) return 0;
  lastFound_ = it->second;
  return lastFound_;
}

std::string clsPalmDB::FieldName(int16_t index) const {
  if (index < 0 || index > FieldCount()) throw Failure(fail::kSubscript);
  return schema_[static_cast<size_t>(index)].name;
}

namespace {

// A text written to a number field counts by its leading number, as fields
// that can't be converted read as zero.
int32_t LeadingNumberOf(const Value& value) {
  return value.IsText() ? ToInt32(NumericPrefix(value.Text())) : value.ToInt32();
}

}  // namespace

int16_t clsPalmDB::SetInt8(int16_t offset, const Value& value) {
  const int32_t v = LeadingNumberOf(value);
  if (offset + 1 > fixedLength_) TextsChanged();
  if (offset >= 0 && static_cast<size_t>(offset) < buffer_.size()) {
    buffer_[static_cast<size_t>(offset)] = static_cast<char>(v & 0xFF);
  }
  return ToOffset(static_cast<size_t>(offset) + 1);
}

int16_t clsPalmDB::SetInt16(int16_t offset, const Value& value) {
  const int32_t v = LeadingNumberOf(value);
  if (offset + 2 > fixedLength_) TextsChanged();
  // Only this setter grows the buffer, so hand-built records can be made of
  // words and packed texts with no schema.
  if (offset >= 0 && static_cast<size_t>(offset) == buffer_.size()) buffer_.append(2, '\0');
  const char bytes[2] = {static_cast<char>((v & 0xFF00) / 256), static_cast<char>(v & 0xFF)};
  for (size_t k = 0; k < 2; ++k) {
    const size_t at = static_cast<size_t>(offset) + k;
    if (offset >= 0 && at < buffer_.size()) buffer_[at] = bytes[k];
  }
  return ToOffset(static_cast<size_t>(offset) + 2);
}

int16_t clsPalmDB::SetInt32(int16_t offset, const Value& value) {
  if (offset + 4 > fixedLength_) TextsChanged();
  uint8_t bytes[4] = {};
  PutBytes(bytes, value);
  for (size_t k = 0; k < 4; ++k) {
    const size_t at = static_cast<size_t>(offset) + k;
    if (offset >= 0 && at < buffer_.size()) buffer_[at] = static_cast<char>(bytes[k]);
  }
  return ToOffset(static_cast<size_t>(offset) + 4);
}

int32_t clsPalmDB::GetInt8(int16_t offset) const { return NumberAt(offset, 1); }
int32_t clsPalmDB::GetInt16(int16_t offset) const { return NumberAt(offset, 2); }
int32_t clsPalmDB::GetInt32(int16_t offset) const { return NumberAt(offset, 4); }
void clsPalmDB::ThrowPastTheEnd() { throw Failure(fail::kSubscript); }

void clsPalmDB::AddEmptyTextsBefore(int16_t ordinal) const {
  for (auto k = textsHeld_ + 1; k < ordinal; ++k) {
    textsLeftEmpty_.push_back(static_cast<int16_t>(k));
    nuls_.push_back(static_cast<uint32_t>(buffer_.size()));
    buffer_.push_back('\0');
  }
}

namespace {

// Counted in blocks of at most 255 bytes, each in a byte, which the
// compiler turns into a few instructions for every 16 bytes.
size_t CountNuls(std::string_view bytes) {
  size_t count = 0;
  while (!bytes.empty()) {
    const size_t block = std::min(bytes.size(), size_t{255});
    uint8_t inBlock = 0;
    for (size_t i = 0; i < block; ++i) inBlock = static_cast<uint8_t>(inBlock + (bytes[i] == '\0' ? 1 : 0));
    count += inBlock;
    bytes.remove_prefix(block);
  }
  return count;
}

}  // namespace

void clsPalmDB::CloseHeldTexts() const {
  // The texts are checked for a NUL once, here, and not one by one as they
  // come in: a NUL in one of them is rare.
  const std::string_view texts = std::string_view(buffer_).substr(static_cast<size_t>(fixedLength_));
  if (CountNuls(texts) != nuls_.size()) {
    // Only a record being filled holds texts, so this is never a const
    // clsPalmDB: the texts go in again through the setter of a whole record.
    return const_cast<clsPalmDB&>(*this).PutHeldTextsInPlace(textsHeld_);
  }
  AddEmptyTextsBefore(static_cast<int16_t>(textCount_ + 1));
  textsHeld_ = kAllTexts;
}

void clsPalmDB::PutHeldTextsInPlace(int16_t held) {
  // A text set held a NUL, which moves every text behind it down by one in a
  // whole record. The texts set are therefore put in again, in the order they
  // were set, each by ReplaceText as into a whole record.
  const auto fixed = static_cast<size_t>(fixedLength_);
  const std::string texts = buffer_.substr(fixed);
  const std::vector<uint32_t> ends = nuls_;
  buffer_.resize(fixed);
  buffer_.append(static_cast<size_t>(textCount_), '\0');
  textsHeld_ = kAllTexts;
  nulsKnown_ = false;
  size_t start = 0;
  for (int16_t k = 1; k <= held; ++k) {
    const size_t end = ends[static_cast<size_t>(k - 1)] - fixed;
    if (std::find(textsLeftEmpty_.begin(), textsLeftEmpty_.end(), k) == textsLeftEmpty_.end()) {
      ReplaceText(k, std::string_view(texts).substr(start, end - start));
    }
    start = end + 1;
  }
}

int32_t clsPalmDB::NumberPastTheBuffer(int16_t offset, size_t width) const {
  if (textsHeld_ == kAllTexts) ThrowPastTheEnd();
  CloseTexts();
  return NumberAt(offset, width);
}

namespace {

// Puts text in place of buffer[start, end): the bytes behind move once, and
// the text, which never lies in the buffer, is copied in. Written out, as
// every text of every record written comes through here.
void ReplaceSpan(std::string& buffer, size_t start, size_t end, std::string_view text) {
  const size_t tail = buffer.size() - end;
  if (text.size() > end - start) buffer.append(text.size() - (end - start), '\0');
  char* at = buffer.data() + start;
  std::memmove(at + text.size(), buffer.data() + end, tail);
  if (text.size() < end - start) buffer.resize(start + text.size() + tail);
  std::memcpy(at, text.data(), text.size());
}

}  // namespace

void clsPalmDB::SetString(int16_t ordinal, const Value& value) {
  if (value.IsText()) return SetText(ordinal, value.Text());
  SetText(ordinal, value.ToText());
}

void clsPalmDB::SetText(int16_t ordinal, std::string_view text) {
  if (textsHeld_ == kAllTexts || ordinal <= textsHeld_ || ordinal > textCount_) return ReplaceText(ordinal, text);
  if (ordinal > textsHeld_ + 1) AddEmptyTextsBefore(ordinal);
  buffer_.append(text);
  nuls_.push_back(static_cast<uint32_t>(buffer_.size()));
  buffer_.push_back('\0');
  textsHeld_ = ordinal;
}

void clsPalmDB::ReplaceText(int16_t ordinal, std::string_view text) {
  const bool hasNul = std::memchr(text.data(), 0, text.size()) != nullptr;
  CloseTexts();
  // The texts behind the fixed part are split at NULs, one element replaced,
  // and joined again; an empty text part has no elements at all.
  const size_t fixed = std::min(buffer_.size(), static_cast<size_t>(fixedLength_));
  if (buffer_.size() == fixed || ordinal < 1) throw Failure(fail::kSubscript);
  std::vector<uint32_t>& nuls = TextNuls();
  const auto element = static_cast<size_t>(ordinal - 1);
  if (element > nuls.size()) throw Failure(fail::kSubscript);
  const size_t start = element == 0 ? fixed : nuls[element - 1] + 1;
  const size_t end = element < nuls.size() ? nuls[element] : buffer_.size();
  if (hasNul) {
    buffer_.replace(start, end - start, text);
    BufferChanged();  // a NUL in a value shifts every later text
    return;
  }
  ReplaceSpan(buffer_, start, end, text);
  // The NULs behind the element move by the change in its length.
  const auto delta = static_cast<uint32_t>(text.size() - (end - start));  // wraps for a shorter text, as wanted
  for (size_t k = element; k < nuls.size(); ++k) nuls[k] += delta;
}

int16_t clsPalmDB::AppendString(int16_t offset, std::string_view text, bool pad) {
  CloseTexts();
  BufferChanged();
  if (offset >= 0 && static_cast<size_t>(offset) < buffer_.size()) {
    buffer_.resize(static_cast<size_t>(offset));
  }
  buffer_.append(text);
  buffer_.push_back('\0');
  // Padded to an even length, so the word that follows is aligned.
  if (pad && buffer_.size() % 2 == 1) buffer_.push_back('\0');
  return ToOffset(buffer_.size());
}

void clsPalmDB::FindTextNuls() const {
  nuls_.clear();
  for (size_t at = static_cast<size_t>(fixedLength_); at < buffer_.size(); ++at) {
    const void* nul = std::memchr(buffer_.data() + at, 0, buffer_.size() - at);
    if (nul == nullptr) break;
    at = static_cast<size_t>(static_cast<const char*>(nul) - buffer_.data());
    nuls_.push_back(static_cast<uint32_t>(at));
  }
  nulsKnown_ = true;
}

std::string clsPalmDB::GetString(int16_t& ordinal) const { return std::string(TextAt(ordinal)); }

std::string_view clsPalmDB::TextAt(int16_t& ordinal) const {
  // Text k starts behind the (k-1)th NUL after the fixed part. Walking to it
  // moves the caller's ordinal down to 1, or as far as the NULs go.
  CloseTexts();
  const std::vector<uint32_t>& nuls = TextNuls();
  size_t begin = static_cast<size_t>(fixedLength_);
  size_t wanted = 0;  // the NULs ahead of the text
  if (ordinal >= 2) {
    wanted = static_cast<size_t>(ordinal - 1);
    if (nuls.size() < wanted) {
      ordinal = static_cast<int16_t>(static_cast<size_t>(ordinal) - nuls.size());
      return {};
    }
    begin = nuls[wanted - 1] + 1;
    ordinal = 1;
  }
  if (begin >= buffer_.size()) return {};
  // The text ends at the next NUL, or with the record when there is none.
  const size_t end = wanted < nuls.size() ? nuls[wanted] : buffer_.size();
  return std::string_view(buffer_).substr(begin, end - begin);
}

Value clsPalmDB::ReadField(int16_t index) {
  Value value;
  ReadField(index, value);
  return value;
}

void clsPalmDB::ReadOtherField(int16_t index, Value& value) {
  CloseTexts();
  if (index == 0) {
    value = Value::Null();
    return;
  }
  const SchemaField& field = schema_[static_cast<size_t>(index)];
  // A number past the record's end is said as the read's failure would say
  // it, without raising one: a damaged file of many short records costs a
  // message a field, not an unwinding.
  const size_t width = field.width;
  if (width > 0 && (field.position < 0 || static_cast<size_t>(field.position) + width > buffer_.size())) {
    static const std::string kPastTheEnd = StandardDescription(fail::kSubscript);
    shell_.MsgBox(kPastTheEnd);
    value = Value();
    return;
  }
  try {
    switch (field.type) {
      case kFieldText: {
        int16_t ordinal = field.position;
        value.SetText(TextAt(ordinal));  // in the room the value had
        return;
      }
      case kFieldInt8: value.SetInteger(static_cast<int16_t>(GetInt8(field.position))); return;
      case kFieldInt16: value.SetLong(GetInt16(field.position)); return;
      case kFieldInt32: value.SetLong(GetInt32(field.position)); return;
      default: value = Value(); return;
    }
  } catch (const Failure& failure) {
    shell_.MsgBox(failure.Description());
    value = Value();
  }
}

bool clsPalmDB::StoreWholeNumber(int16_t offset, size_t width, int32_t number) {
  const size_t end = static_cast<size_t>(offset) + width;
  if (width == 0 || offset < 0 || end > static_cast<size_t>(fixedLength_) || end > buffer_.size()) return false;
  if (width == 4 && number < 0) return false;  // SetInt32 has its own rule for these
  StoreNumber(offset, width, static_cast<uint32_t>(number));
  return true;
}

void clsPalmDB::WriteField(int16_t index, const Value& value) {
  const SchemaField& field = schema_[static_cast<size_t>(index)];
  int32_t whole = 0;
  if (value.IsWholeNumber(whole) && StoreWholeNumber(field.position, field.width, whole)) return;
  switch (field.type) {
    case kFieldText: SetString(field.position, value); break;
    case kFieldInt8: SetInt8(field.position, value); break;
    case kFieldInt16: SetInt16(field.position, value); break;
    case kFieldInt32: SetInt32(field.position, value); break;
    default: break;
  }
}

void clsPalmDB::WriteNumber(int16_t index, int32_t number) { WriteField(index, Value::Long(number)); }

Value clsPalmDB::Item(std::string_view name) { return ReadField(FindItem(name)); }

void clsPalmDB::SetItem(std::string_view name, const Value& value) {
  const int16_t index = FindItem(name);
  if (index == 0) return ReportNoField(name);
  SetItem(PlaceOf(index), value);
}

void clsPalmDB::ReportNoField(int32_t index) { ReportNoField(std::to_string(index)); }
void clsPalmDB::ReportNoField(std::string_view name) { shell_.MsgBox(std::string(name) + " not valid field in Record"); }

void clsPalmDB::AddNew() {
  // Every number is 0 and every text empty, the texts yet to be put in.
  buffer_.assign(static_cast<size_t>(fixedLength_), '\0');
  nuls_.clear();  // kept up to date as the texts come in, for the reads after the write
  nulsKnown_ = true;
  textsHeld_ = 0;
  textsLeftEmpty_.clear();
}
void clsPalmDB::Rewind() { Container().Rewind(); }
bool clsPalmDB::WriteData() {
  CloseTexts();
  return Container().WriteRecord(buffer_);
}
bool clsPalmDB::WriteRaw(std::string_view bytes) { return Container().WriteRecord(bytes); }
int16_t clsPalmDB::RecordCount() { return Container().RecordCount(); }
bool clsPalmDB::ReadData(int32_t& number) {
  textsHeld_ = kAllTexts;
  BufferChanged();
  return Container().ReadRecord(number, buffer_);
}
bool clsPalmDB::ReadRaw(std::string& bytes, int32_t& number) {
  return Container().ReadRecord(number, bytes);
}

std::string clsPalmDB::Title() { return Container().Title(); }
std::string clsPalmDB::Creator() { return Container().Creator(); }
std::string clsPalmDB::DBType() { return Container().DBType(); }
std::string clsPalmDB::AppInfo() { return Container().AppInfo(); }
std::string clsPalmDB::SortInfo() { return Container().SortInfo(); }
double clsPalmDB::CreateDate() { return Container().CreateDate(); }
double clsPalmDB::ModifyDate() { return Container().ModifyDate(); }
int16_t clsPalmDB::Attributes() { return Container().Attributes(); }
int16_t clsPalmDB::Position255() { return Container().Position255(); }

KeyedCollection<Value> clsPalmDB::GetValues() {
  KeyedCollection<Value> values;
  ForEachValue([&values](const std::string& name, const Value& value) { values.Add(name, value); });
  return values;
}

void clsPalmDB::FinishDB() {
  if (file_) file_->FinishFile();
}

}  // namespace hifx
