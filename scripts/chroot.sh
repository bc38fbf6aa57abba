# shellcheck shell=bash
# Sourced by scripts that try things in a bare Debian 12: a chroot that goes when they end. The root
# is theirs; processor, memory and network are this machine's.

# make_chroot [DIRECTORY]: sets `chroot`, a copy of DIRECTORY, or of what debootstrap makes.
make_chroot() {
    ((EUID == 0)) || fail "needs root"
    local work
    work=$(mktemp -d)
    chroot=$work/root
    trap 'umount "$chroot/proc" "$chroot/dev/pts" 2>/dev/null; rm -rf --one-file-system "'"$work"'"' EXIT
    if [[ -n ${1:-} ]]; then
        cp -a "$1" "$chroot"
    else
        install_missing debootstrap
        say "making a Debian 12"
        debootstrap --variant=minbase bookworm "$chroot" >"$work/log" || {
            cat "$work/log" >&2
            exit 1
        }
    fi
    mount_all
    cp /etc/resolv.conf "$chroot/etc/resolv.conf"
    # Services are not to be started there.
    printf '#!/bin/sh\nexit 101\n' >"$chroot/usr/sbin/policy-rc.d"
    chmod +x "$chroot/usr/sbin/policy-rc.d"
    inside apt-get -q update >/dev/null
}

# What a running system has: processes, and terminals for those that ask for one.
mount_all() {
    mount -t proc proc "$chroot/proc" 2>/dev/null || true
    mount -t devpts -o ptmxmode=666 devpts "$chroot/dev/pts" 2>/dev/null || true
}

# inside COMMAND...: runs it in the chroot, as its root, with little of this environment.
inside() {
    chroot "$chroot" env -i HOME=/root PATH=/usr/sbin:/usr/bin:/sbin:/bin LC_ALL=C.UTF-8 \
        DEBIAN_FRONTEND=noninteractive "$@"
}
