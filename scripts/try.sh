#!/usr/bin/env bash
# Shows the first message of the first of the given PEM or DER files (default: the system's CA
# bundle), checks them all with derview, then decodes every certificate in them, encodes it again and
# compares. Installs what a bare Debian 12 lacks and builds first. Ends as recode_certificates does.
#
# Usage: scripts/try.sh [FILE...]
set -euo pipefail
# shellcheck source=scripts/setup.sh
source "$(dirname "${BASH_SOURCE[0]}")/setup.sh"

install_missing g++ cmake ninja-build ca-certificates nlohmann-json3-dev libcli11-dev nettle-dev
# Tests need a package that this script does without.
build release -DBREVANTIS_BUILD_TESTS=OFF -- brevantis_recode_certificates brevantis_derview

if (($# == 0)); then
    set -- "$ca_bundle"
fi
derview=$root/build/release/bin/derview
say "the first message of $1: derview --message 1 $1"
"$derview" --message 1 "$1" || true
say "checking all of them: derview --check $*"
"$derview" --check "$@" | tail -n 1 || true
say "decoding and encoding again: $*"
exec "$root/build/release/bin/recode_certificates" "$@"
