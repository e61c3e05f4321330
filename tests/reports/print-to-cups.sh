#!/usr/bin/env bash
# Prints the Reading Report of the example reading file on a real CUPS queue
# whose printer is cups-pdf, which writes what it is sent as a PDF, and holds
# that against the report hifx writes itself with --pdf: as many pages, each
# a sheet of the queue's paper with the landscape page turned onto it and
# about as much ink. (cups-pdf rewrites the fonts, so its text can't be
# read back.)
#
# Starts the print service when it is not running (as root, or through
# password-less sudo) and stops it again afterwards; adds its own queue,
# hifx-test-pdf, with its own cups-pdf settings, and removes both at the end.
# No other queue is touched. Where the service or cups-pdf can't be had it
# says why in one line and exits 77, which CTest shows as skipped.
#
#   print-to-cups.sh HIFX EXAMPLES_DIR
set -euo pipefail
hifx=$(realpath "$1") examples=$(realpath "$2")
queue=hifx-test-pdf
serverroot=/etc/cups  # where cups-pdf looks for cups-pdf-QUEUE.conf
queue_conf="$serverroot/cups-pdf-$queue.conf"

skip() { echo "print-to-cups: skipped: $*"; exit 77; }

PATH="$PATH:/usr/sbin:/sbin"
for tool in lpstat lpadmin lpinfo pdftotext pdfinfo flock; do
  command -v "$tool" > /dev/null || skip "no $tool (packages cups-client, poppler-utils)"
done
if [ "$(id -u)" -eq 0 ]; then
  as_root=()
elif command -v sudo > /dev/null && sudo -n true 2> /dev/null; then
  as_root=(sudo -n)
else
  skip "adding a print queue needs root or password-less sudo"
fi
running() { LC_ALL=C lpstat -r 2> /dev/null | grep -qx "scheduler is running"; }
if ! running; then
  command -v cupsd > /dev/null || skip "the print service is not running and there is no cupsd (package cups)"
fi

work=$(mktemp -d)
cupsd_pid=""
queue_added=""
cleanup() {
  if [ -n "$queue_added" ]; then
    "${as_root[@]}" lpadmin -x "$queue" 2> /dev/null || true
    "${as_root[@]}" rm -f "$queue_conf"
  fi
  if [ -n "$cupsd_pid" ]; then
    "${as_root[@]}" kill -TERM "$cupsd_pid" 2> /dev/null || true
    wait "$cupsd_pid" 2> /dev/null || true
  fi
  "${as_root[@]}" rm -rf "$work"
}
trap cleanup EXIT

# Runs of this test in other build folders share the service and the queue.
exec 9> "${TMPDIR:-/tmp}/hifx-print-to-cups.$(id -u).lock"
flock -w 100 9 || { echo "print-to-cups: another run holds the print queue" >&2; exit 1; }

# What went to the printer and how it went, then out.
fail() {
  echo "print-to-cups: $*" >&2
  {
    LC_ALL=C lpstat -l -p "$queue" || true
    LC_ALL=C lpstat -W all -o "$queue" || true
    [ -s "$work/cups-pdf.log" ] && sed 's/^/  cups-pdf: /' "$work/cups-pdf.log"
    [ -s "$work/cupsd.log" ] && sed 's/^/  cupsd: /' "$work/cupsd.log"
    "${as_root[@]}" tail -n 20 /var/log/cups/error_log 2> /dev/null | sed 's/^/  error_log: /'
  } >&2 || true
  exit 1
}

if ! running; then
  "${as_root[@]}" cupsd -f < /dev/null > "$work/cupsd.log" 2>&1 &
  cupsd_pid=$!
  for _ in $(seq 50); do
    running && break
    kill -0 "$cupsd_pid" 2> /dev/null || break
    sleep 0.2
  done
  if ! running; then
    cupsd_pid=""
    skip "the print service would not start: $(tr '\n' ' ' < "$work/cupsd.log")"
  fi
fi

LC_ALL=C lpinfo -v 2> /dev/null | grep -q ' cups-pdf:/' || skip "the print service has no cups-pdf backend (package printer-driver-cups-pdf)"
ppd=$(LC_ALL=C lpinfo -m 2> /dev/null | awk '/CUPS-PDF_opt\.ppd/ { print $1; exit }')
[ -n "$ppd" ] || ppd=$(LC_ALL=C lpinfo -m 2> /dev/null | awk '/CUPS-PDF.*\.ppd/ { print $1; exit }')
[ -n "$ppd" ] || skip "the print service lists no CUPS-PDF driver (package printer-driver-cups-pdf)"

# The queue's own cups-pdf settings: its PDFs and its log go to our folder.
mkdir "$work/printed"
printf 'Out %s\nAnonDirName %s\nLog %s\nLogType 3\n' "$work/printed" "$work/printed" "$work" |
  "${as_root[@]}" tee "$queue_conf" > /dev/null
queue_added=yes
"${as_root[@]}" lpadmin -p "$queue" -v "cups-pdf:/$queue" -m "$ppd" -E \
  -o PageSize=Letter -o printer-is-shared=false 2>&1 | grep -v "drivers are deprecated" >&2 || true
LC_ALL=C lpstat -p "$queue" 2> /dev/null | grep -q "enabled" || fail "the queue $queue was not added"
"${as_root[@]}" cancel -a "$queue" 2> /dev/null || true  # left by a run that was stopped
# cups-pdf names its log after the queue.
ln -s "cups-pdf-${queue}_log" "$work/cups-pdf.log"

export XDG_CONFIG_HOME="$work/config" SOURCE_DATE_EPOCH=1710000000 TZ=UTC
"$hifx" --site "$work/site" report --type reading --printer "$queue" "$examples/reading.pdb" ||
  fail "hifx report --printer $queue failed"
"$hifx" --site "$work/site" report --type reading --pdf "$work/written.pdf" "$examples/reading.pdb" ||
  fail "hifx report --pdf failed"

# The job is done when the queue holds none unfinished and cups-pdf has
# written its file.
printed=""
for _ in $(seq 120); do
  if [ -z "$(LC_ALL=C lpstat -o "$queue" 2> /dev/null)" ]; then
    printed=$(find "$work/printed" -name '*.pdf' -print -quit)
    [ -n "$printed" ] && break
  fi
  sleep 0.5
done
[ -n "$printed" ] || fail "no PDF from cups-pdf within 60 s (where AppArmor confines cups-pdf it may not write to $work)"
[ "$(find "$work/printed" -name '*.pdf' | wc -l)" -eq 1 ] || fail "more than one job printed: $(ls "$work/printed")"
# The job's files belong to its owner; root's are not ours to read otherwise.
"${as_root[@]}" cp "$printed" "$work/printed.pdf"
"${as_root[@]}" chmod a+r "$work/printed.pdf"

info() { LC_ALL=C pdfinfo "$1" | sed -n "s/^$2: *//p"; }
pages=$(info "$work/written.pdf" Pages)
[ "$(info "$work/printed.pdf" Pages)" = "$pages" ] ||
  fail "printed $(info "$work/printed.pdf" Pages) pages, the PDF has $pages"
# A printer takes a landscape report on its own paper standing up, the page
# turned by the print service: a portrait sheet of the queue's paper (A4 or
# letter) with the text running up it.
ink() { tail -c "$1" "$2" | tr -d '\377' | wc -c; }  # non-white bytes of a PGM's pixels
for page in $(seq "$pages"); do
  size=$(LC_ALL=C pdfinfo -f "$page" -l "$page" "$work/printed.pdf" | sed -n 's/^Page *[0-9]* size: *//p')
  case "$size" in
    "595 x 842 pts"* | "612 x 792 pts"*) ;;
    *) fail "printed page $page is $size, not a portrait A4 or letter sheet" ;;
  esac
  # At 10 dots an inch each side of the sheet holds text, turned: the printed
  # page's ink lies in a band as tall as the written page is wide.
  pdftoppm -q -r 10 -gray -f "$page" -l "$page" "$work/printed.pdf" "$work/p"
  pdftoppm -q -r 10 -gray -f "$page" -l "$page" "$work/written.pdf" "$work/w"
  printed_pgm=$(ls "$work"/p-*.pgm) written_pgm=$(ls "$work"/w-*.pgm)
  read -r pw ph < <(sed -n 2p "$printed_pgm")
  read -r ww wh < <(sed -n 2p "$written_pgm")
  [ "$pw" -lt "$ph" ] || fail "printed page $page is not standing up (${pw}x${ph})"
  [ "$ww" -gt "$wh" ] || fail "written page $page is not landscape (${ww}x${wh})"
  printed_ink=$(ink $((pw * ph)) "$printed_pgm") written_ink=$(ink $((ww * wh)) "$written_pgm")
  [ "$written_ink" -gt 0 ] || fail "written page $page is blank"
  # The same text on about the same area: the ink within a third either way.
  [ $((printed_ink * 3)) -ge $((written_ink * 2)) ] && [ $((printed_ink * 3)) -le $((written_ink * 4)) ] ||
    fail "printed page $page has $printed_ink inked dots at 10 dpi, the written page $written_ink"
  rm -f "$printed_pgm" "$written_pgm"
done
[ "$pages" -eq 1 ] && sheets="1 landscape page" || sheets="$pages landscape pages"
echo "print-to-cups: $sheets printed on $queue ($size), inked as the written report"
