#!/usr/bin/env bash
# Programs of other standards, compilers and libraries than the library's own, without run-time type
# information and without exceptions: they are built and run against the library where they can be
# linked to it, and compiled where they cannot.
#
# Usage: consumers_test.sh LIBRARY INCLUDE_DIRECTORY...
set -euo pipefail

library=$1
shift
includes=("${@/#/-I}")
directory=$(dirname "$library")
consumer=$(cd "$(dirname "${BASH_SOURCE[0]}")/consumer" && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
failed=0

# try COMPILER STANDARD SOURCE FLAG...: builds and runs, or with -fsyntax-only compiles.
try() {
    local compiler=$1 standard=$2 source=$3 link=(-o "$work/program" "$library" -Wl,-rpath,"$directory")
    shift 3
    if [[ " $* " == *" -fsyntax-only "* ]]; then
        link=()
    fi
    printf '%s C++%s %s %s\n' "$compiler" "${standard/2b/23}" "$source" "$*"
    if ! "$compiler" -std=c++"$standard" -Wall -Wextra -Werror "$@" "${includes[@]}" \
        "$consumer/$source.cpp" "${link[@]}"; then
        failed=1
    elif ((${#link[@]} > 0)) && ! "$work/program" >"$work/printed"; then
        echo "FAILED"
        failed=1
    fi
}

for standard in 17 20 2b; do
    try g++ $standard consumer
done
try g++ 2b value_classes
try g++ 17 value_classes -fno-rtti
# What throws is not for them; the coders and the catalogue are.
try g++ 20 consumer -fno-rtti -fno-exceptions
if command -v clang++ >/dev/null; then
    for standard in 17 2b; do
        try clang++ $standard consumer
    done
    try clang++ 20 consumer -fno-rtti -fno-exceptions
    try clang++ 2b value_classes
    # Standard libraries do not mix, so this is not linked.
    if echo '#include <list>' | clang++ -stdlib=libc++ -x c++ -fsyntax-only - 2>/dev/null; then
        try clang++ 17 value_classes -stdlib=libc++ -fsyntax-only
        try clang++ 2b value_classes -stdlib=libc++ -fsyntax-only
        try clang++ 2b consumer -stdlib=libc++ -fsyntax-only -fno-rtti -fno-exceptions
    else
        echo "libc++: not tried, it is missing"
    fi
else
    echo "clang++: not tried, it is missing"
fi
exit $failed
