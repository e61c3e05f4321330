#!/usr/bin/env bash
# Times paging through the Reading Report of the largest reading HIF the
# reader opens (32,600 meters in 100 routes, 1,667 pages, made as
# bench/report_bench.sh makes it) in the preview: bench/preview_bench.cpp.
# Figures only, not a test.
#
#   bench/preview_bench.sh [benchmark flags]
set -euo pipefail
source "$(dirname "$0")/common.sh"
cmake --build --preset release -j2 --target preview_bench >/dev/null
make_big_reading
build/release/bench/preview_bench "$@" "$work/reading.pdb"
