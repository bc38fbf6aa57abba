#!/usr/bin/env bash
# Builds the library as a part of another project, whose settings, names and install rules have to
# stay its own.
#
# Usage: embedding_test.sh CMAKE LIBRARY_DIRECTORY COMPILER
set -euo pipefail

cmake=$1 library=$2 compiler=$3
embedding=$(cd "$(dirname "${BASH_SOURCE[0]}")/embedding" && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

quietly() {
    "$@" >"$work/log" 2>&1 || {
        cat "$work/log"
        exit 1
    }
}

configure() {
    quietly "$cmake" -S "$embedding" -B "$work/build$1" -G Ninja -DCMAKE_CXX_COMPILER="$compiler" \
        -DCMAKE_BUILD_TYPE="$1" -DLIBRARY_DIRECTORY="$library"
}

# A project may well have no build type.
configure ""
configure Debug
quietly "$cmake" --build "$work/buildDebug" --parallel 2
[[ $("$work/buildDebug/own_module") == 300702011980026D6D ]]
echo "part of another project: works"

quietly "$cmake" --install "$work/buildDebug" --prefix "$work/installed"
if [[ -n $(find "$work" -path "$work/installed/*" -type f) ]]; then
    find "$work/installed" -type f
    exit 1
fi
echo "nothing is installed unasked"
