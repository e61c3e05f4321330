// Replacing a file whole: the new bytes go to a hidden file beside it, which
// is made durable and then renamed over the old one. A reader never sees half
// a file, and a failure at any step leaves the old file as it was.
#pragma once

#include <filesystem>
#include <functional>
#include <string>
#include <string_view>

#include "base/BinaryFile.h"

namespace hifx {

// A new file that takes its name only once it is complete. It is written
// under a hidden name in the same folder (Written()); Commit renames it over
// the target. One never committed is removed, and whatever had the target's
// name stays as it was.
class FileReplacement {
 public:
  FileReplacement() = default;
  explicit FileReplacement(std::filesystem::path target);
  FileReplacement(FileReplacement&& other) noexcept;
  FileReplacement& operator=(FileReplacement&& other) noexcept;
  FileReplacement(const FileReplacement&) = delete;
  FileReplacement& operator=(const FileReplacement&) = delete;
  ~FileReplacement();

  bool Active() const { return !written_.empty(); }
  const std::filesystem::path& Target() const { return target_; }
  const std::filesystem::path& Written() const { return written_; }
  // Renames the written file over the target and syncs the folder; raises,
  // naming the target and the reason, when the rename fails.
  void Commit();
  // Removes the written file; the target stays as it was.
  void Abandon();

 private:
  std::filesystem::path target_;
  std::filesystem::path written_;
};

// ownerOnly makes the new file readable and writable by its owner alone, for
// files that carry the site's passwords.
void ReplaceFile(const std::filesystem::path& path, const std::string& bytes,
                 bool ownerOnly = false);

// As ReplaceFile, but the new file, complete on disk under its temporary
// name, must first pass `acceptable`; false, with the old file as it was,
// when it doesn't. Failures to write raise as ReplaceFile's do.
bool ReplaceFileIf(const std::filesystem::path& path, const std::string& bytes,
                   const std::function<bool(const std::filesystem::path& written)>& acceptable);

// A file written sequentially through a large buffer, as a replacement of
// the file of its name: the billing, orphan and upload files. With keepOld
// the old file's bytes come first, so an append leaves the old file whole
// until the new one is complete.
class OutputFile {
 public:
  explicit OutputFile(const std::filesystem::path& path, bool keepOld = false);
  void Write(std::string_view bytes);
  // Everything written put in place of the old file; raises, naming the
  // file, when any step fails, and the old file then stays as it was.
  void Commit();
  bool Failed() const { return failed_ || file_.Failed(); }

 private:
  void Flush();

  // Small enough that the same few pages are written over and over: each
  // fresh page costs the process a fault, and a write call of 64 KB costs
  // less than sixteen of them.
  static constexpr size_t kBufferSize = 1 << 16;
  FileReplacement replacement_;
  BinaryFile file_;
  std::string buffer_;
  bool failed_ = false;
};

}  // namespace hifx
