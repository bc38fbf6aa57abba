#!/usr/bin/env bash
# Builds the fuzz targets, counts the steps of everything at growing sizes, and runs the targets, two
# at a time, each input held to a time and a memory. Inputs that reach something new are kept in
# build/fuzz/corpus for the next run; findings are kept in build/fuzz/findings. Prints what was
# executed, how many types of the catalogue came through whole, and the findings; exits with 1 when
# there is one.
#
# Usage: scripts/fuzz.sh [--coverage] [SECONDS] [TARGET...]
#
#   SECONDS     of the run, without the build (default 600)
#   --coverage  afterwards, which lines and branches of the runtime and the engine all inputs
#               that were kept reach (build/fuzz/coverage.txt)
set -euo pipefail
# shellcheck source=scripts/setup.sh
source "$(dirname "${BASH_SOURCE[0]}")/setup.sh"

seconds_an_input=10
megabytes_an_input=2048
longest_input=65536
at_a_time=$jobs
fuzz=$root/build/fuzz

# shellcheck disable=SC2206
all_targets=(classes controls json messages revocation_list schema text values viewer)
coverage=false
seconds=600
while (($# > 0)); do
    case $1 in
        --coverage) coverage=true ;;
        [0-9]*) seconds=$1 ;;
        *) break ;;
    esac
    shift
done
targets=("$@")
((${#targets[@]} > 0)) || targets=("${all_targets[@]}")

install_missing clang g++ cmake ninja-build libgtest-dev nlohmann-json3-dev libcli11-dev

# run TARGET SECONDS
run() {
    local target=$1 options=()
    case $target in
        messages | controls | classes | revocation_list)
            options=(-dict="$fuzz/fuzz/messages.dict")
            ;;
        schema) options=(-dict="$root/fuzz/notation.dict") ;;
        # What the viewer prints is not the fuzzer's.
        viewer) options=(-close_fd_mask=3) ;;
    esac
    mkdir -p "$fuzz/corpus/$target" "$fuzz/fuzz/seeds/$target"
    BREVANTIS_FUZZ_REACHED=$fuzz/reached/$target "$fuzz/bin/fuzz_$target" \
        -max_total_time="$2" -timeout=$seconds_an_input -rss_limit_mb=$megabytes_an_input \
        -max_len=$longest_input -print_final_stats=1 -verbosity=1 \
        -artifact_prefix="$fuzz/findings/$target." "${options[@]}" \
        "$fuzz/corpus/$target" "$fuzz/fuzz/seeds/$target" >"$fuzz/logs/$target" 2>&1 ||
        touch "$fuzz/findings/$target.failed"
}

# statistic TARGET NAME
statistic() {
    sed -n "s/^stat::$2: *//p" "$fuzz/logs/$1"
}

report_coverage() {
    local directory=$root/build/fuzz-coverage target
    install_missing llvm
    build fuzz-coverage -- "${targets[@]/#/fuzz_}"
    mkdir -p "$directory/profiles"
    for target in "${targets[@]}"; do
        say "replaying $target"
        LLVM_PROFILE_FILE=$directory/profiles/$target.profraw "$directory/bin/fuzz_$target" \
            -runs=0 -close_fd_mask=3 "$fuzz/corpus/$target" "$fuzz/fuzz/seeds/$target" \
            >/dev/null 2>&1
    done
    llvm-profdata merge -sparse -o "$directory/merged.profdata" "$directory"/profiles/*.profraw
    # By what is left out: a compiler cache may have made the names of sources relative.
    llvm-cov report -instr-profile="$directory/merged.profdata" \
        -ignore-filename-regex='(generated|values|support|revocation_list)/' \
        "$directory/lib/libbrevantis_asn1.so" >"$fuzz/coverage.txt"
    cat "$fuzz/coverage.txt"
}

build fuzz -- "${targets[@]/#/fuzz_}" fuzz_inputs fuzz_bounds
rm -rf "$fuzz/findings" "$fuzz/logs" "$fuzz/reached"
mkdir -p "$fuzz/findings" "$fuzz/logs" "$fuzz/reached"

findings=0
say "counting steps"
if ! "$fuzz/bin/fuzz_bounds" --gtest_brief=1 >"$fuzz/logs/bounds" 2>&1; then
    findings=1
    grep -E -A 8 Failure "$fuzz/logs/bounds" | tail -n 40 || true
fi

# What one has left over of its share when it ends early, others do not get.
share=$((seconds * at_a_time / ${#targets[@]}))
say "fuzzing ${#targets[@]} targets for $share seconds each"
running=0
for target in "${targets[@]}"; do
    if ((running == at_a_time)); then
        wait -n
        running=$((running - 1))
    fi
    run "$target" "$share" &
    running=$((running + 1))
done
wait

executions=0
for target in "${targets[@]}"; do
    units=$(statistic "$target" number_of_executed_units)
    executions=$((executions + ${units:-0}))
    types=
    if [[ -s $fuzz/reached/$target ]]; then
        types=", $(wc -l <"$fuzz/reached/$target") types"
    fi
    printf '%-16s %10s executions, peak %5s MB%s\n' "$target" "${units:-?}" \
        "$(statistic "$target" peak_rss_mb)" "$types"
    if [[ -e $fuzz/findings/$target.failed ]]; then
        findings=$((findings + 1))
        printf '%-16s FINDING, see %s\n' "$target" "$fuzz/logs/$target"
        grep -E '^(finding|SUMMARY|Base64|==[0-9]+==ERROR)|Test unit written' "$fuzz/logs/$target" || true
    fi
done
reached=$( (cat "$fuzz"/reached/* 2>/dev/null || true) | sort -u | wc -l)
printf '%s executions, %s of %s types reached, %s findings\n' "$executions" "$reached" \
    "$(grep -c . "$fuzz/fuzz/types.txt")" "$findings"
if $coverage; then
    report_coverage
fi
((findings == 0))
