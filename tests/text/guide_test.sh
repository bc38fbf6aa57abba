#!/usr/bin/env bash
# Builds and runs every program of the guide, and compares what it prints with what stands behind it.
#
# Usage: guide_test.sh GUIDE CERTIFICATE REQUEST LIST LIBRARY TEXT_LIBRARY ASN1GEN COMPILER
#     COMPILER_FLAGS C_COMPILER PYTHON PACKAGE INCLUDE_DIRECTORY...
#
# CERTIFICATE, REQUEST and LIST have hexadecimal digits. Without python an empty PYTHON is given.
set -euo pipefail

guide=$1 certificate=$2 request=$3 list=$4 library=$5 text_library=$6 asn1gen=$7
compiler=$8 flags=$9 c_compiler=${10} python=${11} package=${12}
shift 12
includes=("${@/#/-I}" -Igenerated/include)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
octets() {
    # shellcheck disable=SC2059
    printf "$(tr -d ' \n' <"$1" | sed 's/../\\x&/g')"
}
octets "$certificate" >"$work/certificate.der"
octets "$request" >"$work/request.der"
octets "$list" >"$work/list.der"

# Programs to N.cpp, N.c and N.py, what they print to N.expected, commands to N.sh, and modules to
# files of their names.
awk -v directory="$work" '
    /^```asn1$/ { getline; file = directory "/" $1 ".asn1" }
    /^```(cpp|c|python|sh)$/ {
        suffix = substr($0, 4)
        sub("python", "py", suffix)
        file = directory "/" ++count "." suffix
        next
    }
    /^```text$/ { file = directory "/" count ".expected"; next }
    /^```/ { close(file); file = ""; next }
    file != "" { print >file }' "$guide"

cd "$work"
for commands in *.sh; do
    PATH=$(dirname "$asn1gen"):$PATH bash -e "$commands"
done
read -r -a flags <<<"$flags"
compile=("$compiler" -std=c++17 "${flags[@]}" "${includes[@]}")
"${compile[@]}" -c generated/src/*.cpp
linked=(./*.o "$library" "$text_library" "-Wl,-rpath,$(dirname "$library")")
# run FILE
run() {
    local program=${1%.*}
    case $1 in
        *.cpp) "${compile[@]}" -Wall -Wextra -Werror "$1" "${linked[@]}" -o "$program" ;;
        *.c) "$c_compiler" -std=c11 -Wall -Wextra -Werror "${includes[@]}" "$1" "${linked[@]:1}" -o "$program" ;;
        *.py)
            [[ -n $python ]] || return 0
            printf '#!/bin/sh\nexec "%s" "%s" "$@"\n' "$python" "$1" >"$program"
            chmod +x "$program"
            ;;
    esac
    BREVANTIS_ASN1_LIBRARY=$text_library PYTHONPATH=$package PYTHONDONTWRITEBYTECODE=1 \
        "$program" certificate.der request.der list.der >"$program.printed"
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
((count >= 14)) || { echo "FAILED: only $count programs"; exit 1; }
echo "$count programs"
exit $failed
