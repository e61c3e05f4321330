#!/usr/bin/env bash
# Times `hifx reading` on a reading HIF of 32,600 meters in 100 routes (near
# the most a file of 32,767 records holds beside its header, route headers,
# code lists and orphans), to a fixed-column billing file, with orphans and
# the re-read file on.
# Prints the wall time and peak memory of each run. Figures only, not a test.
#
#   bench/reading_bench.sh [RUNS]
set -euo pipefail
runs="${1:-5}"
source "$(dirname "$0")/common.sh"
make_big_reading

for run in $(seq "$runs"); do
  rm -f "$work/billing.txt" "$work/orphans.txt" "$work/reread.pdb"
  /usr/bin/time -f "run $run: %e s wall (%U user, %S system), %M KB peak" \
    "$hifx" "${site[@]}" --yes reading --source "$work/reading.pdb" --dest "$work/billing.txt" \
    --orphans "$work/orphans.txt" --orphan-replace --reread "$work/reread.pdb" > "$work/log.txt"
done
grep -E "Notice|Error" "$work/log.txt" || true
echo "billing file: $(wc -l < "$work/billing.txt") lines"
