#!/usr/bin/env bash
# Messages of more than a megabyte: what is too large to be checked as a whole is checked in pieces, and what
# an encoder would make differently is found in the pieces and around them.
#
# Usage: large_test.sh PROGRAM
set -euo pipefail

program=$1
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# The digits of large messages: "crl END EXTENSIONS" is a CRL with END behind eighty thousand entries,
# "set END" a SET OF AlgorithmIdentifier. "long" in front writes a length in more octets than it
# needs.
message() {
    awk -v kind="$1" -v end="${2:-}" -v extensions="${3:-}" '
        function tlv(tag, contents, count, size) {
            size = length(contents) / 2
            count = size < 128 ? 0 : size < 256 ? 1 : size < 65536 ? 2 : 3
            return tag sprintf(count == 0 ? "%02x" : "8" count "%0" 2 * count "x", size) contents
        }
        function many(element, all) {
            all = element
            while (length(all) < 80000 * length(element)) { all = all all }
            return substr(all, 1, 80000 * length(element))
        }
        BEGIN {
            algorithm = "300d06092a864886f70d01010b0500"
            time = "170d3236313132313133333330365a"
            name = "300d310b3009060355040613024445"
            if (kind == "set") {
                print tlv("31", many(algorithm) end)
                exit
            }
            entry = tlv("30", "02100abbccdd0abbccdd0abbccdd0abbccdd" time)
            list = tlv("30", many(entry) end)
            if (kind == "long crl") { sub(/^3083/, "308400", list) }
            tbs = tlv("30", "020101" algorithm name time time list extensions)
            print tlv("30", tbs algorithm "0302005a")
        }'
}
# expect TEXT OPTIONS...: what derview says of the CRL on standard input.
expect() {
    local text=$1
    shift
    "$program" --input hex "$@" >"$work/output" 2>&1 || true
    if ! grep -qF -- "$text" "$work/output"; then
        echo "FAILED: expected \"$text\" in"
        head -c 2000 "$work/output"
        exit 1
    fi
}

time=170d3236313132313133333330365a
list=tbsCertList.revokedCertificates
message crl "30120201aa$time" >"$work/good"
expect "CertificateList identical" --check <"$work/good"
expect "0 errors, 0 findings" --lint <"$work/good"
expect "userCertificate     -86" --at "$list[80000]" <"$work/good"
expect "there is no '$list[80001]'" --at "$list[80001]" <"$work/good"

# Offsets of the list, and of what stands behind its entries.
place=73
last=$((place + 5 + 80000 * 35))
message crl "30130202000a$time" | expect "differs at $((last + 3)) ($list[80000].userCertificate)" --check
message crl "3081120201aa$time" | expect "differs at $((last + 1)) ($list[80000])" --check
message "long crl" | expect "differs at $((place + 1)) ($list)" --check
message crl "" a011300f300d0603551d140101000403020105 |
    expect "differs at $((last + 11)) (tbsCertList.crlExtensions[0].critical)" --check
message crl "30120201aa17" | expect "CertificateList error" --check --type CertificateList

of_set=(--check --type DigestAlgorithmIdentifiers)
message set 300d06092a864886f70d01010c0500 | expect " identical" "${of_set[@]}"
message set 300d06092a864886f70d01010a0500 |
    expect "differs at $((5 + 80000 * 15)) ([80000])" "${of_set[@]}"
echo "all as expected"
