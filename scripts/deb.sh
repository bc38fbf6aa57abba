#!/usr/bin/env bash
# Builds Debian packages of the tree as it is, with the distribution's own tools and without network,
# and has lintian look at them. They go to build/deb. Installs what a bare Debian 12 lacks first.
#
# Usage: scripts/deb.sh [--trial]
#
#   --trial  has piuparts try them in a fresh chroot, and uses them in another
set -euo pipefail
# shellcheck source=scripts/setup.sh
source "$(dirname "${BASH_SOURCE[0]}")/setup.sh"

install_missing g++ cmake ninja-build nlohmann-json3-dev libcli11-dev nettle-dev debhelper dpkg-dev dh-python \
    python3-all doxygen lintian
directory=$root/build/deb
version=$(sed -n '1s/.*(\(.*\)).*/\1/p' "$root/packaging/debian/changelog")
tree=$directory/brevantis-asn1-$version
rm -rf "$directory"
mkdir -p "$tree"
say "laying the sources out in ${tree#"$root/"}"
cd "$root"
if git rev-parse --is-inside-work-tree >/dev/null 2>&1; then
    git ls-files --cached --others --exclude-standard -z
else
    find . -path ./build -prune -o -type f -print0
fi | tar --null --files-from=- --create | tar -x -C "$tree"
cp -r "$root/packaging/debian" "$tree/debian"

say "building the packages"
(cd "$tree" && DEB_BUILD_OPTIONS="parallel=$jobs nocheck" dpkg-buildpackage -us -uc) \
    >"$directory/log" 2>&1 || {
    tail -n 40 "$directory/log" >&2
    fail "no packages; see ${directory#"$root/"}/log"
}
ls -l "$directory"/*.deb

say "lintian"
lintian --allow-root --info --fail-on error,warning "$directory"/*.changes

if [[ ${1:-} == --trial ]]; then
    "$root/scripts/deb_trial.sh"
fi
