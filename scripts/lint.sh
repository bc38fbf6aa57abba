#!/usr/bin/env bash
# Format check, a build with clang and warnings as errors, and clang-tidy over what is written by
# hand. Needs clang-format and clang-tidy 14; installs clang where it is missing.
#
# Usage: scripts/lint.sh [--format | --build | --libc++]
#
#   --format  the format check alone
#   --build   the build alone
#   --libc++  instead of all that, builds everything with clang's standard library, and every test runs
set -euo pipefail
# shellcheck source=scripts/setup.sh
source "$(dirname "${BASH_SOURCE[0]}")/setup.sh"
cd "$root"

# Sources of the work tree, new ones included; of a plain copy of the tree, everything but builds.
sources() {
    if git rev-parse --is-inside-work-tree >/dev/null 2>&1; then
        git ls-files --cached --others --exclude-standard -z -- "$@"
    else
        local pattern expression=()
        for pattern in "$@"; do
            expression+=(-o -name "$pattern")
        done
        find . -path ./build -prune -o -type f \( "${expression[@]:1}" \) -printf '%P\0'
    fi
}

if [[ ${1:-} == --libc++ ]]; then
    install_missing clang cmake ninja-build libc++-dev libc++abi-dev googletest ca-certificates \
        libssl-dev openssl binutils nlohmann-json3-dev libcli11-dev python3-pytest
    build libc++ -DBREVANTIS_BUILD_TESTS=ON --
    say "testing (preset libc++)"
    exec ctest --preset libc++ -j "$jobs"
fi

if [[ ${1:-} != --build ]]; then
    say "checking the format"
    sources '*.cpp' '*.h' | xargs -0 -r clang-format --dry-run -Werror
    if sources '*/include/*.h' | xargs -0 -r grep -L '@file' | grep .; then
        fail "these public headers do not say what they hold"
    fi
fi
if [[ ${1:-} == --format ]]; then
    exit 0
fi

install_missing clang g++ cmake ninja-build libgtest-dev libssl-dev binutils nlohmann-json3-dev \
    libcli11-dev
bench=OFF
if is_provided libbenchmark-dev; then
    bench=ON
fi
build clang -DBREVANTIS_BUILD_TESTS=ON -DBREVANTIS_BUILD_BENCH=$bench --
if [[ ${1:-} == --build ]]; then
    exit 0
fi

# Only what the build compiles has flags to be checked with: fuzz targets, for one, have none here.
say "running clang-tidy"
sources '*.cpp' | while IFS= read -r -d '' file; do
    if grep -qF "\"file\": \"$root/$file\"" build/clang/compile_commands.json; then
        printf '%s\0' "$file"
    fi
done | xargs -0 -r -n 1 -P "$jobs" clang-tidy -p build/clang --quiet
