#!/usr/bin/env bash
# Looks up serial numbers in lists that the openssl command has issued, with indexes that fit, that
# belong to another list, and that are damaged.
set -euo pipefail

program=$1
lists=$(dirname "${BASH_SOURCE[0]}")/../data/crl.txt
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# list NAME FILE: the octets of a row of the data file.
list() {
    local digits
    digits=$(awk -F'|' -v name="$1" 'index($1, name) == 1 {gsub(/[ \r]/, "", $3); print $3; exit}' "$lists")
    # shellcheck disable=SC2001
    printf "$(sed 's/../\\x&/g' <<<"$digits")" >"$work/$2"
}
list 'reasons, dates of invalidity' four.crl
list 'two entries' two.crl
cd "$work"

# expect INDEX: what is printed on the standard input, with an index that was made or kept.
serials=(10 20 30 90000001 0090000001 11)
expect() {
    sed "s/INDEX/$1/" >expected
    "$program" "$2" list.index "${serials[@]}" >printed
    diff expected printed || { echo "FAILED: $2, index to be $1"; exit 1; }
}
four='4 entries, index INDEX
10: revoked 240101000000Z, keyCompromise
20: revoked 240103000000Z, cACompromise, invalid since 20231231235959Z
30: revoked 240104000000Z
90000001: revoked 240102000000Z, certificateHold
0090000001: revoked 240102000000Z, certificateHold
11: not in the list'
two='2 entries, index INDEX
10: revoked 240101000000Z, keyCompromise
20: not in the list
30: not in the list
90000001: revoked 240102000000Z
0090000001: revoked 240102000000Z
11: not in the list'
expect made four.crl <<<"$four"
expect kept four.crl <<<"$four"
expect made two.crl <<<"$two"
expect kept two.crl <<<"$two"
printf 'x' | dd of=list.index bs=1 seek=70 conv=notrunc status=none
expect made two.crl <<<"$two"
: >list.index
expect made two.crl <<<"$two"

# refused TEXT ARGUMENT...: the program ends with 1 and says TEXT.
refused() {
    local text=$1 got=0
    shift
    "$program" "$@" >output 2>&1 || got=$?
    ((got == 1)) && grep -qF -- "$text" output || { echo "FAILED: $*: $got"; cat output; exit 1; }
}
head -c 200 four.crl >cut.crl
refused "cut.crl: ASN1S_INVALID_LENGTH" cut.crl cut.index 10
refused "missing.crl: ASN1S_END_OF_BUFFER" missing.crl list.index 10
refused "cannot be written" four.crl missing/list.index 10
refused "revocation_lookup: " four.crl list.index 1x
echo "all as expected"
