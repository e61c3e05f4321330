#!/usr/bin/env bash
# Times both E5000 conversions through the example site's maps "E5000":
# `hifx route` on a generated download, then `hifx reading` on its route HIF
# filled by fill_readings, to the upload file (orphans and re-read off).
# The download has 32,656 meters in 100 routes, the most whose route HIF
# still holds, beside its header, 100 route headers, the site's 7 code
# records and the 3 orphans fill_readings adds, within the 32,767 records of
# a PDB; indexes are off, as index records would take that room. Each account
# has "A", "B", "E" and "C" lines, each meter "D", "H", "K01", "K05" and "L"
# lines, and every fourth account a second meter on an "I" line.
# Prints the wall time and peak memory of each run. Figures only, not a test.
#
#   bench/e5k_bench.sh [RUNS]
set -euo pipefail
runs="${1:-5}"
meters=32656
routes=100
source "$(dirname "$0")/common.sh"
no_indexes

awk -v meters="$meters" -v routes="$routes" 'BEGIN {
  split("MAIN OAK ELM PINE MAPLE CEDAR BIRCH ASH", streets, " ");
  split("SMITH JONES GARCIA NGUYEN BROWN DAVIS MILLER WILSON", names, " ");
  per = int((meters + routes - 1) / routes);
  m = 0; account = 0;
  for (r = 1; r <= routes && m < meters; r++) {
    printf "F%-8s%71s\r\n", sprintf("R%04d", r), "";
    inRoute = 0; accounts = 0;
    while (inRoute < per && m < meters) {
      account++; accounts++;
      printf "A%-8s%-10s%12s%05d0R%-2s%40s\r\n", sprintf("R%04d", r), sprintf("AC%08d", account), "",
        (inRoute + 1) * 10, (account % 7 == 0 ? "DG" : ""), "";
      printf "B%-32s%-32s%15s\r\n", sprintf("%s %s %d", names[account % 8 + 1], names[(account * 3) % 8 + 1], account % 50),
        sprintf("%d %s ST", account % 997 + 1, streets[account % 8 + 1]), "";
      printf "E%-79s\r\n", sprintf("LOT %d DP %d", account % 90 + 1, 1000 + r);
      printf "C02%-12s%65s\r\n", sprintf("PV%010d", account), "";
      two = (account % 4 == 0) ? 2 : 1;
      for (k = 1; k <= two && inRoute < per && m < meters; k++) {
        m++; inRoute++;
        printf "D%-32s%47s\r\n", (m % 5 == 0 ? "KEYS AT OFFICE" : ""), "";
        prior = m * 7 % 900000;
        printf "%s%02d%-10d%d%08d%08d%08d%s%07dAC01%d1AFR%-8s%17s\r\n", (k == 1 ? "H" : "I"), k, 1000000 + m, 6,
          prior, prior + 5000, prior, (k == 1 ? "W" : "G"), 20, 0, sprintf("REF%05d", m % 100000), "";
        printf "K01%-32s%-32s%13s\r\n", "FRONT YARD", "LEFT OF DRIVEWAY", "";
        printf "K05%-32s%-32s%13s\r\n", "", "UNDER LID", "";
        printf "L%-79s\r\n", "NEAR LETTERBOX";
      }
    }
    printf "Z%-8s%04d%04d%63s\r\n", sprintf("R%04d", r), accounts % 10000, inRoute % 10000, "";
  }
}' > "$work/route.txt"
sync  # the download's pages written out, so that no run shares the disk with them
echo "download: $(wc -l < "$work/route.txt") lines, $(du -k "$work/route.txt" | cut -f1) KB, $meters meters in $routes routes"

for run in $(seq "$runs"); do
  rm -f "$work/route.pdb"
  /usr/bin/time -f "route run $run: %e s wall (%U user, %S system), %M KB peak" \
    "$hifx" "${site[@]}" route --source "$work/route.txt" --dest "$work/route.pdb" --map E5000 > "$work/route.log"
done
tail -3 "$work/route.log"
build/release/tools/fill_readings "$work/route.pdb" "$work/reading.pdb" --seed 7 >/dev/null
echo "reading HIF: $(du -k "$work/reading.pdb" | cut -f1) KB, $(pdb_records "$work/reading.pdb") records"

for run in $(seq "$runs"); do
  rm -f "$work/upload.txt"
  /usr/bin/time -f "reading run $run: %e s wall (%U user, %S system), %M KB peak" \
    "$hifx" "${site[@]}" reading --source "$work/reading.pdb" --dest "$work/upload.txt" --map E5000 \
    --no-orphans --no-reread > "$work/reading.log"
done
grep -E "Error" "$work/reading.log" || true
echo "upload file: $(wc -l < "$work/upload.txt") lines"
