#!/usr/bin/env bash
# Builds and runs what the README shows in C and in Python.
#
# Usage: readme_test.sh README CERTIFICATE LIBRARY INCLUDES COMPILER [PYTHON PACKAGE]
set -euo pipefail

readme=$1 certificate=$2 library=$3 include=$4 compiler=$5 python=${6:-} package=${7:-}
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# The block of a language that mentions the library's interface.
block() {
    awk -v fence="\`\`\`$1" -v wanted="$2" '
        $0 == fence { text = ""; inside = 1; next }
        /^```$/ && inside { inside = 0; if (text ~ wanted) { printf "%s", text; exit } }
        inside { text = text $0 "\n" }' "$readme"
}

block c 'brevantis/asn1\.h' >"$work/program.c"
[[ -s $work/program.c ]] || {
    echo "FAILED: the README has no program in C"
    exit 1
}
"$compiler" -std=c11 -pedantic -Wall -Wextra -Werror "-I$include" "$work/program.c" "$library" \
    "-Wl,-rpath,$(dirname "$library")" "-Wl,-rpath-link,$(dirname "$library")" -o "$work/program"
"$work/program" "$certificate" >"$work/output"
grep -q '"notBefore":{"utcTime":"2' "$work/output" || {
    echo "FAILED: the program in C printed"
    cat "$work/output"
    exit 1
}
echo "C: works"

if [[ -n $python ]]; then
    block python 'brevantis_asn1' >"$work/program.py"
    BREVANTIS_ASN1_LIBRARY=$library PYTHONPATH=$package PYTHONDONTWRITEBYTECODE=1 \
        "$python" "$work/program.py" "$certificate" >"$work/output"
    grep -q "'utcTime': '2" "$work/output" || {
        echo "FAILED: the program in Python printed"
        cat "$work/output"
        exit 1
    }
    echo "Python: works"
fi
