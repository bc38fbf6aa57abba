#!/usr/bin/env bash
# Programs of other standards, compilers and libraries than the library's own, without run-time type
# information and without exceptions: they are built and run against the library where they can be
# linked to it, and compiled where they cannot.
#
# Usage: consumers_test.sh LIBRARY LIBRARY_FLAGS INCLUDE_DIRECTORY...
set -euo pipefail

library=$1 flags=$2
shift 2
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

# tryAll COMPILER FLAG...
tryAll() {
    local standard compiler=$1
    shift
    for standard in 17 20 2b; do
        try "$compiler" $standard consumer "$@"
    done
    try "$compiler" 2b value_classes "$@"
    try "$compiler" 17 value_classes -fno-rtti "$@"
    # What throws is not for them; the coders and the catalogue are.
    try "$compiler" 20 consumer -fno-rtti -fno-exceptions "$@"
}

# Standard libraries do not mix, so where the library has the other one nothing is linked.
of_libcxx=() of_libstdcxx=(-fsyntax-only)
if [[ " $flags " != *" -stdlib=libc++ "* ]]; then
    of_libcxx=(-fsyntax-only) of_libstdcxx=()
fi
tryAll g++ "${of_libstdcxx[@]}"
if command -v clang++ >/dev/null; then
    tryAll clang++ "${of_libstdcxx[@]}"
    if echo '#include <list>' | clang++ -stdlib=libc++ -x c++ -fsyntax-only - 2>/dev/null; then
        tryAll clang++ -stdlib=libc++ "${of_libcxx[@]}"
    else
        echo "libc++: not tried, it is missing"
    fi
else
    echo "clang++: not tried, it is missing"
fi
exit $failed
