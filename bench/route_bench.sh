#!/usr/bin/env bash
# Times `hifx route` on a generated fixed-column route file of 32,767 meters
# in 100 routes, indexes on, through the example site's map "Billing".
# Prints the wall time and peak memory of each run. Not a test: figures only.
#
#   bench/route_bench.sh [RUNS]
set -euo pipefail
runs="${1:-5}"
source "$(dirname "$0")/common.sh"
"$hifx" --site "$work/site" settings set RouteSource "$work/route.txt" >/dev/null
"$hifx" --site "$work/site" settings set RouteDestination "$work/route.pdb" >/dev/null

# The example layout (see the map Billing): route, sequence, tag, type,
# digits, decimals, previous, high, low, read type, last date, utility,
# address, name, account, serial, message, user 1.
awk 'BEGIN {
  split("MAIN OAK ELM PINE MAPLE CEDAR BIRCH ASH", streets, " ");
  split("SMITH JONES GARCIA NGUYEN BROWN DAVIS MILLER WILSON", names, " ");
  for (i = 0; i < 32767; i++) {
    route = int(i / 328) + 1;
    printf "%04d%06d%08d%s%d%d%010d%010d%010d%s%08d%02d%-30s%-30s%-12s%-12s%-30s%-10s\r\n",
      route, i % 328 + 1, 1000000 + i, "W", 6, 0, i * 7 % 900000, i * 7 % 900000 + 5000,
      i * 7 % 900000 + 1, "R", 20240131, 1,
      sprintf("%d %s ST", i % 997 + 1, streets[i % 8 + 1]),
      sprintf("%s %s %d", names[i % 8 + 1], names[(i * 3) % 8 + 1], i % 50),
      sprintf("AC%08d", i), sprintf("SN%08d", i), "", sprintf("U%d", i)
  }
}' > "$work/route.txt"
echo "source: $(wc -l < "$work/route.txt") lines, $(du -k "$work/route.txt" | cut -f1) KB"

for run in $(seq "$runs"); do
  rm -f "$work/route.pdb"
  /usr/bin/time -f "run $run: %e s wall (%U user, %S system), %M KB peak" "$hifx" --site "$work/site" route > "$work/log.txt"
done
tail -3 "$work/log.txt"
echo "HIF: $(du -k "$work/route.pdb" | cut -f1) KB, $(pdb_records "$work/route.pdb") records"
