#!/usr/bin/env bash
# Runs the commands of transcripts, the lines that begin with "$ ", and compares what they print and
# how they end with what follows them there. They run in the folder of the transcripts. With
# UPDATE=1 the transcripts are written anew.
#
# Usage: transcript_test.sh PROGRAM TRANSCRIPT...
set -euo pipefail

program=$(realpath "$1")
shift
export LC_ALL=C NO_COLOR=
actual=$(mktemp)
trap 'rm -f "$actual"' EXIT

# What the commands are written with.
derview() { "$program" "$@"; }
# half FILE: the first half of hexadecimal digits.
half() { tr -d '\n' <"$1" | head -c $(($(tr -d '\n' <"$1" | wc -c) / 4 * 2)); }
# replace FILE OFFSET OCTETS: the digits with some octets replaced from an offset on.
replace() {
    local digits
    digits=$(tr -d '\n' <"$1")
    printf '%s' "${digits:0:$2 * 2}$3${digits:$2 * 2 + ${#3}}"
}

failed=0
for transcript in "$@"; do
    cd "$(dirname "$transcript")"
    name=$(basename "$transcript")
    grep '^\$ ' "$name" | while IFS= read -r line; do
        printf '%s\n' "$line"
        status=0
        eval "${line#\$ }" 2>&1 </dev/null || status=$?
        ((status == 0)) || printf '[%d]\n' "$status"
    done >"$actual"
    if [[ -n ${UPDATE:-} ]]; then
        cp "$actual" "$name"
    elif ! diff -u "$name" "$actual"; then
        failed=1
    fi
    cd - >/dev/null
done
((failed == 0)) && echo "$# transcripts as expected"
exit "$failed"
