#!/usr/bin/env bash
# Has piuparts install the packages of build/deb in a fresh Debian 12 in a chroot, remove them and look
# at what is left; then installs them in another, and uses what they brought. Needs root, and the
# network for the chroot and for what the packages depend on.
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
install_missing piuparts
make_chroot "${1:-}"

say "piuparts"
# All at once, for they depend on each other and no archive has them.
umount "$chroot/proc" "$chroot/dev/pts" 2>/dev/null || true # it copies whatever is there, and mounts its own
mapfile -t all < <(find "$packages" -name '*.deb' ! -name '*-dbgsym_*')
piuparts --existing-chroot="$chroot" --keep-sources-list --distribution=bookworm --no-eatmydata \
    --fail-on-broken-symlinks --fail-if-inadequate "${all[@]}" >"$packages/piuparts.log" 2>&1 || {
    grep -vE ' (DEBUG|DUMP):|^  ' "$packages/piuparts.log" >&2
    fail "see ${packages#"$root/"}/piuparts.log"
}
grep -F PASS "$packages/piuparts.log"
mount_all

say "installing the packages"
# Compilers and the like are no part of the trial.
inside apt-get -q install -y --no-install-recommends cmake g++ make pkg-config python3 >/dev/null
mkdir -p "$chroot/tmp/packages/tests/install"
cp "${all[@]}" "$chroot/tmp/packages"
cp -r "$root/packaging/debian" "$chroot/tmp/packages/debian"
cp -r "$root/tests/install/consumer" "$chroot/tmp/packages/tests/install"
inside sh -c 'dpkg -i /tmp/packages/*.deb' >/dev/null
inside ldconfig -p | grep brevantis

say "using them"
inside /tmp/packages/debian/tests/use
