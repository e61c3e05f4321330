// Any bytes, read as a HIF the way `hifx dump` and `hifx view` read one.
//
// A Failure is the clean answer to a damaged file. Anything else is a bug: a
// crash, a sanitizer report, another exception escaping, a leak, a hang, or
// an allocation out of proportion to the input.
//
// Run it with a memory cap and a length limit, e.g.
//   fuzz_hif_read CORPUS_DIR -rss_limit_mb=512 -max_len=65536 -timeout=10
// (fuzz/run.sh does so). -rss_limit_mb catches a reader that sizes a buffer
// from a damaged count; -max_len keeps inputs near the size of real routes'
// headers and tables.
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <system_error>

#include "base/Failure.h"
#include "base/Shell.h"
#include "hif/HifView.h"
#include "hif/clsHIF.h"

namespace {

// Says nothing; every message box is answered OK, as a person would.
class FuzzShell final : public hifx::IShell {
 public:
  void WriteLog(std::string_view) override {}
  void SetProgressButton(int32_t, int32_t) override {}
  hifx::MsgAnswer MsgBox(std::string_view, std::string_view, hifx::MsgButtons,
                         hifx::MsgIcon) override {
    return hifx::MsgAnswer::OK;
  }
};

// One file a process, rewritten for every input and removed at exit.
const std::filesystem::path& InputPath() {
  static const std::filesystem::path path = [] {
    std::filesystem::path p = std::filesystem::temp_directory_path() /
                              ("fuzz_hif_read." + std::to_string(::getpid()) + ".hif");
    std::atexit([] {
      std::error_code ec;
      std::filesystem::remove(InputPath(), ec);
    });
    return p;
  }();
  return path;
}

bool WriteInput(const uint8_t* data, size_t size) {
  std::FILE* file = std::fopen(InputPath().c_str(), "wb");
  if (file == nullptr) return false;
  const bool ok = size == 0 || std::fwrite(data, 1, size, file) == size;
  return std::fclose(file) == 0 && ok;
}

// As `hifx dump`: the schema version from the first record, then every
// record as JSON.
size_t Dump(hifx::IShell& shell, const std::filesystem::path& path) {
  size_t bytes = 0;
  try {
    const int16_t version = hifx::ReadFileVersion(shell, path);
    if (version < 0) return 0;
    hifx::clsHIF hif(shell);
    hif.SetVersion(version);
    if (hif.OpenHIF(path)) return 0;
    while (hif.ReadData()) bytes += hifx::RecordToJson(hif).size();
  } catch (const hifx::Failure&) {
    // a damaged file, refused cleanly
  }
  return bytes;
}

// As `hifx view FILE --route 1`: the route table, then the meters of route 1.
size_t View(hifx::IShell& shell, const std::filesystem::path& path) {
  size_t cells = 0;
  try {
    hifx::HifView view(shell);
    if (view.Display(path)) {
      cells += view.Routes().rows.size();
      const hifx::TextTable meters = view.Meters(1);
      for (const auto& row : meters.rows) cells += row.size();
    }
  } catch (const hifx::Failure&) {
    // a damaged file, refused cleanly
  }
  return cells;
}

}  // namespace

// A damaged record table can claim 32767 records that all read empty, and
// each empty field read raises and catches a failure: one input then frees
// some hundreds of megabytes in small blocks. The address sanitizer's
// default quarantine of freed memory (256 MB) would alone go past
// -rss_limit_mb=512 with the fuzzer's own memory; 64 MB still holds many
// inputs' worth of freed blocks.
extern "C" const char* __asan_default_options() { return "quarantine_size_mb=64"; }

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (!WriteInput(data, size)) {
    std::fprintf(stderr, "fuzz_hif_read: cannot write %s\n", InputPath().c_str());
    std::abort();
  }
  FuzzShell shell;
  volatile size_t sink = Dump(shell, InputPath());
  sink = sink + View(shell, InputPath());
  (void)sink;
  return 0;
}
