// Any bytes, loaded as a map file the way a conversion loads its map, then
// validated and saved again.
//
// The first byte picks the map's use (route, re-read, reading, orphan); the
// rest is the file. A load never fails on a damaged file, so anything other
// than a clean run is a bug: a crash, a sanitizer report, an exception
// escaping, a leak, a hang.
//
//   fuzz_map_load CORPUS_DIR -dict=fuzz/map.dict -rss_limit_mb=512 -max_len=8192 -timeout=10
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <system_error>

#include "base/Failure.h"
#include "maps/clsExchMap.h"

namespace {

// One site folder a process, removed at exit.
const std::filesystem::path& SiteFolder() {
  static const std::filesystem::path path = [] {
    std::filesystem::path p = std::filesystem::temp_directory_path() /
                              ("fuzz_map_load." + std::to_string(::getpid()));
    std::filesystem::create_directories(p);
    std::atexit([] {
      std::error_code ec;
      std::filesystem::remove_all(SiteFolder(), ec);
    });
    return p;
  }();
  return path;
}

bool WriteInput(const std::filesystem::path& path, const uint8_t* data, size_t size) {
  std::FILE* file = std::fopen(path.c_str(), "wb");
  if (file == nullptr) return false;
  const bool ok = size == 0 || std::fwrite(data, 1, size, file) == size;
  return std::fclose(file) == 0 && ok;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size == 0) return 0;
  constexpr int32_t kUses[] = {hifx::kUseRoute, hifx::kUseReRead, hifx::kUseReading,
                               hifx::kUseOrphan};
  const int32_t use = kUses[data[0] % 4];
  const char* name = use == hifx::kUseReading ? "Fuzz.hrm"
                     : use == hifx::kUseOrphan ? "Fuzz.hom"
                                               : "Fuzz.hcm";
  if (!WriteInput(SiteFolder() / name, data + 1, size - 1)) {
    std::fprintf(stderr, "fuzz_map_load: cannot write in %s\n", SiteFolder().c_str());
    std::abort();
  }
  hifx::clsExchMap map(SiteFolder());
  if (!map.LoadMap(name, use)) std::abort();  // the file is there: a load can't fail
  std::string messages;
  volatile bool valid = map.ValidateMap(messages);
  (void)valid;
  try {
    map.SaveMap();
    if (!map.LoadMap(name, use)) std::abort();
  } catch (const hifx::Failure&) {
    // a file that can't be written: the caller's failure, not the map's
  }
  return 0;
}
