#!/usr/bin/env bash
# Installs the build tree to an empty place and builds a program against what arrived there, once
# with CMake's package and once with pkg-config where that is present.
#
# Usage: install_test.sh CMAKE BUILD_TREE COMPILER COMPILER_FLAGS
set -euo pipefail

cmake=$1 build_tree=$2 compiler=$3 flags=$4
consumer=$(cd "$(dirname "${BASH_SOURCE[0]}")/consumer" && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
prefix=$work/installed

quietly() {
    "$@" >"$work/log" 2>&1 || {
        cat "$work/log"
        exit 1
    }
}

quietly "$cmake" --install "$build_tree" --prefix "$work/first"
# Nothing of it may hang on the place where it was put first.
mv "$work/first" "$prefix"

quietly "$cmake" -S "$consumer" -B "$work/build" -G Ninja -DCMAKE_CXX_COMPILER="$compiler" \
    -DCMAKE_CXX_FLAGS="$flags" -DCMAKE_PREFIX_PATH="$prefix"
quietly "$cmake" --build "$work/build"
[[ $("$work/build/consumer") == identical ]]
[[ $("$work/build/json") == '{"rdnSequence":[]}' ]]
[[ $("$work/build/value_classes") == C=RU,O=x ]]
[[ $("$work/build/own_module") == 300702011980026D6D ]]
echo "CMake package: works"

if command -v pkg-config >/dev/null; then
    pc_file=$(find "$prefix" -name brevantis-asn1.pc)
    PKG_CONFIG_PATH=$(dirname "$pc_file")
    export PKG_CONFIG_PATH
    read -r -a needed <<<"$(pkg-config --cflags --libs brevantis-asn1)"
    read -r -a given <<<"$flags"
    "$compiler" -std=c++17 "${given[@]}" "$consumer/consumer.cpp" "${needed[@]}" -o "$work/consumer"
    library_directory=$(pkg-config --variable=libdir brevantis-asn1)
    [[ $(LD_LIBRARY_PATH=$library_directory "$work/consumer") == identical ]]
    read -r -a needed <<<"$(pkg-config --cflags --libs brevantis-asn1-text)"
    "$compiler" -std=c++17 "${given[@]}" "$consumer/json.cpp" "${needed[@]}" \
        -Wl,-rpath-link,"$library_directory" -o "$work/json"
    [[ $(LD_LIBRARY_PATH=$library_directory "$work/json") == '{"rdnSequence":[]}' ]]
    echo "pkg-config: works"
else
    echo "pkg-config: not tried, the command is missing"
fi
