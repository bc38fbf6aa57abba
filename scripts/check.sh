#!/usr/bin/env bash
# Builds and runs every test, first optimised, then under the address and undefined-behaviour
# sanitizers. Installs what a bare Debian 12 lacks. The last lines are the test runner's summary.
#
# Usage: scripts/check.sh
set -euo pipefail
# shellcheck source=scripts/setup.sh
source "$(dirname "${BASH_SOURCE[0]}")/setup.sh"

install_missing g++ cmake ninja-build ca-certificates libgtest-dev libssl-dev openssl binutils \
    nlohmann-json3-dev libcli11-dev nettle-dev python3-pytest

# Other releases of the formatter lay the same code out differently.
if clang-format --version 2>/dev/null | grep -q 'version 14\.'; then
    "$root/scripts/lint.sh" --format
fi

export ASAN_OPTIONS=halt_on_error=1:abort_on_error=0:detect_leaks=1:detect_stack_use_after_return=1
export UBSAN_OPTIONS=halt_on_error=1:print_stacktrace=1
for preset in release asan; do
    build "$preset" -DBREVANTIS_BUILD_TESTS=ON --
    say "testing (preset $preset)"
    (cd "$root" && ctest --preset "$preset" -j "$jobs")
done
