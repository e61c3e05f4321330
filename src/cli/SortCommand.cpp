// sort: the meters of each route of a HIF put in Sequence order, in place.
#include "base/Failure.h"
#include "cli/Commands.h"
#include "hif/SortHIF.h"

namespace hifx::cli {

int RunSort(Context& context, const Args& args) {
  if (args.size() != 1) return Usage("sort takes one FILE");
  // The file is its own reading source, so the sort reads it by its own
  // version; the stored settings are neither read nor changed.
  const std::filesystem::path file = args[0];
  try {
    switch (SortHIF(context.shell, file, file)) {
      case SortOutcome::Sorted: return kExitOk;
      case SortOutcome::NotRead: return kExitUsage;
      case SortOutcome::NotCreated: return kExitNotComplete;
    }
  } catch (const Failure& failure) {
    // The run's error frame: the failure in a box, and the file as it was.
    context.shell.MsgBox(failure.Description(), "Error", MsgButtons::OK, MsgIcon::Critical);
  }
  return kExitNotComplete;
}

}  // namespace hifx::cli
