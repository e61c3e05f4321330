// One failure type for the whole engine: a number and a description, as the
// conversion drivers show them in their error frames, and for a failure on a
// file, what failed, the file and the system's reason. Each front end turns
// a failure into its message and exit code in one place, by its kind.
#pragma once

#include <filesystem>
#include <stdexcept>
#include <string>

namespace hifx {

// Failure numbers the engine raises and catches by number.
namespace fail {
inline constexpr int kInvalidCall = 5;
inline constexpr int kOverflow = 6;
inline constexpr int kOutOfMemory = 7;
inline constexpr int kSubscript = 9;
inline constexpr int kTypeMismatch = 13;
inline constexpr int kBadFileName = 52;
inline constexpr int kFileNotFound = 53;
inline constexpr int kDiskFull = 61;
inline constexpr int kPastEnd = 62;
inline constexpr int kNoObject = 91;
inline constexpr int kPermissionDenied = 70;
inline constexpr int kPathAccess = 75;
inline constexpr int kInvalidNull = 94;
inline constexpr int kDuplicateKey = 457;
}  // namespace fail

// The description the system gives a failure number when the raiser has no
// better words.
std::string StandardDescription(int number);

// What a failure that reaches an error frame says: a Failure's description,
// and plain words for the standard library's own, running out of memory among
// them.
std::string Describe(const std::exception& failure);

// The kind of fault, which the front ends' exit codes follow.
enum class FailureKind {
  Run,           // the operation ran and could not complete
  Usage,         // the command or its options were given wrongly
  BadInput,      // a file read is damaged or not of its kind
  MissingInput,  // a file to read is not there or can't be opened
  CantCreate,    // a file or folder to write can't be made at all
  WriteFailed,   // a file being written could not be put on the disk
  BadSite,       // the site's settings store can't be opened or used
};

class Failure : public std::runtime_error {
 public:
  explicit Failure(int number);
  Failure(int number, const std::string& description);
  // A failure on a file, said as "WHAT FILE: REASON" (each part left out
  // when empty), or with the file where "{}" stands in WHAT.
  Failure(FailureKind kind, int number, const std::string& what, const std::filesystem::path& file = {},
          const std::string& reason = {});
  // A failure of a kind with words of its own and no file.
  Failure(FailureKind kind, const std::string& description);

  int Number() const noexcept { return number_; }
  FailureKind Kind() const noexcept { return kind_; }
  std::string Description() const { return what(); }
  const std::filesystem::path& File() const noexcept { return file_; }
  const std::string& Reason() const noexcept { return reason_; }

 private:
  int number_;
  FailureKind kind_ = FailureKind::Run;
  std::filesystem::path file_;
  std::string reason_;
};

// A failure to put bytes on the disk: the open, write, sync, close or rename
// of a file being written. A run tells it from a failure of what it reads.
class WriteFailure : public Failure {
 public:
  WriteFailure(int number, const std::string& what, const std::filesystem::path& file, const std::string& reason)
      : Failure(FailureKind::WriteFailed, number, what, file, reason) {}

 protected:
  WriteFailure(FailureKind kind, int number, const std::string& what, const std::filesystem::path& file,
               const std::string& reason)
      : Failure(kind, number, what, file, reason) {}
};

// A file or folder to write that can't be made: nothing of it reached the
// disk.
class CreateFailure : public WriteFailure {
 public:
  CreateFailure(int number, const std::string& what, const std::filesystem::path& file, const std::string& reason)
      : WriteFailure(FailureKind::CantCreate, number, what, file, reason) {}
};

}  // namespace hifx
