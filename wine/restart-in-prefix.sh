#!/usr/bin/env bash
# restart-in-prefix.sh PROGRAM.exe: runs a test program before and after a restart of the registry
# server, in one throw-away Wine prefix. KOR_TEST_STAGE tells it which half it is in.
set -u
source "$(dirname "${BASH_SOURCE[0]}")/common.sh"

kor_make_template || { kor_say "The Wine prefix template could not be made."; exit 1; }
prefix=$kor_build/test-prefixes/$(basename "$1" .exe)-$$
kor_copy_prefix "$prefix" || exit 1
export WINEPREFIX=$prefix HOME=$kor_build/scratch-home KOR_TEST_SANDBOX=1
display_pid=
finish() {
    "$kor_wineserver" -k >/dev/null 2>&1
    [ -z "$display_pid" ] || kill "$display_pid"
    rm -rf "$prefix"
}
trap finish EXIT
trap 'exit 143' TERM INT
if [ -z "${DISPLAY:-}" ]; then
    kor_private_display 1600x1200 || exit 1
    display_pid=$kor_display_pid
fi

for stage in before after; do
    "$kor_wineserver" -p
    KOR_TEST_STAGE=$stage "$kor_wine" "$@" || exit 1
    "$kor_wineserver" -k
    "$kor_wineserver" -w
done
