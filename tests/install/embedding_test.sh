#!/usr/bin/env bash
# Builds the library as a part of another project, whose settings, names and install rules have to
# stay its own. It is static there; that is installed at last, and used.
#
# Usage: embedding_test.sh CMAKE LIBRARY_DIRECTORY COMPILER COMPILER_FLAGS
set -euo pipefail

cmake=$1 library=$2 compiler=$3 flags=$4
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
# shellcheck source=tests/install/use_installed.sh
source "$(dirname "${BASH_SOURCE[0]}")/use_installed.sh"
embedding=$(dirname "$consumer")/embedding

# configure DIRECTORY ARGUMENT...
configure() {
    local build=$work/$1
    shift
    quietly "$cmake" -S "$embedding" -B "$build" -G Ninja -DCMAKE_CXX_COMPILER="$compiler" \
        -DCMAKE_CXX_FLAGS="$flags" -DLIBRARY_DIRECTORY="$library" "$@"
}

# A project may well have no build type, and it may have the library fetched.
configure fetched -DCMAKE_BUILD_TYPE= -DEMBEDDING_BY_FETCHING=ON
configure static -DCMAKE_BUILD_TYPE=Debug -DBUILD_SHARED_LIBS=OFF
quietly "$cmake" --build "$work/static" --parallel 2
expect "$(<"$consumer/own_module.expected")" "$work/static/own_module"
if readelf -d "$work/static/own_module" | grep -F libbrevantis; then
    echo "FAILED: the program needs a shared library"
    exit 1
fi
echo "part of another project: works"

quietly "$cmake" --install "$work/static" --prefix "$work/unasked"
if [[ -n $(find "$work" -path "$work/unasked/*" -type f) ]]; then
    find "$work/unasked" -type f
    exit 1
fi
echo "nothing is installed unasked"

configure static -DBREVANTIS_INSTALL=ON -DBREVANTIS_BUILD_TEXT=ON -DEMBEDDING_CHECKS=OFF
quietly "$cmake" --build "$work/static" --parallel 2
quietly "$cmake" --install "$work/static" --prefix "$work/installed"
if [[ -n $(find "$work/installed" -name '*.so*') ]]; then
    find "$work/installed" -name '*.so*'
    exit 1
fi
use_with_cmake "$work/installed" "$flags"
use_with_pkg_config "$work/installed" "$flags" --static
