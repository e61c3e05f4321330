#!/usr/bin/env bash
# Times `hifx report --type reading` to a PDF on the largest reading HIF the
# reader opens: 32,600 meters in 100 routes, made as bench/reading_bench.sh
# makes it (route file, route conversion without indexes, fill_readings),
# with the file header, the route headers, the code lists and the orphans
# beside them (32,713 records). Prints the wall time and peak memory of each
# run, and the PDF's size and pages. Figures only, not a test.
#
#   bench/report_bench.sh [RUNS]
set -euo pipefail
cd "$(dirname "$0")/.."
runs="${1:-3}"
cmake --preset release >/dev/null
cmake --build --preset release -j2 --target hifx fill_readings >/dev/null
hifx=build/release/src/hifx

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
site=(--site "$work/site")
"$hifx" "${site[@]}" dist load examples/site.dst 2>/dev/null
printf 'DIST 1.0\r\n[REGISTRY]\r\nToken:\r\n> IndexControl = "0"\r\n' > "$work/noindex.dst"
"$hifx" "${site[@]}" dist load "$work/noindex.dst" 2>/dev/null
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
  rm -f "$work/reading.pdf"
  /usr/bin/time -f "run $run: %e s wall (%U user, %S system), %M KB peak" \
    "$hifx" "${site[@]}" report --type reading --pdf "$work/reading.pdf" "$work/reading.pdb"
done
echo "PDF: $(du -k "$work/reading.pdf" | cut -f1) KB, $(pdfinfo "$work/reading.pdf" | awk '/^Pages:/ {print $2}') pages"
