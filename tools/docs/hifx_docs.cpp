// hifx-docs MANDIR COMPLETIONDIR: the manual pages of hifx into MANDIR and
// its bash and zsh completion (hifx.bash, _hifx) into COMPLETIONDIR, all made
// from the one definition of its command line. Run by the build.
#include <cstdio>
#include <exception>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>

#include "cli/CommandLine.h"
#include "tools/docs/Completion.h"
#include "tools/docs/ManPages.h"

namespace {

void WriteFile(const std::filesystem::path& file, const std::string& text) {
  std::filesystem::create_directories(file.parent_path());
  std::ofstream out(file, std::ios::binary);
  out << text;
  if (!out.flush()) throw std::runtime_error("could not write " + file.string());
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) {
    std::fputs("usage: hifx-docs MANDIR COMPLETIONDIR\n", stderr);
    return 64;
  }
  try {
    hifx::cli::CommandLine line;
    hifx::docs::WriteManPages(line.Root(), HIFX_VERSION, argv[1]);
    const std::filesystem::path completion = argv[2];
    WriteFile(completion / "hifx.bash", hifx::docs::BashCompletion(line.Root()));
    WriteFile(completion / "_hifx", hifx::docs::ZshCompletion(line.Root()));
  } catch (const std::exception& failure) {
    std::fprintf(stderr, "hifx-docs: %s\n", failure.what());
    return 1;
  }
  return 0;
}
