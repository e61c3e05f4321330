#!/usr/bin/env bash
# Times `hifx route` on a generated fixed-column route file of 30,000 meters
# in 100 routes, indexes on, through the example site's map "Billing"; the
# meters, their indexes and the code lists fit a file of 32,767 records.
# Prints the wall time and peak memory of each run. Not a test: figures only.
#
#   bench/route_bench.sh [RUNS]
set -euo pipefail
runs="${1:-5}"
source "$(dirname "$0")/common.sh"
"$hifx" --site "$work/site" settings set RouteSource "$work/route.txt" >/dev/null
"$hifx" --site "$work/site" settings set RouteDestination "$work/route.pdb" >/dev/null

big_route_file "$work/route.txt"
echo "source: $(wc -l < "$work/route.txt") lines, $(du -k "$work/route.txt" | cut -f1) KB"

for run in $(seq "$runs"); do
  rm -f "$work/route.pdb"
  /usr/bin/time -f "run $run: %e s wall (%U user, %S system), %M KB peak" "$hifx" --site "$work/site" route > "$work/log.txt"
done
tail -3 "$work/log.txt"
echo "HIF: $(du -k "$work/route.pdb" | cut -f1) KB, $(pdb_records "$work/route.pdb") records"
