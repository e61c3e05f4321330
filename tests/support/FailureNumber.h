// The number of the failure a call raises, 0 when it raises none.
#pragma once

#include "base/Failure.h"

namespace hifx::test {

inline int FailureNumber(auto&& call) {
  try {
    call();
  } catch (const Failure& f) {
    return f.Number();
  }
  return 0;
}

}  // namespace hifx::test
