#include "base/Failure.h"

#include <new>

namespace hifx {

std::string StandardDescription(int number) {
  switch (number) {
    case fail::kInvalidCall: return "Invalid procedure call or argument";
    case fail::kOverflow: return "Overflow";
    case fail::kOutOfMemory: return "Out of memory";
    case fail::kSubscript: return "Subscript out of range";
    case fail::kTypeMismatch: return "Type mismatch";
    case fail::kBadFileName: return "Bad file name or number";
    case fail::kFileNotFound: return "File not found";
    case fail::kDiskFull: return "Disk full";
    case fail::kPastEnd: return "Input past end of file";
    case fail::kPermissionDenied: return "Permission denied";
    case fail::kPathAccess: return "Path/File access error";
    case fail::kNoObject: return "Object variable or With block variable not set";
    case fail::kInvalidNull: return "Invalid use of Null";
    case fail::kDuplicateKey:
      return "This key is already associated with an element of this collection";
    default: return "Application-defined or object-defined error";
  }
}

Failure::Failure(int number) : Failure(number, StandardDescription(number)) {}

Failure::Failure(int number, const std::string& description)
    : std::runtime_error(description), number_(number) {}

namespace {

// The file goes where "{}" stands in what failed, else after it.
std::string FileWords(const std::string& what, const std::filesystem::path& file, const std::string& reason) {
  std::string words = what;
  if (const size_t at = words.find("{}"); at != std::string::npos) {
    words.replace(at, 2, file.string());
  } else if (!file.empty()) {
    words += (words.empty() ? "" : " ") + file.string();
  }
  if (!reason.empty()) words += (words.empty() ? "" : ": ") + reason;
  return words;
}

}  // namespace

Failure::Failure(FailureKind kind, int number, const std::string& what, const std::filesystem::path& file,
                 const std::string& reason)
    : std::runtime_error(FileWords(what, file, reason)), number_(number), kind_(kind), file_(file), reason_(reason) {}

Failure::Failure(FailureKind kind, const std::string& description)
    : std::runtime_error(description), number_(fail::kInvalidCall), kind_(kind) {}

std::string Describe(const std::exception& failure) {
  if (dynamic_cast<const std::bad_alloc*>(&failure) != nullptr) {
    return "Not enough memory to go on: the run needs more than the system gives it";
  }
  return failure.what();
}

}  // namespace hifx
