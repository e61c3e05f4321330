# Sourced by the benchmark scripts from the top of the tree. bench_site
# builds the named targets in Release, makes a work folder (removed on exit)
# and loads the example site into it with index records off, so that a route
# file of 32,767 records has its room for meters. It sets hifx, work and
# site (the --site option as an array).
bench_site() {
  cmake --preset release >/dev/null
  cmake --build --preset release -j2 --target "$@" >/dev/null
  hifx=build/release/src/hifx
  work=$(mktemp -d)
  trap 'rm -rf "$work"' EXIT
  site=(--site "$work/site")
  "$hifx" "${site[@]}" dist load examples/site.dst 2>/dev/null
  printf 'DIST 1.0\r\n[REGISTRY]\r\nToken:\r\n> IndexControl = "0"\r\n' > "$work/noindex.dst"
  "$hifx" "${site[@]}" dist load "$work/noindex.dst" 2>/dev/null
}
