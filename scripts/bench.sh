#!/usr/bin/env bash
# Measures this library beside others, on the same messages and in one run, and prints tables in
# Markdown. Installs what a bare Debian 12 lacks, the other libraries among it, and builds first.
#
# Usage: scripts/bench.sh [--quick] [--check | --growth | --instructions] [--benchmark_...=VALUE]...
#
# A run of everything also draws docs/speed.svg and fills in the table of README.md, from the same
# figures.
#
#   --quick         shorter runs and fewer of them: for a look, not for a claim
#   --check         does everything once and tells what is refused
#   --growth        how time and memory grow with a message, in place of the other tables
#   --instructions  counts instructions too, with callgrind
set -euo pipefail
# shellcheck source=scripts/setup.sh
source "$(dirname "${BASH_SOURCE[0]}")/setup.sh"

quick=
if [[ ${1:-} == --quick ]]; then
    quick=--quick
    shift
fi
mode=
if [[ ${1:-} == --check || ${1:-} == --growth || ${1:-} == --instructions ]]; then
    mode=$1
    shift
fi

# The tables alone go to the standard output.
exec 3>&1 1>&2
install_missing g++ cmake ninja-build ca-certificates openssl pkg-config libbenchmark-dev \
    nlohmann-json3-dev libcli11-dev nettle-dev \
    libssl-dev libgnutls28-dev libtasn1-6-dev libmbedtls-dev libbotan-2-dev libnss3-dev valgrind
# Tests need a package that this script does without.
build release -DBREVANTIS_BUILD_TESTS=OFF -DBREVANTIS_BUILD_BENCH=ON -- asn1_bench

program=$root/build/release/bin/asn1_bench
corpus=$root/build/release/bench/messages
say "making the messages"
"$root/bench/make_corpus.sh" "$corpus"
lscpu | sed -n 's/^Model name: */Machine: /p'

# A core of its own keeps the scheduler from moving what is measured.
core=$(taskset -cp $$ | sed 's/.*[ ,-]//')
measure() {
    taskset -c "$core" "$program" "$corpus" "$@" >&3
}

timing=(--benchmark_min_time=0.05 --benchmark_repetitions=9
    --benchmark_enable_random_interleaving=true)
if [[ -n $quick ]]; then
    timing=(--benchmark_min_time=0.005 --benchmark_repetitions=3)
fi

# Puts the figures where readers see them, when all of them were measured.
publish() {
    local runs='nine runs' machine
    if [[ ! -e $published/speed.md ]]; then
        return
    fi
    if [[ -n $quick ]]; then
        runs='three short runs'
    fi
    machine=$(lscpu | sed -n 's/^Model name: *//p')
    if lscpu | grep -q '^Hypervisor vendor:'; then
        machine="a virtual machine, $machine"
    fi
    cp "$published/speed.svg" "$root/docs/speed.svg"
    {
        printf 'Medians of %s on one core of %s.\n\n' "$runs" "$machine"
        cat "$published/speed.md"
        echo
    } >"$published/figures"
    awk -v figures="$published/figures" '
        /^<!-- end of the figures -->$/ { inside = 0 }
        !inside { print }
        /^<!-- figures, by scripts\/bench.sh -->$/ {
            inside = 1
            while ((getline line < figures) > 0) print line
        }' "$root/README.md" >"$published/README.md"
    cp "$published/README.md" "$root/README.md"
    say "docs/speed.svg and the table of README.md show this run"
}

published=$(mktemp -d)
trap 'rm -rf "$published"' EXIT
case $mode in
    --check)
        measure --check "$@"
        ;;
    --growth)
        measure --growth ${quick:+"$quick"} "$@"
        ;;
    --instructions)
        folder=$published/instructions
        mkdir "$folder"
        say "counting instructions"
        valgrind --tool=callgrind --collect-atstart=no --callgrind-out-file="$folder/out" \
            "$program" "$corpus" --count-instructions >"$folder/log" 2>&1 ||
            fail "$(tail -n 20 "$folder/log")"
        # Each file names what triggered it, then the count.
        awk -F': ' '/^desc: Trigger: Client Request: / { name = substr($0, 32) }
            /^(summary|totals): / && name != "" { print name "\t" $2; name = "" }' \
            "$folder"/out.* >"$folder/instructions"
        measure --instructions="$folder/instructions" --publish="$published" "${timing[@]}" "$@"
        publish
        ;;
    *)
        measure --publish="$published" "${timing[@]}" "$@"
        publish
        ;;
esac
