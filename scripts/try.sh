#!/usr/bin/env bash
# Decodes every certificate of the given PEM or DER files (default: the system's CA bundle), encodes
# it again and compares. Installs what a bare Debian 12 lacks and builds first.
#
# Usage: scripts/try.sh [FILE...]
set -euo pipefail
# shellcheck source=scripts/setup.sh
source "$(dirname "${BASH_SOURCE[0]}")/setup.sh"

install_missing g++ cmake ninja-build ca-certificates
# Tests need a package that this script does without.
build release -DBREVANTIS_BUILD_TESTS=OFF -- recode_certificates

if (($# == 0)); then
    set -- "$ca_bundle"
fi
say "decoding and encoding again: $*"
exec "$root/build/release/bin/recode_certificates" "$@"
