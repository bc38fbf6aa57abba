#!/usr/bin/env bash
# Runs the program on whole and on damaged files: what it says, and how it ends.
# shellcheck source=tests/examples/prologue.sh
source "$(dirname "${BASH_SOURCE[0]}")/prologue.sh"

bundle=/etc/ssl/certs/ca-certificates.crt
if [[ ! -s $bundle ]]; then
    echo "skipped: $bundle is missing (package ca-certificates)"
    exit 77
fi

count=$(grep -c 'BEGIN CERTIFICATE' "$bundle")
# One certificate as PEM and as DER, without help from another program than base64.
awk '/BEGIN/ {on = 1} on {print} /END/ {exit}' "$bundle" >one.pem
grep -v -- '-----' one.pem | base64 -d >one.der
size=$(stat -c %s one.der)

expect 0 "$count certificates, $count identical, 0 complaints"
expect 0 "$count certificates, $count identical, 0 complaints" "$bundle"
((count == $(grep -c ' identical$' output)))
grep -qE '^decoding and encoding: [0-9]+ certificates/s, [0-9.]+ MB/s$' output
expect 0 "2 certificates, 2 identical" one.pem one.der
cat one.der one.der >two.der
expect 0 "2 certificates, 2 identical" two.der

head -c 20000 "$bundle" >cut.pem
expect 1 "the block is cut short: the file ends in it" cut.pem
head -c $((size - 1)) one.der >cut.der
expect 1 "not a whole certificate, it may be cut short: ASN1S_INVALID_LENGTH (-5)" cut.der
{ cat one.der; printf 'junk'; } >rest.der
expect 1 "octet $size: 4 octets after the last certificate" rest.der
{
    echo '-----BEGIN CERTIFICATE-----'
    base64 rest.der
    echo '-----END CERTIFICATE-----'
} >rest.pem
expect 1 "line 1: 4 octets after the last certificate" rest.pem
sed '3s/./!/' one.pem >bad.pem
expect 1 "line 1: a character is not base64" bad.pem

printf '\x30\x03\x02\x01\x05' >other.der
expect 1 "octet 0: does not decode: ASN1S_" other.der
# A length in more octets than it needs is BER, and comes back shorter.
{ printf '\x30\x83\x00'; tail -c +3 one.der; } >long.der
expect 1 "differs from octet 1 on" long.der
: >empty
expect 1 "not a whole certificate" empty
printf -- '-----BEGIN OTHER-----\nAA==\n-----END OTHER-----\n' >other.pem
expect 1 "0 certificates, 0 identical, 0 complaints" other.pem

expect 2 "cannot be read" missing.pem
expect 2 "cannot be read" "$work"
expect 2 "1 certificates, 1 identical" one.pem missing.pem
expect 2 "usage:" --wrong
expect 0 "usage:" --help
echo "all as expected"
