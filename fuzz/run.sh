#!/usr/bin/env bash
# Builds the fuzz preset and runs every fuzz target for SECONDS each (default
# 60), or only the targets named, on working copies of the seed corpora in
# build/fuzz/corpus/NAME, where the inputs found accumulate from run to run.
# Exits non-zero when a fuzzer finds a crash, a leak, a timeout or a memory
# blow-up; the input that did it is left in build/fuzz/artifacts/NAME/.
#
#   fuzz/run.sh [SECONDS] [NAME]...      NAME: hif_read map_load dist_load route_flat reading route_mvrs e5k_read report
set -euo pipefail
cd "$(dirname "$0")/.."

seconds="${1:-60}"
shift || true
case "$seconds" in
  ''|*[!0-9]*) echo "usage: fuzz/run.sh [SECONDS] [NAME]..." >&2; exit 2 ;;
esac
names=("$@")
[ ${#names[@]} -gt 0 ] || names=(hif_read map_load dist_load route_flat reading route_mvrs e5k_read report)

cmake --preset fuzz >/dev/null
targets=()
for name in "${names[@]}"; do targets+=("fuzz_$name"); done
cmake --build --preset fuzz -j2 --target "${targets[@]}"

for name in "${names[@]}"; do
  corpus=build/fuzz/corpus/$name
  artifacts=build/fuzz/artifacts/$name
  mkdir -p "$corpus" "$artifacts"
  for seed in fuzz/corpus/"$name"/*; do
    [ -e "$seed" ] || continue
    [ -e "$corpus/$(basename "$seed")" ] || cp "$seed" "$corpus/"
  done
  options=(-max_total_time="$seconds" -rss_limit_mb=512 -max_len=65536 -timeout=10
           -artifact_prefix="$artifacts/" -print_final_stats=1)
  case "$name" in
    hif_read) options+=(-dict=fuzz/hif.dict) ;;
    map_load) options+=(-dict=fuzz/map.dict) ;;
    route_mvrs) options+=(-dict=fuzz/mvrs.dict) ;;
  esac
  status=0
  build/fuzz/fuzz/fuzz_"$name" "$corpus" "${options[@]}" 2> "build/fuzz/$name.log" || status=$?
  grep -E '^stat::(number_of_executed_units|peak_rss_mb)' "build/fuzz/$name.log" | sed "s/^/fuzz_$name: /" || true
  if [ "$status" -ne 0 ]; then
    tail -40 "build/fuzz/$name.log" >&2
    echo "fuzz_$name: failed with status $status; the input is in $artifacts/" >&2
    exit "$status"
  fi
  echo "fuzz_$name: no crash in ${seconds}s"
done
