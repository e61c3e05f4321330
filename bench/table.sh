#!/usr/bin/env bash
# Every road of the program timed on its large input in one run, printed as
# a table of what it takes now against its target: the median wall time of
# RUNS runs (default 5) and the peak memory of the largest. The HIF writer
# is set against the Perl Palm::PDB module writing the same records, and the
# readers are run on 200 MB inputs for their peak memory. Figures only, not
# a test.
#
#   bench/table.sh [RUNS]
set -euo pipefail
runs="${1:-5}"
source "$(dirname "$0")/common.sh"
cmake --build --preset release -j2 --target hif_bench >/dev/null

rows=()
# row ROAD TARGET MEASURED
row() { rows+=("| $1 | $3 | $2 |"); }

# measure PREPARE CMD...: "MEDIAN_MS PEAK_MB" of CMD over the runs, PREPARE
# run before each (a shell function, or true). A run that fails stops the
# table with its output.
measure() {
  local prepare="$1"
  shift
  local times=() peak=0 kb start end
  for _ in $(seq "$runs"); do
    $prepare
    # The last run's output goes first: cutting a file of 22 MB down is the
    # kernel's work, not the road's.
    rm -f "$work/out.txt"
    # The shell's own clock, in microseconds: starting `date` for it would
    # count two more processes in every run.
    start=${EPOCHREALTIME/[.,]/}
    if ! /usr/bin/time -o "$work/time.txt" -f "%M" "$@" > "$work/out.txt" 2>&1; then
      echo "bench/table.sh: failed: $*" >&2
      tail -5 "$work/out.txt" >&2
      exit 1
    fi
    end=${EPOCHREALTIME/[.,]/}
    times+=($(((end - start) / 1000)))
    kb=$(tail -1 "$work/time.txt")
    ((kb > peak)) && peak=$kb
  done
  echo "$(printf '%s\n' "${times[@]}" | sort -n | awk '{t[NR] = $1} END {print t[int((NR + 1) / 2)]}') $((peak / 1024))"
}

# "233 ms, 22 MB" from "233 22"
ms_mb() { echo "$1 ms, $2 MB"; }
ms() { echo "$1 ms"; }
mb() { echo "$2 MB"; }

# The fixed-column route of 30,000 meters in 100 routes, indexes on.
big_route_file "$work/route.txt"
drop_route() { rm -f "$work/route.pdb"; }
row '`hifx route`, fixed-column' '≤ 60 ms' "$(ms_mb $(measure drop_route \
  "$hifx" "${site[@]}" route --source "$work/route.txt" --dest "$work/route.pdb"))"
cp "$work/route.pdb" "$work/route-indexed.pdb"

# The MVRS route of 30,000 meters, indexes on.
awk -v meters=30000 -f bench/mvrs_route.awk > "$work/route.dat"
mvrs_route=$(measure drop_route "$hifx" "${site[@]}" route --source "$work/route.dat" --dest "$work/route.pdb" --map Mvrs)

# The reading HIF of 32,600 meters (indexes off, to stay within the records
# a file holds), to a billing file with orphans and a re-read file.
rm -f "$work/route.pdb"
make_big_reading > /dev/null
drop_reading() { rm -f "$work/billing.txt" "$work/orphans.txt" "$work/reread.pdb"; }
row '`hifx reading`' '≤ 60 ms' "$(ms $(measure drop_reading "$hifx" "${site[@]}" --yes reading \
  --source "$work/reading.pdb" --dest "$work/billing.txt" --orphans "$work/orphans.txt" --orphan-replace \
  --reread "$work/reread.pdb"))"
row '`hifx dump`' '≤ 30 ms' "$(ms $(measure true "$hifx" dump "$work/reading.pdb"))"

# The MVRS reading file of the same meters.
drop_mvrs() { rm -f "$work/reading.dat"; }
mvrs_reading=$(measure drop_mvrs "$hifx" "${site[@]}" reading --source "$work/reading.pdb" \
  --dest "$work/reading.dat" --map Mvrs --no-orphans --no-reread)
row 'MVRS route / MVRS reading' '≤ 80 ms each' "$(ms $mvrs_route) / $(ms $mvrs_reading)"

drop_pdf() { rm -f "$work/reading.pdf"; }
pages() { pdfinfo "$work/reading.pdf" 2>/dev/null | awk '/^Pages:/ {print $2}'; }
report=$(measure drop_pdf "$hifx" "${site[@]}" report --type reading --pdf "$work/reading.pdf" "$work/reading.pdb")
row "Reading Report, $(pages) pages to PDF" '≤ 1.2 s' "$(ms $report)"

# The engine's HIF write against Palm::PDB writing the same records, both on
# one core: the machine's cores need not run at one speed, and a ratio of two
# runs on different cores says little.
taskset -c "$(($(nproc) - 1))" build/release/bench/hif_bench --benchmark_filter='^(write|palm_pdb_perl_write)/' \
  > "$work/hif_bench.txt" 2>&1 || true
ratio=$(grep -o 'ratio=[0-9.]*' "$work/hif_bench.txt" | cut -d= -f2)
row 'HIF write against Palm::PDB writing the same records' '≥ 20×' "${ratio:-(no Palm::PDB)}×"

# The readers on a reading HIF of 200 MB: the same meters, each record
# followed by bytes no field reads.
python3 bench/pad_records.py "$work/reading.pdb" "$work/big.pdb" 200 > /dev/null
drop_big() { rm -f "$work/big-billing.txt" "$work/big.pdf"; }
memory="dump $(mb $(measure true "$hifx" dump "$work/big.pdb"))"
memory+=", view $(mb $(measure true "$hifx" view "$work/big.pdb"))"
memory+=", reading $(mb $(measure drop_big "$hifx" "${site[@]}" reading --source "$work/big.pdb" \
  --dest "$work/big-billing.txt" --no-orphans --no-reread))"
memory+=", report $(mb $(measure drop_big "$hifx" "${site[@]}" report --type reading --pdf "$work/big.pdf" \
  "$work/big.pdb"))"
# A distribution file of 200 MB: the example's settings and maps, then a
# section of notes that a load passes over.
{ cat examples/site.dst; printf '\r\n[NOTES]\r\n'; head -c 200M /dev/zero | tr '\0' 'x'; } > "$work/big.dst"
memory+=", dist load $(mb $(measure true "$hifx" --site "$work/big-site" dist load "$work/big.dst"))"
row 'peak memory on a 200 MB file' '≤ 64 MB each' "$memory"

echo "Measured $(date -u +%Y-%m-%d) on $(nproc) cores ($(grep -m1 'model name' /proc/cpuinfo | cut -d: -f2 | sed 's/^ //')), Release build, median of $runs runs:"
echo
echo "| road | now | target |"
echo "|---|---|---|"
printf '%s\n' "${rows[@]}"
