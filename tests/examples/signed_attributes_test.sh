#!/usr/bin/env bash
# Runs the program and compares what it reads with what the openssl command reads in the same file.
set -euo pipefail

program=$1
if ! command -v openssl >/dev/null; then
    echo "skipped: the openssl command is missing"
    exit 77
fi
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work"

content=$(printf content | openssl dgst -sha256 -r | cut -d ' ' -f 1)
certificate=$(printf certificate | openssl dgst -sha256 -r | cut -d ' ' -f 1)

"$program" "$content" "$certificate" out.der >printed
sed -E 's/ \(.*\):/:/' printed >ours

# Each attribute has one identifier, and under it one primitive value. The command gives identifiers
# by name, digests in capitals, and a UTCTime without its century.
openssl asn1parse -inform DER -in out.der >parsed
awk -F: '
    BEGIN {
        oid["contentType"] = "1.2.840.113549.1.9.3"
        oid["messageDigest"] = "1.2.840.113549.1.9.4"
        oid["signingTime"] = "1.2.840.113549.1.9.5"
        oid["id-smime-aa-signingCertificateV2"] = "1.2.840.113549.1.9.16.2.47"
        oid["pkcs7-data"] = "1.2.840.113549.1.7.1"
    }
    /d=2 .*OBJECT/ {attribute = oid[$NF]; next}
    / prim: / {
        value = /OBJECT/ ? oid[$NF] : /UTCTIME/ ? "20" $NF : tolower($NF)
        print attribute ": " value
    }' parsed >theirs
if ! diff ours theirs || (($(wc -l <ours) != 4)); then
    echo "FAILED: the readings differ, or are not of four attributes:"
    cat printed parsed
    exit 1
fi
grep -qF "1.2.840.113549.1.9.4 (message digest): $content" printed
grep -qF "1.2.840.113549.1.9.16.2.47 (signing certificate): $certificate" printed

# Without a file the octets go to standard output.
"$program" "$content" "$certificate" 2>printed | openssl asn1parse -inform DER >/dev/null
(($(wc -l <printed) == 4))

# expect STATUS TEXT ARGUMENT...: the program ends with STATUS and says TEXT.
expect() {
    local status=$1 text=$2 got=0
    shift 2
    "$program" "$@" >output 2>&1 || got=$?
    if ((got != status)) || ! grep -qF -- "$text" output; then
        echo "FAILED: signed_attributes $*: status $got, expected $status and \"$text\" in"
        cat output
        exit 1
    fi
}
expect 2 "usage:" "$content"
expect 1 "E_INVALIDARG" "$content" 0x
expect 1 "cannot be written" "$content" "$certificate" "$work"
echo "all as expected"
