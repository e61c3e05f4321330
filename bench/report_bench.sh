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
runs="${1:-3}"
source "$(dirname "$0")/common.sh"
make_big_reading

for run in $(seq "$runs"); do
  rm -f "$work/reading.pdf"
  /usr/bin/time -f "run $run: %e s wall (%U user, %S system), %M KB peak" \
    "$hifx" "${site[@]}" report --type reading --pdf "$work/reading.pdf" "$work/reading.pdb"
done
echo "PDF: $(du -k "$work/reading.pdf" | cut -f1) KB, $(pdfinfo "$work/reading.pdf" | awk '/^Pages:/ {print $2}') pages"
