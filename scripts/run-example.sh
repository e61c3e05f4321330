#!/usr/bin/env bash
# The main job on the bundled examples: installs what is missing, builds,
# loads the example site into a fresh site folder, converts the fixed-column
# example route file into a route HIF and shows what it holds, fills it with
# readings as a handheld does, and converts the readings into the billing
# file, the orphan file and the re-read file; then the same road for the MVRS
# example route file and the E5000 example download; last, the Reading and
# Exception reports of the readings as PDF files. It builds the desktop
# program too, installs both programs with their manual pages and shell
# completion into out/prefix, and ends by saying how to start the desktop
# program on the example site.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/setup.sh
scripts/build.sh default --target hifx fill_readings hifx-desktop hifx_docs_files >/dev/null

out=out/example
hifx="build/default/src/hifx --site $out/site"
rm -rf "$out"
mkdir -p "$out"

echo "== hifx dist load examples/site.dst (into a fresh site folder, $out/site)"
$hifx dist load examples/site.dst
echo "== hifx settings"
$hifx settings
echo "== hifx site show"
$hifx site show
echo "== hifx map list; hifx map check Billing.hcm"
$hifx map list
$hifx map check Billing.hcm && echo "Billing.hcm: valid"

echo "== hifx route   (examples/route-fixed.txt through the map Billing)"
$hifx route
echo "== hifx dump $out/route.pdb"
$hifx dump "$out/route.pdb"
echo "== hifx view $out/route.pdb; hifx view $out/route.pdb --route 1"
$hifx view "$out/route.pdb"
$hifx view "$out/route.pdb" --route 1
echo "== hifx reread   (examples/reread-tags.txt through the map ReRead)"
$hifx reread

echo "== fill_readings $out/route.pdb $out/reading.pdb   (the handheld's part, simulated)"
build/default/tools/fill_readings "$out/route.pdb" "$out/reading.pdb" --seed 1
echo "== hifx --yes reading   ($out/reading.pdb through the maps Billing and Orphans)"
$hifx --yes reading
echo "== $out/billing.txt"
cat "$out/billing.txt"
echo "== $out/orphans.txt"
cat "$out/orphans.txt"
echo "== hifx view $out/reread.pdb --route 1"
$hifx view "$out/reread.pdb" --route 1

echo "== hifx route --source examples/route-mvrs.dat --map Mvrs   (an MVRS route file)"
$hifx route --source examples/route-mvrs.dat --dest "$out/mvrs-route.pdb" --map Mvrs
$hifx view "$out/mvrs-route.pdb"
echo "== fill_readings $out/mvrs-route.pdb $out/mvrs-reading.pdb; hifx reading --map Mvrs"
build/default/tools/fill_readings "$out/mvrs-route.pdb" "$out/mvrs-reading.pdb" --seed 1
$hifx reading --source "$out/mvrs-reading.pdb" --dest "$out/mvrs-reading.dat" --map Mvrs --no-orphans --no-reread
echo "== $out/mvrs-reading.dat"
cat "$out/mvrs-reading.dat"

echo "== hifx route --source examples/route-e5000.txt --map E5000   (an E5000 download)"
$hifx route --source examples/route-e5000.txt --dest "$out/e5000.pdb" --map E5000
$hifx view "$out/e5000.pdb"
echo "== fill_readings $out/e5000.pdb $out/e5000-reading.pdb; hifx reading --map E5000"
build/default/tools/fill_readings "$out/e5000.pdb" "$out/e5000-reading.pdb" --seed 1
$hifx reading --source "$out/e5000-reading.pdb" --dest "$out/e5000-upload.txt" --map E5000 --no-orphans --no-reread
echo "== $out/e5000-upload.txt"
cat "$out/e5000-upload.txt"

echo "== hifx report --type reading,exception --pdf $out/report.pdf $out/reading.pdb"
$hifx report --type reading,exception --pdf "$out/report.pdf" "$out/reading.pdb"
ls -l "$out/report-reading.pdf" "$out/report-exception.pdf"

echo "== cmake --install build/default --prefix out/prefix   (hifx, hifx-desktop, their manual pages and completion)"
cmake --install build/default --prefix out/prefix >/dev/null
echo "   put them on the PATH of this shell with: export PATH=\"\$PWD/out/prefix/bin:\$PATH\""

echo "== the desktop program on the same site, from this folder (log in as SUPER, password super123):"
echo "   build/default/src/shell/hifx-desktop --site $out/site"
