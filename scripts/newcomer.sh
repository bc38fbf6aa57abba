#!/usr/bin/env bash
# Goes the way of somebody who has just heard of this: in a bare Debian 12 in a chroot, a clone of the
# tree, the README's two commands, an installation, and a program of each kind against it (CMake,
# pkg-config, C, Python). Needs root and the network; takes as long as building and testing everything
# twice.
#
# Usage: scripts/newcomer.sh [--short] [CHROOT]
#
#   --short  scripts/try.sh alone of the two commands
#   CHROOT   a directory with a Debian 12, which is copied; otherwise debootstrap makes one
set -euo pipefail
# shellcheck source=scripts/setup.sh
source "$(dirname "${BASH_SOURCE[0]}")/setup.sh"
# shellcheck source=scripts/chroot.sh
source "$(dirname "${BASH_SOURCE[0]}")/chroot.sh"

short=false
if [[ ${1:-} == --short ]]; then
    short=true
    shift
fi
make_chroot "${1:-}"
say "cloning"
git clone -q "$root" "$chroot/root/clone"

say "scripts/try.sh"
inside /root/clone/scripts/try.sh >"$chroot/../try" 2>&1 || {
    tail -n 30 "$chroot/../try"
    fail "scripts/try.sh"
}
tail -n 4 "$chroot/../try"
if ! $short; then
    say "scripts/check.sh"
    inside /root/clone/scripts/check.sh >"$chroot/../check" 2>&1 || {
        tail -n 30 "$chroot/../check"
        fail "scripts/check.sh"
    }
    tail -n 6 "$chroot/../check"
fi

say "installing, and programs against it"
inside apt-get -q install -y --no-install-recommends pkg-config python3 >/dev/null 2>&1
# All that is installed has to be built, and was not for the first look.
inside cmake --build /root/clone/build/release --target \
    brevantis_asn1 brevantis_asn1_text brevantis_asn1gen brevantis_derview >/dev/null
inside cmake --install /root/clone/build/release --prefix /opt/asn1 >/dev/null
cat >"$chroot/root/use.sh" <<'USE'
#!/bin/bash
set -euo pipefail
cmake=cmake compiler=c++ work=/root/work
mkdir -p "$work"
source /root/clone/tests/install/use_installed.sh
use_with_cmake /opt/asn1 ""
use_with_pkg_config /opt/asn1 ""
library=$(find /opt/asn1 -name 'libbrevantis_asn1_text.so.1')
BREVANTIS_ASN1_LIBRARY=$library PYTHONPATH=/root/clone/python python3 -c \
    'import brevantis_asn1 as a; assert a.decode(bytes.fromhex("3000"), "Name") == {"rdnSequence": []}'
echo "Python: works"
/opt/asn1/bin/derview --version
USE
chmod +x "$chroot/root/use.sh"
inside /root/use.sh
say "everything works for a newcomer"
