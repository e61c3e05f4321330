#!/usr/bin/env bash
# Runs the README's ```sh blocks as a reader pastes them: in order, in one
# bash session (bash -e, so the first command that fails stops it), from the
# top of a scratch copy of this checkout, after the quick start. The quick
# start's first command (scripts/run-example.sh: the build, the example site
# and the install into out/prefix) is run here first, in the checkout itself;
# in the quick-start block the two script commands are then left out and the
# rest of it (putting out/prefix/bin on PATH) runs. A block right after a line
# "<!-- not run -->" is not run: it starts a window, or builds for a long
# time. The copy holds the tracked files, the example's out/example, and
# links to build/ and out/prefix; the default site folder is an empty one
# of the run's own. A failure names the block by its README line.
set -euo pipefail
cd "$(dirname "$0")/.."
root=$PWD

scripts/run-example.sh > /dev/null

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
copy="$work/checkout"
mkdir -p "$copy/out" "$work/data"
git ls-files -z | tar --null -T - -cf - | tar -xf - -C "$copy"
cp -a out/example "$copy/out/example"
ln -s "$root/build" "$copy/build"
ln -s "$root/out/prefix" "$copy/out/prefix"

# The blocks as one script, each headed by a line that names it.
awk '
  BEGIN { print "trap '\''echo \"test-readme: the README block at line $readme_block failed\" >&2'\'' ERR" }
  /^<!-- not run -->/ { skip = 1; next }
  /^```sh$/ && !inside { inside = 1; if (!skip) print "readme_block=" NR; next }
  /^```$/ && inside { inside = 0; skip = 0; next }
  inside && !skip && !/^scripts\/(run-example|test)\.sh( |$)/ { print }
  !inside && !/^[[:space:]]*$/ { skip = skip && /^<!--/ }
' README.md > "$work/blocks.sh"

cd "$copy"
env -u HIFX_SITE XDG_DATA_HOME="$work/data" bash -e "$work/blocks.sh"
echo "test-readme: $(grep -c '^readme_block=' "$work/blocks.sh") README blocks ran"
