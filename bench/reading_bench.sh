#!/usr/bin/env bash
# Times `hifx reading` on a reading HIF of 32,600 meters in 100 routes (near
# the most a file of 32,767 records holds beside its header, route headers,
# code lists and orphans), to a fixed-column billing file, with orphans and
# the re-read file on.
# Prints the wall time and peak memory of each run. Figures only, not a test.
#
#   bench/reading_bench.sh [RUNS]
set -euo pipefail
cd "$(dirname "$0")/.."
runs="${1:-5}"
# No index records: the route file must stay within 32,767 records.
. bench/site.sh
bench_site hifx fill_readings
"$hifx" "${site[@]}" settings set RouteSource "$work/route.txt" >/dev/null
awk 'BEGIN {
  for (i = 0; i < 32600; i++) {
    printf "%04d%06d%08d%s%d%d%010d%010d%010d%s%08d%02d%-30s%-30s%-12s%-12s%-30s%-10s\r\n",
      int(i / 326) + 1, i % 326 + 1, 1000000 + i, "W", 6, 0, i * 7 % 900000, i * 7 % 900000 + 5000,
      i * 7 % 900000 + 1, "R", 20240131, 1, sprintf("%d MAIN ST", i % 997 + 1),
      sprintf("CUSTOMER %d", i), sprintf("AC%08d", i), sprintf("SN%08d", i), "", sprintf("U%d", i)
  }
}' > "$work/route.txt"
"$hifx" "${site[@]}" route --dest "$work/route.pdb" >/dev/null < /dev/null || true
build/release/tools/fill_readings "$work/route.pdb" "$work/reading.pdb" --seed 7 >/dev/null
count=$(od -An -tu1 -j76 -N2 "$work/reading.pdb" | awk '{print $1 * 256 + $2}')
echo "reading HIF: $(du -k "$work/reading.pdb" | cut -f1) KB, $count records"

for run in $(seq "$runs"); do
  rm -f "$work/billing.txt" "$work/orphans.txt" "$work/reread.pdb"
  /usr/bin/time -f "run $run: %e s wall (%U user, %S system), %M KB peak" \
    "$hifx" "${site[@]}" --yes reading --source "$work/reading.pdb" --dest "$work/billing.txt" \
    --orphans "$work/orphans.txt" --orphan-replace --reread "$work/reread.pdb" > "$work/log.txt"
done
grep -E "Notice|Error" "$work/log.txt" || true
echo "billing file: $(wc -l < "$work/billing.txt") lines"
