#!/usr/bin/env bash
# Runs the program and compares what it reads with what the openssl command reads in the same file.
# shellcheck source=tests/examples/prologue.sh
source "$(dirname "${BASH_SOURCE[0]}")/prologue.sh"
need openssl

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

expect 2 "usage:" "$content"
expect 1 "E_INVALIDARG" "$content" 0x
expect 1 "cannot be written" "$content" "$certificate" "$work"
echo "all as expected"
