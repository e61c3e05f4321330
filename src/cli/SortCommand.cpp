// sort: the meters of each route of a HIF put in Sequence order, in place.
#include <CLI/CLI.hpp>

#include <memory>

#include "base/Failure.h"
#include "cli/Commands.h"
#include "cli/RunSummary.h"
#include "hif/SortHIF.h"

namespace hifx::cli {
namespace {

int Sort(Context& context, const std::filesystem::path& file) {
  // The file is its own reading source, so the sort reads it by its own
  // version; the stored settings are neither read nor changed.
  try {
    switch (SortHIF(context.Shell(), file, file)) {
      case SortOutcome::Sorted: return kExitOk;
      case SortOutcome::NotRead: return SayUnreadable("sort", file.string());
      case SortOutcome::NotCreated: return kExitNotComplete;
    }
  } catch (const Failure& failure) {
    // The run's error frame: the failure in a box, and the file as it was.
    context.Shell().MsgBox(failure.Description(), "Error", MsgButtons::OK, MsgIcon::Critical);
    return NameTheInput("sort", file.string(), true, ExitCodeOf(failure));
  }
  return kExitNotComplete;
}

}  // namespace

void AddSortCommand(CommandTable& table) {
  struct SortOptions {
    std::string file;
    bool json = false;
  };
  auto options = std::make_shared<SortOptions>();
  CLI::App& sort = table.Add("sort", "the meters of each route put in Sequence order", [options](Context& context) {
    RunSummary summary("sort", options->json);
    summary.Watch(options->file);
    return summary.Finish(Sort(context, options->file));
  });
  sort.add_option("file", options->file, "the HIF file, sorted in place")->type_name("FILE")->required();
  AddJsonFlag(sort, options->json);
}

}  // namespace hifx::cli
