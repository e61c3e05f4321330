#!/usr/bin/env bash
# Times `hifx.exe route` of the Windows build under Wine on the generated
# route file of bench/route_bench.sh (30,000 meters in 100 routes, indexes
# on), beside the Linux build on the same file, and checks that the two HIFs
# are the same bytes. Needs scripts/test-windows.sh to have run once (the
# Windows build and its Wine prefix). Not a test: figures only.
#
#   bench/windows_route_bench.sh [RUNS]
set -euo pipefail
runs="${1:-3}"
source "$(dirname "$0")/common.sh"
exe=build/windows/src/hifx.exe
[ -x "$exe" ] || { echo "no $exe: run scripts/test-windows.sh first" >&2; exit 2; }
wine=$(command -v wine64 || command -v wine || echo /usr/lib/wine/wine64)
export WINEPREFIX="$PWD/build/windows-wine" WINEDEBUG=-all WINEDLLOVERRIDES="mscoree,mshtml="

big_route_file "$work/route.txt"
echo "source: $(wc -l < "$work/route.txt") lines, $(du -k "$work/route.txt" | cut -f1) KB"
export SOURCE_DATE_EPOCH=1700000000 TZ=UTC

"$wine" reg delete 'HKLM\Software\Norvane, Inc.' /f >/dev/null 2>&1 || true
"$wine" "$exe" --site "$work/site-windows" dist load examples/site.dst 2>/dev/null
"$wine" "$exe" --site "$work/site-windows" route --source "$work/route.txt" --dest "$work/route-linux.pdb" \
  >/dev/null 2>&1 || true  # starts Wine's server and warms its caches
for run in $(seq "$runs"); do
  rm -f "$work/route-windows.pdb"
  /usr/bin/time -f "hifx.exe under Wine, run $run: %e s wall (%U user, %S system)" \
    "$wine" "$exe" --site "$work/site-windows" route --source "$work/route.txt" --dest "$work/route-windows.pdb" \
    > "$work/log.txt"
done
for run in $(seq "$runs"); do
  rm -f "$work/route-linux.pdb"
  /usr/bin/time -f "hifx on Linux, run $run: %e s wall (%U user, %S system)" \
    "$hifx" "${site[@]}" route --source "$work/route.txt" --dest "$work/route-linux.pdb" > /dev/null
done
"$wine" reg delete 'HKLM\Software\Norvane, Inc.' /f >/dev/null 2>&1 || true
tail -2 "$work/log.txt"
cmp "$work/route-windows.pdb" "$work/route-linux.pdb"
echo "both HIFs: $(du -k "$work/route-linux.pdb" | cut -f1) KB, $(pdb_records "$work/route-linux.pdb") records, the same bytes"
