#!/usr/bin/env bash
# The generated bash and zsh completion of hifx, worked as each shell works
# it: the words of a line set by hand, the completing function called, and
# its offers looked at. Map and setting names come from hifx on the example
# site; zsh's own completion functions are stood in for by ones that print
# what they are given that matches the word. zsh is checked where it is
# installed.
#
#   completion-test.sh COMPLETION_DIR HIFX EXAMPLES_DIR
set -euo pipefail
completion=$(realpath "$1") hifx=$(realpath "$2") examples=$(realpath "$3")

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
mkdir -p "$work/bin" "$work/data"
ln -s "$hifx" "$work/bin/hifx"
# The default site is an empty one of the test's own; the example is loaded
# into ./site, which only a --site on the line reaches.
export PATH="$work/bin:$PATH" XDG_DATA_HOME="$work/data"
unset HIFX_SITE
cd "$work"
hifx --site site dist load "$examples/site.dst" > /dev/null 2>&1
touch route-a.txt route-b.txt

offers_bash() {
  bash -c 'source "$0"; COMP_WORDS=("$@"); COMP_CWORD=$(($# - 1)); _hifx; printf "%s\n" "${COMPREPLY[@]}"' \
    "$completion/hifx.bash" "$@"
}

offers_zsh() {
  zsh -fc 'compadd() { print -rl -- ${(M)${(P)2}:#${words[CURRENT]}*} }
           _describe() { print -rl -- ${(M)${${(P)2}%%:*}:#${words[CURRENT]}*} }
           _files() { print -r -- "(files$*)" }
           source "$0"; words=("$@"); CURRENT=$#; _hifx' "$completion/_hifx" "$@"
}

failures=0
# expect SHELL "WANTED ... [!UNWANTED ...]" WORD...: completing the last WORD
# offers every WANTED and no UNWANTED.
expect() {
  local shell=$1 want=$2 offers word
  shift 2
  offers=$("offers_$shell" "$@" || true)
  for word in $want; do
    if [[ $word == !* ]]; then
      grep -qxF -- "${word#!}" <<< "$offers" || continue
    else
      ! grep -qxF -- "$word" <<< "$offers" || continue
    fi
    echo "$shell: completing \"$*\": wanted $word, offered: $(echo $offers)" >&2
    failures=$((failures + 1))
  done
}

for shell in bash zsh; do
  if ! command -v "$shell" > /dev/null; then
    echo "completion-test: no $shell here; its completion not tried"
    continue
  fi
  # Commands, subcommands and options, as the definition gives them.
  expect $shell "route !reread" hifx ro
  expect $shell "list show check" hifx map ''
  expect $shell "--site --set !--source" hifx --s
  expect $shell "--source --map --format !--site !--orphan-map" hifx route --
  expect $shell "--orphan-map --orphan-append" hifx reading --orphan-
  expect $shell "PDB PRC VFS" hifx route --format ''
  expect $shell "sort stats !route" hifx help s
  # Map names from the site on the line: by name, of the option's kind...
  expect $shell "Billing !Billing.hcm" hifx --site site route --map B
  expect $shell "Orphans !Billing" hifx --site site reading --orphan-map ''
  expect $shell "!Billing" hifx route --map B
  # ...and as map files with their extension for map show and check.
  expect $shell "Billing.hcm" hifx --site site map show B
  expect $shell "Billing.hcm" hifx --site ./site map check Bil
  # Setting names, and the second positional of settings set left free.
  expect $shell "RouteSource RouteDestination !AutoReRead" hifx --site site settings get Route
  expect $shell "!RouteSource" hifx --site site settings set RouteSource R
done

# Files, as bash offers them; zsh hands them to its own _files.
expect bash "route-a.txt route-b.txt" hifx dump route-
expect bash "route-a.txt route-b.txt" hifx --site site route --source route-
if command -v zsh > /dev/null; then
  expect zsh "(files)" hifx dump route-
  expect zsh "(files-/)" hifx --site ''
fi

[ "$failures" -eq 0 ] || { echo "completion-test: $failures failed" >&2; exit 1; }
echo "completion-test: all offers as expected"
