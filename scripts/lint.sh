#!/usr/bin/env bash
# Format check, a build with clang and warnings as errors, and clang-tidy over what is written by
# hand. Needs clang, clang-format and clang-tidy 14.
#
# Usage: scripts/lint.sh [--format]      --format: the format check alone
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

say "checking the format"
sources '*.cpp' '*.h' | xargs -0 -r clang-format --dry-run -Werror
if [[ ${1:-} == --format ]]; then
    exit 0
fi

say "building with $(clang++ --version | head -n 1)"
bench=OFF
if is_provided libbenchmark-dev; then
    bench=ON
fi
cmake -S . -B build/lint -G Ninja -DCMAKE_BUILD_TYPE=Debug -DCMAKE_CXX_COMPILER=clang++ \
    -DBREVANTIS_BUILD_BENCH=$bench >/dev/null
cmake --build build/lint -j "$jobs"

# Only what the build compiles has flags to be checked with: fuzz targets, for one, have none here.
say "running clang-tidy"
sources '*.cpp' | while IFS= read -r -d '' file; do
    if grep -qF "\"file\": \"$root/$file\"" build/lint/compile_commands.json; then
        printf '%s\0' "$file"
    fi
done | xargs -0 -r -n 1 -P "$jobs" clang-tidy -p build/lint --quiet
