#!/usr/bin/env bash
# Times both MVRS conversions on generated files: `hifx route` of an MVRS
# route file of 30,000 meters in 100 routes (indexes on; a file holds 32,767
# records), and `hifx reading`
# of a filled HIF of 32,500 meters (indexes off, so that the file stays
# within its 32,767 records) into an MVRS reading file.
# Prints the wall time and peak memory of each run. Figures only, not a test.
#
#   bench/mvrs_bench.sh [RUNS]
set -euo pipefail
runs="${1:-5}"
source "$(dirname "$0")/common.sh"

awk -v meters=30000 -f bench/mvrs_route.awk > "$work/route.dat"
echo "route file: $(wc -l < "$work/route.dat") lines, $(du -k "$work/route.dat" | cut -f1) KB"
for run in $(seq "$runs"); do
  rm -f "$work/route.pdb"
  /usr/bin/time -f "route run $run: %e s wall (%U user, %S system), %M KB peak" \
    "$hifx" "${site[@]}" route --source "$work/route.dat" --dest "$work/route.pdb" --map Mvrs > "$work/log.txt"
done
grep -E "meters written|Error|Problems" "$work/log.txt" || true

no_indexes
awk -v meters=32500 -f bench/mvrs_route.awk > "$work/route.dat"
rm -f "$work/route.pdb"
"$hifx" "${site[@]}" route --source "$work/route.dat" --dest "$work/route.pdb" --map Mvrs > /dev/null
build/release/tools/fill_readings "$work/route.pdb" "$work/reading.pdb" --seed 7 >/dev/null
echo "reading HIF: $(du -k "$work/reading.pdb" | cut -f1) KB, $(pdb_records "$work/reading.pdb") records"
for run in $(seq "$runs"); do
  rm -f "$work/reading.dat"
  /usr/bin/time -f "reading run $run: %e s wall (%U user, %S system), %M KB peak" \
    "$hifx" "${site[@]}" reading --source "$work/reading.pdb" --dest "$work/reading.dat" --map Mvrs \
    --no-orphans --no-reread > "$work/log.txt"
done
grep -E "Error" "$work/log.txt" || true
echo "reading file: $(wc -l < "$work/reading.dat") lines, $(head -c 126 "$work/reading.dat")"
