#!/usr/bin/env bash
# An install into a prefix of its own, and what a user then has: a hifx that
# runs, every manual page found by man and clean to groff, each page's
# synopsis the usage line that the command's --help prints, and the bash and
# zsh completion where the shells look for them.
#
#   install-test.sh BUILD_DIR
set -euo pipefail
build=$(realpath "$1")
prefix=$(mktemp -d)
trap 'rm -rf "$prefix"' EXIT
fail() { echo "install-test: $*" >&2; exit 1; }

cmake --install "$build" --prefix "$prefix" > /dev/null
hifx="$prefix/bin/hifx"
"$hifx" --version | grep -q . || fail "the installed hifx did not say its version"
for file in share/bash-completion/completions/hifx share/zsh/site-functions/_hifx share/man/man1/hifx.1 \
            share/hifx/examples/site.dst; do
  [ -s "$prefix/$file" ] || fail "$file not installed"
done

# The usage line, as --help prints it, of the line or of a command.
usage() { "$hifx" "$@" --help | sed -n 's/^usage: //p'; }
# A page's synopsis, as man shows it: the lines under SYNOPSIS, joined.
synopsis() {
  MANPATH="$prefix/share/man" MANWIDTH=1000 LC_ALL=C.UTF-8 man "$1" 2> /dev/null |
    sed -n '/^SYNOPSIS/,/^[A-Z]/{/^ /p}' | sed 's/^ *//' | paste -sd ' '
}

commands=$("$hifx" --help | sed -En '/^(Sub)?[Cc]ommands:/,/^$/{s/^  ([a-z]+) .*/\1/p}')
[ -n "$commands" ] || fail "no commands in hifx --help"
[ "$(synopsis hifx)" = "$(usage)" ] || fail "hifx(1) synopsis \"$(synopsis hifx)\" is not \"$(usage)\""
for command in $commands; do
  page="hifx-$command"
  [ -s "$prefix/share/man/man1/$page.1" ] || fail "no page $page.1"
  [ "$(synopsis "$page")" = "$(usage "$command")" ] ||
    fail "$page(1) synopsis \"$(synopsis "$page")\" is not \"$(usage "$command")\""
done
for page in "$prefix"/share/man/man1/*.1; do
  warnings=$(groff -man -ww -z "$page" 2>&1)
  [ -z "$warnings" ] || fail "$(basename "$page"): $warnings"
done
echo "install-test: $(ls "$prefix/share/man/man1" | wc -l) pages and the completion installed"
