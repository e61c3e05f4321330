#!/usr/bin/env bash
# Builds the fuzz preset and runs fuzz_hif_read for SECONDS (default 60) on a
# working copy of the seed corpus in build/fuzz/corpus/hif_read, where the
# inputs it finds accumulate from run to run. Further arguments go to
# libFuzzer. Exits non-zero when the fuzzer finds a crash, a leak, a timeout
# or a memory blow-up; the input that did it is left in
# build/fuzz/artifacts/hif_read/.
#
#   fuzz/run.sh [SECONDS] [LIBFUZZER_OPTION]...
set -euo pipefail
cd "$(dirname "$0")/.."

seconds="${1:-60}"
shift || true
case "$seconds" in
  ''|*[!0-9]*) echo "usage: fuzz/run.sh [SECONDS] [LIBFUZZER_OPTION]..." >&2; exit 2 ;;
esac

cmake --preset fuzz >/dev/null
cmake --build --preset fuzz -j2 --target fuzz_hif_read

corpus=build/fuzz/corpus/hif_read
artifacts=build/fuzz/artifacts/hif_read
mkdir -p "$corpus" "$artifacts"
for seed in fuzz/corpus/hif_read/*; do
  [ -e "$corpus/$(basename "$seed")" ] || cp "$seed" "$corpus/"
done

status=0
build/fuzz/fuzz/fuzz_hif_read "$corpus" \
  -max_total_time="$seconds" \
  -rss_limit_mb=512 \
  -max_len=65536 \
  -timeout=10 \
  -dict=fuzz/hif.dict \
  -artifact_prefix="$artifacts/" \
  -print_final_stats=1 \
  "$@" || status=$?

if [ "$status" -ne 0 ]; then
  echo "fuzz_hif_read: failed with status $status; the input is in $artifacts/:" >&2
  ls -t "$artifacts" | head -5 >&2
  exit "$status"
fi
echo "fuzz_hif_read: no crash in ${seconds}s"
