#!/usr/bin/env bash
# Builds the fuzz preset and runs fuzz targets one after another on working
# copies of the seed corpora in build/fuzz/corpus/NAME, where the inputs found
# accumulate from run to run, each with the dictionary of its format. Exits
# non-zero when a fuzzer finds a crash, a leak, a timeout or a memory blow-up;
# the input that did it is left in build/fuzz/artifacts/NAME/.
#
#   fuzz/run.sh [SECONDS]            every target for SECONDS each (default 60)
#   fuzz/run.sh SECONDS NAME...      the targets named, SECONDS each
#   fuzz/run.sh NAME [SECONDS]       one target, e.g. fuzz/run.sh map_load 3600
#
# NAME: hif_read map_load dist_load route_flat route_reread route_mvrs e5k_read
#       reading report registry_values font_subset
# The seed corpora in fuzz/corpus/ are made by fuzz/make-corpus.sh.
# HIFX_FUZZ_TIMEOUT: seconds one input may take before it counts as a hang
# (default 10); give more on a machine busy with other work.
set -euo pipefail
cd "$(dirname "$0")/.."

all=(hif_read map_load dist_load route_flat route_reread route_mvrs e5k_read reading report registry_values
  font_subset)
usage() {
  echo "usage: fuzz/run.sh [SECONDS] [NAME]...  or  fuzz/run.sh NAME [SECONDS]" >&2
  exit 2
}
is_number() { case "$1" in ''|*[!0-9]*) return 1 ;; *) return 0 ;; esac; }

seconds=60
names=()
if [ $# -gt 0 ] && ! is_number "$1"; then
  # NAME [SECONDS]
  [ $# -le 2 ] || usage
  names=("$1")
  if [ $# -eq 2 ]; then
    is_number "$2" || usage
    seconds="$2"
  fi
else
  if [ $# -gt 0 ]; then
    seconds="$1"
    shift
  fi
  names=("$@")
fi
[ ${#names[@]} -gt 0 ] || names=("${all[@]}")
for name in "${names[@]}"; do
  case " ${all[*]} " in
    *" $name "*) ;;
    *) echo "fuzz/run.sh: no fuzz target $name" >&2; usage ;;
  esac
done

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
  options=(-max_total_time="$seconds" -rss_limit_mb=512 -max_len=65536 -timeout="${HIFX_FUZZ_TIMEOUT:-10}"
           -artifact_prefix="$artifacts/" -print_final_stats=1)
  case "$name" in
    hif_read|reading|report) options+=(-dict=fuzz/hif.dict) ;;
    map_load) options+=(-dict=fuzz/map.dict) ;;
    dist_load) options+=(-dict=fuzz/dist.dict) ;;
    route_flat|route_reread) options+=(-dict=fuzz/flat.dict) ;;
    route_mvrs) options+=(-dict=fuzz/mvrs.dict) ;;
    e5k_read) options+=(-dict=fuzz/e5000.dict) ;;
    registry_values) options+=(-dict=fuzz/registry.dict) ;;
  esac
  # The targets' scratch folders go in a temporary folder of the run's own,
  # taken away after it.
  scratch="$PWD/build/fuzz/tmp/$name"
  rm -rf "$scratch"
  mkdir -p "$scratch"
  status=0
  TMPDIR="$scratch" build/fuzz/fuzz/fuzz_"$name" "$corpus" "${options[@]}" 2> "build/fuzz/$name.log" || status=$?
  rm -rf "$scratch"
  grep -E '^stat::(number_of_executed_units|peak_rss_mb)' "build/fuzz/$name.log" | sed "s/^/fuzz_$name: /" || true
  grep -E '^#[0-9]+.* cov: ' "build/fuzz/$name.log" | tail -1 | sed "s/^/fuzz_$name: /" || true
  if [ "$status" -ne 0 ]; then
    tail -40 "build/fuzz/$name.log" >&2
    echo "fuzz_$name: failed with status $status; the input is in $artifacts/" >&2
    exit "$status"
  fi
  echo "fuzz_$name: no crash in ${seconds}s"
done
