#!/usr/bin/env bash
# Times `hifx check` on the generated fixed-column route file of 30,000
# meters in 100 routes that bench/route_bench.sh converts (indexes on, map
# "Billing"), and on the same file with every tenth meter's sequence 0 and
# every hundredth tag repeated (3,000 and 300 faults). Prints the wall time
# and peak memory of each run and the check's summary. Figures only.
#
#   bench/check_bench.sh [RUNS]
set -euo pipefail
runs="${1:-5}"
source "$(dirname "$0")/common.sh"

big_route_file "$work/route.txt"
awk '{ if (NR % 10 == 0) $0 = substr($0, 1, 4) "000000" substr($0, 11);
       if (NR % 100 == 1) tag = substr($0, 11, 8); else if (NR % 100 == 50) $0 = substr($0, 1, 10) tag substr($0, 19);
       printf "%s\n", $0 }' "$work/route.txt" > "$work/faulty.txt"
for file in route faulty; do
  echo "$file: $(wc -l < "$work/$file.txt") lines"
  for run in $(seq "$runs"); do
    /usr/bin/time -f "run $run: %e s wall (%U user, %S system), %M KB peak" \
      "$hifx" "${site[@]}" check "$work/$file.txt" > "$work/check.txt" || true
  done
  tail -2 "$work/check.txt"
done
