#!/usr/bin/env bash
# Prints each function of src that runs over 80 lines, as clang-tidy's
# readability-function-size counts them, and exits non-zero if there is one.
# The argument is a configured build folder with compile_commands.json
# (default: build/default). The desktop windows (qt) and the Windows-only
# sources are left out: this build doesn't compile them.
set -euo pipefail
cd "$(dirname "$0")/.."
build="${1:-build/default}"
if [ ! -f "$build/compile_commands.json" ]; then
  echo "function-size: no $build/compile_commands.json; configure the build first" >&2
  exit 2
fi
config='{CheckOptions: [{key: readability-function-size.LineThreshold, value: 80}]}'
found=$(for f in $(git ls-files 'src/*.cpp' | grep -v '/qt/\|Win'); do
  clang-tidy -p "$build" --quiet --checks='-*,readability-function-size' --config="$config" "$f" 2>/dev/null || true
done | grep 'warning: function' || true)
[ -z "$found" ] && exit 0
echo "$found"
exit 1
