#!/usr/bin/env bash
# Installs the packages of build/deb in a fresh Debian 12 in a chroot, uses what they brought, removes
# them, and fails when anything is left. Needs root, and the network for the chroot and for what the
# packages depend on.
#
# Usage: scripts/deb_trial.sh [CHROOT]
#
#   CHROOT  a directory with a Debian 12, which is copied; otherwise debootstrap makes one
set -euo pipefail
# shellcheck source=scripts/setup.sh
source "$(dirname "${BASH_SOURCE[0]}")/setup.sh"
# shellcheck source=scripts/chroot.sh
source "$(dirname "${BASH_SOURCE[0]}")/chroot.sh"

packages=$root/build/deb
compgen -G "$packages/*.deb" >/dev/null || fail "there are no packages: run scripts/deb.sh first"
make_chroot "${1:-}"
# Compilers and the like are no part of the trial.
inside apt-get -q install -y --no-install-recommends cmake g++ make pkg-config python3 >/dev/null

say "installing the packages"
listed() { (cd "$chroot" && find . -path ./proc -prune -o -path ./tmp -prune -o -path ./var -prune -o -print | sort); }
listed >"$chroot/../before"
mkdir -p "$chroot/tmp/packages/tests/install"
cp "$packages"/*.deb "$chroot/tmp/packages"
rm -f "$chroot"/tmp/packages/*-dbgsym_*
cp -r "$root/packaging/debian" "$chroot/tmp/packages/debian"
cp -r "$root/tests/install/consumer" "$chroot/tmp/packages/tests/install"
inside sh -c 'dpkg -i /tmp/packages/*.deb' >/dev/null
inside ldconfig -p | grep brevantis

say "using them"
inside /tmp/packages/debian/tests/use

say "removing them"
inside sh -c 'dpkg --purge $(for each in /tmp/packages/*.deb; do dpkg-deb -f "$each" Package; done)' >/dev/null
if inside dpkg -l | grep brevantis; then
    fail "packages are still there"
fi
listed >"$chroot/../after"
if ! diff "$chroot/../before" "$chroot/../after"; then
    fail "something is left"
fi
say "nothing is left"
