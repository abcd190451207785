#!/usr/bin/env bash
# in-prefix.sh PROGRAM.exe [ARGUMENT...]: runs a test program in a throw-away Wine prefix and gives
# back its exit code. CTest starts every test program through it.
set -u
source "$(dirname "${BASH_SOURCE[0]}")/common.sh"

kor_make_template || { kor_say "The Wine prefix template could not be made."; exit 1; }
prefix=$kor_build/test-prefixes/$(basename "$1" .exe)-$$
kor_copy_prefix "$prefix" || exit 1
export WINEPREFIX=$prefix HOME=$kor_build/scratch-home
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
"$kor_wineserver" -p
# A test program refuses to start without this: it deletes registry keys and folders.
export KOR_TEST_SANDBOX=1
"$kor_wine" "$@"
