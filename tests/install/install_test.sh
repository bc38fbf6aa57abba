#!/usr/bin/env bash
# Installs the build tree to an empty place and builds programs against what arrived there, with
# CMake's package and with pkg-config where that is present; then the smallest part of it alone.
#
# Usage: install_test.sh CMAKE BUILD_TREE COMPILER COMPILER_FLAGS
set -euo pipefail

cmake=$1 build_tree=$2 compiler=$3 flags=$4
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
# shellcheck source=tests/install/use_installed.sh
source "$(dirname "${BASH_SOURCE[0]}")/use_installed.sh"

quietly "$cmake" --install "$build_tree" --prefix "$work/first"
# Nothing of it may hang on the place where it was put first.
mv "$work/first" "$work/installed"
use_with_cmake "$work/installed" "$flags"
use_with_pkg_config "$work/installed" "$flags"

# Calls that cannot be meant end in a sentence.
mkdir "$work/wrong"
while IFS='|' read -r call sentence; do
    printf 'cmake_minimum_required(VERSION 3.23)\nproject(wrong LANGUAGES CXX)\n%s\n%s\n' \
        'find_package(brevantis_asn1 REQUIRED)
add_library(own own.cpp)
set(all NAMESPACE own INCLUDE_PREFIX own OUTPUT_DIRECTORY generated MODULES CMakeLists.txt)' \
        "${call//;/$'\n'}" >"$work/wrong/CMakeLists.txt"
    if "$cmake" -S "$work/wrong" -B "$work/wrong/build" -G Ninja -DCMAKE_CXX_COMPILER="$compiler" \
        -DCMAKE_PREFIX_PATH="$work/installed" >"$work/log" 2>&1 ||
        ! tr -s '\n ' ' ' <"$work/log" | grep -qF "$sentence"; then
        cat "$work/log"
        echo "FAILED: $call"
        exit 1
    fi
done <<'END'
asn1gen_modules(other ${all})|there is no target 'other'
asn1gen_modules(own MODULES a.asn1)|NAMESPACE is missing
asn1gen_modules(own ${all} EXPORT_MACRO)|what is meant by 'EXPORT_MACRO'?
asn1gen_modules(own ${all} NAMESPACE a-b)|'a-b' is no namespace of C++
asn1gen_modules(own ${all} MODULES none.asn1)|'none.asn1' is no file
asn1gen_modules(own ${all});asn1gen_modules(own ${all})|another call has
set(CMAKE_CROSSCOMPILING ON);asn1gen_modules(own ${all})|BREVANTIS_ASN1GEN has to name an asn1gen
END
echo "wrong calls: told"

for component in asn1 asn1-development; do
    quietly "$cmake" --install "$build_tree" --prefix "$work/part" --component $component
done
quietly "$cmake" -S "$consumer" -B "$work/of_part" -G Ninja -DCMAKE_CXX_COMPILER="$compiler" \
    -DCMAKE_CXX_FLAGS="$flags" -DCMAKE_PREFIX_PATH="$work/part" -DCOMPONENTS=asn1
quietly "$cmake" --build "$work/of_part"
expect identical "$work/of_part/consumer"
if [[ -n $(find "$work/part" -path '*asn1_text*' -o -path '*asn1/text*' -o -path '*/bin/*' -o -path '*/doc/*') ]]; then
    find "$work/part"
    echo "FAILED: the component has more than its own"
    exit 1
fi
quietly "$cmake" --install "$build_tree" --prefix "$work/pages" --component documentation
readme=$(find "$work/pages" -path '*/brevantis_asn1/README.md')
[[ -n $readme ]]
# Links of installed pages lead to installed pages, but for those to sources.
while IFS=: read -r page link; do
    target=$(dirname "$page")/${link%%#*}
    if [[ ! -e $target && ! $target =~ \.(txt|h|sh|py)$ ]]; then
        echo "FAILED: $page has a link to $link"
        exit 1
    fi
done < <(find "$work/pages" -name '*.md' -exec grep -oHE '\]\([^):]+\)' {} + | sed -E 's/\]\(([^)]*)\)/\1/' |
    grep -vE ':#')
echo "components: work"
