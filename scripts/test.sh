#!/usr/bin/env bash
# The whole test suite: installs what is missing, builds and runs the tests,
# runs the README's commands as a reader pastes them, then the tests again
# under AddressSanitizer and UndefinedBehaviorSanitizer, then a short fuzzing
# run of every reader of outside data, then the Windows build's tests under
# Wine.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/setup.sh

echo "== tests"
scripts/build.sh default
ctest --preset default -j "$(nproc)"

echo "== the README's commands, in order, after the quick start"
scripts/test-readme.sh

echo "== tests under address and undefined-behaviour sanitizers"
scripts/build.sh asan
ctest --preset asan -j "$(nproc)"

if [ -x fuzz/run.sh ]; then
  echo "== short fuzzing run"
  fuzz/run.sh "${HIFX_FUZZ_SECONDS:-20}"
fi

scripts/test-windows.sh

echo "== all tests passed"
