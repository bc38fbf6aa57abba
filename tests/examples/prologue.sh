# shellcheck shell=bash
# Sourced by the tests of the example programs: $1 is the program, and the work is done in a folder
# of its own.
set -euo pipefail

program=$1

# need COMMAND...: ends the test as skipped where one is missing.
need() {
    local command
    for command; do
        if ! command -v "$command" >/dev/null; then
            echo "skipped: the $command command is missing"
            exit 77
        fi
    done
}

# expect STATUS TEXT ARGUMENT...: the program ends with STATUS and says TEXT.
expect() {
    local status=$1 text=$2 got=0
    shift 2
    "$program" "$@" >output 2>&1 || got=$?
    if ((got != status)) || ! grep -qF -- "$text" output; then
        echo "FAILED: $(basename "$program") $*: status $got, expected $status and \"$text\" in"
        tail -n 20 output
        exit 1
    fi
}

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work"
