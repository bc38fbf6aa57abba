#!/usr/bin/env bash
# Builds and runs every program of the guide, and compares what it prints with what stands behind it.
#
# Usage: guide_test.sh GUIDE CERTIFICATE LIBRARY TEXT_LIBRARY COMPILER C_COMPILER PYTHON PACKAGE
#     INCLUDE_DIRECTORY...
#
# CERTIFICATE has hexadecimal digits. Without python an empty PYTHON is given.
set -euo pipefail

guide=$1 certificate=$2 library=$3 text_library=$4 compiler=$5 c_compiler=$6 python=$7 package=$8
shift 8
includes=("${@/#/-I}")
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
# shellcheck disable=SC2059
printf "$(tr -d ' \n' <"$certificate" | sed 's/../\\x&/g')" >"$work/certificate.der"

# Programs to N.cpp, N.c and N.py, what they print to N.expected.
awk -v directory="$work" '
    /^```(cpp|c|python)$/ {
        suffix = substr($0, 4)
        sub("python", "py", suffix)
        file = directory "/" ++count "." suffix
        next
    }
    /^```text$/ { file = directory "/" count ".expected"; next }
    /^```/ { close(file); file = ""; next }
    file != "" { print >file }' "$guide"

linked=("$library" "$text_library" "-Wl,-rpath,$(dirname "$library")")
# run FILE
run() {
    local program=${1%.*}
    case $1 in
        *.cpp) "$compiler" -std=c++17 -Wall -Wextra -Werror "${includes[@]}" "$1" "${linked[@]}" -o "$program" ;;
        *.c) "$c_compiler" -std=c11 -Wall -Wextra -Werror "${includes[@]}" "$1" "${linked[@]}" -o "$program" ;;
        *.py)
            [[ -n $python ]] || return 0
            printf '#!/bin/sh\nexec "%s" "%s" "$@"\n' "$python" "$1" >"$program"
            chmod +x "$program"
            ;;
    esac
    BREVANTIS_ASN1_LIBRARY=$text_library PYTHONPATH=$package PYTHONDONTWRITEBYTECODE=1 \
        "$program" "$work/certificate.der" >"$program.printed"
    diff "$program.expected" "$program.printed"
}
count=0
failed=0
for file in "$work"/*.cpp "$work"/*.c "$work"/*.py; do
    count=$((count + 1))
    if ! run "$file"; then
        echo "FAILED: the program that begins"
        head -n 12 "$file"
        failed=1
    fi
done
((count >= 10)) || { echo "FAILED: only $count programs"; exit 1; }
echo "$count programs"
exit $failed
