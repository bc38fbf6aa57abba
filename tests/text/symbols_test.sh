#!/usr/bin/env bash
# Everything that the library of messages as text offers is its own and has a version.
#
# Usage: symbols_test.sh LIBRARY HEADER
set -euo pipefail

library=$1 header=$2
nm -D --defined-only --with-symbol-versions "$library" | awk '{ print $3 }' >"${TMPDIR:-/tmp}/symbols.$$"
trap 'rm -f "${TMPDIR:-/tmp}/symbols.$$"' EXIT
symbols=${TMPDIR:-/tmp}/symbols.$$

if grep -vE '@@BREVANTIS_ASN1_TEXT_1\.0$|^BREVANTIS_ASN1_TEXT_1\.0$' "$symbols"; then
    echo "FAILED: without a version"
    exit 1
fi
if c++filt <"$symbols" | grep -vE '^(basn1_|BREVANTIS|asn1text::|(vtable|typeinfo|typeinfo name) for asn1text::)'; then
    echo "FAILED: somebody else's"
    exit 1
fi
grep -oE 'basn1_[a-z_]+\(' "$header" | tr -d '(' | sort -u | while read -r name; do
    grep -q "^$name@@" "$symbols" || {
        echo "FAILED: $name is not offered"
        exit 1
    }
done
echo "all as expected"
