#!/usr/bin/env bash
# Non-blank lines of C++ in the program (src) and in its tests (tests), and
# the share of the tests: the measure the project keeps the tests to.
set -euo pipefail
cd "$(dirname "$0")/.."
count() { git ls-files "$1" | grep -E '\.(cpp|h)$' | xargs cat | grep -cv '^[[:space:]]*$'; }
src=$(count src)
tests=$(count tests)
echo "src $src, tests $tests, tests/src $((100 * tests / src))%"
