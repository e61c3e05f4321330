#include "app/Exit.h"

namespace hifx::app {

int ExitCodeOf(FailureKind kind) {
  switch (kind) {
    case FailureKind::Usage:
    case FailureKind::BadInput:
    case FailureKind::MissingInput:
    case FailureKind::BadSite: return kExitUsage;
    case FailureKind::Run:
    case FailureKind::WriteFailed: return kExitNotComplete;
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
