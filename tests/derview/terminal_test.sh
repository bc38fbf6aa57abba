#!/usr/bin/env bash
# What derview does on a terminal: colours, the terminal's width, progress, no octets.
#
# Usage: terminal_test.sh PROGRAM
set -euo pipefail

program=$(realpath "$1")
cd "$(dirname "${BASH_SOURCE[0]}")/../data/derview"
command -v script >/dev/null || { echo "skipped: the script command is missing"; exit 77; }
script -qefc true /dev/null </dev/null >/dev/null 2>&1 || { echo "skipped: there are no terminals"; exit 77; }
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
export TERM=xterm
unset NO_COLOR
escape=$'\x1b['

# on_terminal COLUMNS COMMAND: runs it on a new terminal; what that shows goes to the file screen.
on_terminal() {
    script -qefc "stty cols $1; $2" /dev/null </dev/null | tr -d '\r' >"$work/screen"
}
# check WHAT COMMAND...: the command must succeed.
check() {
    local what=$1
    shift
    if ! "$@"; then
        echo "FAILED: $what; the terminal shows"
        head -c 2000 "$work/screen" | cat -v
        exit 1
    fi
}
has() { grep -qF -- "$1" "$work/screen"; }
lacks() { ! has "$1"; }
longest_line() { sed 's/\x1b\[[0-9;]*m//g' "$work/screen" | wc -L; }

request="'$program' 'OCSPRequest-one.hex'"
on_terminal 60 "$request"
check "colours on a terminal" has "${escape}36mtbsRequest"
check "lines within 60 columns" test "$(longest_line)" -le 60
on_terminal 200 "'$program' 'EncryptedPrivateKeyInfo-pbes2.hex'"
check "long values use a wide terminal" test "$(longest_line)" -gt 150
check "long values keep to a wide terminal" test "$(longest_line)" -le 200

on_terminal 80 "NO_COLOR=1 $request"
check "NO_COLOR" lacks "$escape"
on_terminal 80 "TERM=dumb $request"
check "a terminal without colours" lacks "$escape"
on_terminal 80 "$request --color=never"
check "--color=never" lacks "$escape"
on_terminal 80 "NO_COLOR=1 $request --color=always"
check "--color=always" has "${escape}36mtbsRequest"
on_terminal 80 "'$program' --type Name 'Name-hostile.hex' --color never"
check "nothing of a message reaches the terminal unescaped" lacks $'\x1b'

on_terminal 80 "$request --format der || echo status \$?"
check "no octets on a terminal" has "octets are not written to a terminal"
check "and that is wrong usage" has "status 2"

# Progress is shown after a fifth of a second. How many messages last that long depends on what else
# the machine does, so there are twice as many until it shows.
tr -d '\n' <"Certificate-every-extension.hex" >"$work/one"
for _ in {1..400}; do cat "$work/one"; done >"$work/more.hex"
count=400
for _ in {1..8}; do
    on_terminal 80 "'$program' --check --input hex '$work/more.hex' | tail -n 1"
    if grep -q 'more.hex#[0-9]*: [0-9]* %, message [0-9]*' "$work/screen"; then
        break
    fi
    cat "$work/more.hex" "$work/more.hex" >"$work/twice" && mv "$work/twice" "$work/more.hex"
    count=$((2 * count))
done
check "progress" grep -q 'more.hex#[0-9]*: [0-9]* %, message [0-9]*' "$work/screen"
check "the total" has "$count messages: $count identical, 0 differ, 0 errors"
"$program" --check --input hex "$work/more.hex" >/dev/null 2>"$work/screen"
check "no progress without a terminal" test ! -s "$work/screen"
echo "all as expected"
