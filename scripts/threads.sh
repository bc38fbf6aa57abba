#!/usr/bin/env bash
# Builds the library with the thread sanitizer and uses its whole catalogue in eight threads.
#
# Usage: scripts/threads.sh
set -euo pipefail
# shellcheck source=scripts/setup.sh
source "$(dirname "${BASH_SOURCE[0]}")/setup.sh"

install_missing g++ cmake ninja-build libgtest-dev nlohmann-json3-dev
build tsan -DBREVANTIS_BUILD_TESTS=ON -DBREVANTIS_BUILD_TOOLS=OFF -- threads_test
say "testing (preset tsan)"
TSAN_OPTIONS=halt_on_error=1 "$root/build/tsan/bin/threads_test" --gtest_brief=1
