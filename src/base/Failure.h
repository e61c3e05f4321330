// One failure type for the whole engine: a number and a description, as the
// conversion drivers show them in their error frames.
#pragma once

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

class Failure : public std::runtime_error {
 public:
  explicit Failure(int number);
  Failure(int number, const std::string& description);

  int Number() const noexcept { return number_; }
  std::string Description() const { return what(); }

 private:
  int number_;
};

// A failure to put bytes on the disk: the open, write, sync, close or rename
// of a file being written. A run tells it from a failure of what it reads.
class WriteFailure : public Failure {
 public:
  using Failure::Failure;
};

}  // namespace hifx
