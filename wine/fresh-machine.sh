#!/usr/bin/env bash
# fresh-machine.sh SUITE [COMMAND]: makes a bare Debian of that suite (bookworm, trixie) below
# build/fresh-machine, puts the working tree into it, and runs COMMAND there ("./run && ./test" if
# none is given), as somebody does who has just fetched the sources. Needs root. Nothing that is
# started there outlives it.
set -u
source "$(dirname "${BASH_SOURCE[0]}")/common.sh"
source "$(dirname "${BASH_SOURCE[0]}")/packages.sh"

suite=${1:?which suite? bookworm or trixie}
command=${2:-./run && ./test}
machines=$kor_build/fresh-machine
root=$machines/$suite
archives=$machines/packages-$suite
home=/root/control-center

[ "$(id -u)" -eq 0 ] || { kor_say "Only root can make another root folder."; exit 1; }
kor_need debootstrap git || exit 1

bare_root() {
    rm -rf --one-file-system "$root"
    mkdir -p "$root" "$archives"
    debootstrap --variant=minbase --cache-dir="$archives" "$suite" "$root" || return 1
    # What ./run and ./test install is kept there, too, for the next fresh machine.
    echo 'APT::Keep-Downloaded-Packages "true";' >"$root/etc/apt/apt.conf.d/keep"
    cp /etc/resolv.conf "$root/etc/"
}

# The last commit, and what is changed and not ignored since.
working_tree() {
    git clone -q "$kor_root" "$root$home" || return 1
    cd "$kor_root" || return 1
    git ls-files -z --deleted | (cd "$root$home" && xargs -0 -r rm -f) || return 1
    git ls-files -z --cached --others --exclude-standard |
        tar --ignore-failed-read --null -cf - -T - 2>/dev/null | tar -xf - -C "$root$home"
}

# In namespaces of its own: what it mounts and starts goes with it.
enter() {
    # shellcheck disable=SC2016 # the inner shell expands these
    unshare --mount --pid --fork --kill-child bash -c '
        mount -t proc proc "$1/proc" && mount --rbind /dev "$1/dev" &&
            mount --bind "$2" "$1/var/cache/apt/archives" || exit 1
        exec chroot "$1" env -i HOME=/root PATH=/usr/sbin:/usr/bin:/sbin:/bin TERM="${TERM:-dumb}" \
            bash -c "cd $3 && $4"' fresh-machine "$root" "$archives" "$home" "$command"
}

kor_step "Making a bare $suite" bare_root || exit 1
kor_step "Putting the working tree into it" working_tree || exit 1
started=${EPOCHREALTIME/./}
enter
result=$?
echo "$suite: exit code $result after $(kor_seconds_since "$started")"
exit "$result"
