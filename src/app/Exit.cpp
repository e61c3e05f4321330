#include "app/Exit.h"

namespace hifx::app {

int ExitCodeOf(FailureKind kind) {
  switch (kind) {
    case FailureKind::Usage: return kExitUsage;
    case FailureKind::BadInput: return kExitBadInput;
    case FailureKind::MissingInput: return kExitNoInput;
    case FailureKind::CantCreate: return kExitCantCreate;
    case FailureKind::WriteFailed: return kExitWriteFailed;
    case FailureKind::BadSite: return kExitBadSite;
    case FailureKind::Run: return kExitNotComplete;
  }
  return kExitNotComplete;
}

FailureReport ReportOf(const std::exception& failure) {
  if (const auto* known = dynamic_cast<const Failure*>(&failure)) {
    return {ExitCodeOf(known->Kind()), known->Description()};
  }
  return {kExitNotComplete, Describe(failure)};
}

}  // namespace hifx::app
