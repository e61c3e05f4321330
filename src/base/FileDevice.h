// The few calls through which every file this program writes reaches the
// operating system: open, write, sync, close and rename. Each answers as the
// system does (-1 and the reason in errno), and the writers check every
// answer. A test stands a device of its own here for a while
// (ScopedFileDevice), one that fails the way a full disk or a pulled card
// fails.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>

namespace hifx {

class FileDevice {
 public:
  virtual ~FileDevice() = default;

  // Opens for writing: an existing file as it is (created when missing), or,
  // with createNew, a file that must not exist yet. ownerOnly makes a new
  // file readable and writable by its owner alone. A handle, or -1.
  virtual int Open(const std::filesystem::path& path, bool createNew, bool ownerOnly);
  // Writes size bytes at offset; the count written, or -1.
  virtual int64_t WriteAt(int handle, const char* bytes, size_t size, uint64_t offset);
  // Puts what was written on the disk itself.
  virtual int Sync(int handle);
  virtual int Close(int handle);
  virtual int Rename(const std::filesystem::path& from, const std::filesystem::path& to);
  virtual int Remove(const std::filesystem::path& path);
  // Whether a file's head may be mapped and written in place, past the device.
  virtual bool MapsFiles() const { return true; }
};

// The device in use: the operating system's, unless a test stands another.
FileDevice& Device();

class ScopedFileDevice {
 public:
  explicit ScopedFileDevice(FileDevice& device);
  ~ScopedFileDevice();
  ScopedFileDevice(const ScopedFileDevice&) = delete;
  ScopedFileDevice& operator=(const ScopedFileDevice&) = delete;

 private:
  FileDevice* previous_;
};

}  // namespace hifx
