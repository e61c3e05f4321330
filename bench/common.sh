# Sourced by the benchmark scripts: builds hifx and fill_readings in Release,
# and gives a scratch folder ($work, removed on exit) with the example site
# loaded ($hifx, ${site[@]}).
cd "$(dirname "${BASH_SOURCE[0]}")/.."
cmake --preset release >/dev/null
cmake --build --preset release -j2 --target hifx fill_readings >/dev/null
hifx=build/release/src/hifx

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
site=(--site "$work/site")
"$hifx" "${site[@]}" dist load examples/site.dst 2>/dev/null

# Turns the site's index records off, so that a route file of 32,767
# records has its room for meters.
no_indexes() {
  printf 'DIST 1.0\r\n[REGISTRY]\r\nToken:\r\n> IndexControl = "0"\r\n' > "$work/noindex.dst"
  "$hifx" "${site[@]}" dist load "$work/noindex.dst" 2>/dev/null
}

# The record count of a PDB, from its header.
pdb_records() {
  od -An -tu1 -j76 -N2 "$1" | awk '{print $1 * 256 + $2}'
}

# Makes $work/reading.pdb: a generated route file of 32,600 meters in 100
# routes, converted without indexes (the file must stay within 32,767
# records) and filled by fill_readings with seed 7.
make_big_reading() {
  no_indexes
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
  echo "reading HIF: $(du -k "$work/reading.pdb" | cut -f1) KB, $(pdb_records "$work/reading.pdb") records"
}

# Writes FILE: a fixed-column route file of 30,000 meters in 100 routes, in
# the example layout (see the map Billing): route, sequence, tag, type,
# digits, decimals, previous, high, low, read type, last date, utility,
# address, name, account, serial, message, user 1.
big_route_file() {
  awk 'BEGIN {
    split("MAIN OAK ELM PINE MAPLE CEDAR BIRCH ASH", streets, " ");
    split("SMITH JONES GARCIA NGUYEN BROWN DAVIS MILLER WILSON", names, " ");
    for (i = 0; i < 30000; i++) {
      route = int(i / 300) + 1;
      printf "%04d%06d%08d%s%d%d%010d%010d%010d%s%08d%02d%-30s%-30s%-12s%-12s%-30s%-10s\r\n",
        route, i % 300 + 1, 1000000 + i, "W", 6, 0, i * 7 % 900000, i * 7 % 900000 + 5000,
        i * 7 % 900000 + 1, "R", 20240131, 1,
        sprintf("%d %s ST", i % 997 + 1, streets[i % 8 + 1]),
        sprintf("%s %s %d", names[i % 8 + 1], names[(i * 3) % 8 + 1], i % 50),
        sprintf("AC%08d", i), sprintf("SN%08d", i), "", sprintf("U%d", i)
    }
  }' > "$1"
}
