#!/usr/bin/env bash
# Compares what programs are bound to in the shared libraries (functions, variables, the layout of
# types that they can see) with what is written down in packaging/abi/. What was taken away or changed
# is told, and the script ends with 1: older programs would not run with such a library. What is new
# is told, too.
#
# Usage: scripts/abi.sh [--built] [--update]
#
#   --built   takes the libraries of build/release, which then have debug information; otherwise
#             those of build/abi
#   --update  writes packaging/abi/ anew
set -euo pipefail
# shellcheck source=scripts/setup.sh
source "$(dirname "${BASH_SOURCE[0]}")/setup.sh"

built=false
update=false
for argument; do
    case $argument in
        --built) built=true ;;
        --update) update=true ;;
        *) fail "what is $argument?" ;;
    esac
done

install_missing abigail-tools xz-utils g++ cmake ninja-build nlohmann-json3-dev
libraries=(brevantis_asn1 brevantis_asn1_text)
preset=abi
if $built; then
    preset=release
    export BREVANTIS_DEBUG_INFO=ON
fi
build $preset -- "${libraries[@]}"

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
# Only what the public headers declare counts.
headers=$work/include
cmake --install "$root/build/$preset" --prefix "$work" --component asn1-development >/dev/null
cmake --install "$root/build/$preset" --prefix "$work" --component text-development >/dev/null

changed=0
for library in "${libraries[@]}"; do
    kept=$root/packaging/abi/lib$library.abi.xz
    abidw --no-show-locs --no-corpus-path --no-comp-dir-path --drop-private-types \
        --headers-dir "$headers" --out-file "$work/new.abi" \
        "$root/build/$preset/lib/lib$library.so.1"
    grep -q '<class-decl' "$work/new.abi" || fail "lib$library.so.1 was built without debug information"
    if $update; then
        mkdir -p "$root/packaging/abi"
        xz -9e <"$work/new.abi" >"$kept"
        say "written: ${kept#"$root/"}"
        continue
    fi
    xz -d <"$kept" >"$work/kept.abi"
    status=0
    abidiff --no-added-syms "$work/kept.abi" "$work/new.abi" || status=$?
    if ((status != 0)); then
        changed=1
    fi
    abidiff --stat "$work/kept.abi" "$work/new.abi" | sed "s/^/lib$library: /" || true
done
if ((changed)); then
    fail "programs built against the library as it was may not run with this one; see docs/abi.md"
fi
if ! $update; then
    say "what programs are bound to is as it was"
fi
