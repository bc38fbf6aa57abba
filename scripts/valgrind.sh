#!/usr/bin/env bash
# Runs the test programs of the release build under valgrind's memcheck, two at a time, each held to
# a time; one that takes longer is told of and counts as neither good nor bad. Exits with 1 when
# valgrind finds something or a test fails.
#
# Usage: scripts/valgrind.sh [SECONDS_A_PROGRAM]
set -euo pipefail
# shellcheck source=scripts/setup.sh
source "$(dirname "${BASH_SOURCE[0]}")/setup.sh"

install_missing valgrind g++ cmake ninja-build libgtest-dev nlohmann-json3-dev libcli11-dev nettle-dev
seconds=${1:-60}
logs=$root/build/valgrind
rm -rf "$logs"
mkdir -p "$logs"
# Fewer random values; what they are checked for is the same.
export BREVANTIS_VALUES_PER_TYPE=1

check() {
    local program=$1 name status=0
    name=$(basename "$program")
    # Some programs have allocation functions of their own, which are to be left in place.
    timeout "$seconds" valgrind -q --soname-synonyms=somalloc=nouserintercepts \
        --suppressions="$root/scripts/valgrind.supp" --error-exitcode=99 --leak-check=full \
        --errors-for-leak-kinds=definite "$program" --gtest_brief=1 >"$logs/$name" 2>&1 || status=$?
    case $status in
        0) printf '%-32s good\n' "$name" ;;
        124) printf '%-32s not in %s seconds\n' "$name" "$seconds" ;;
        *)
            printf '%-32s BAD, see %s\n' "$name" "$logs/$name"
            touch "$logs/bad"
            ;;
    esac
}
export -f check
export seconds logs root

printf '%s\0' "$root"/build/release/bin/*_test | xargs -0 -n 1 -P "$jobs" bash -c 'check "$1"' check
[[ ! -e $logs/bad ]]
