#!/usr/bin/env bash
# in-prefix.sh PROGRAM.exe [ARGUMENT...]: runs a test program in a throw-away Wine prefix and gives
# back its exit code. CTest starts every test program through it.
set -u
source "$(dirname "${BASH_SOURCE[0]}")/common.sh"

if [ -z "${DISPLAY:-}" ]; then
    exec xvfb-run -a -s "-screen 0 1600x1200x24" "$0" "$@"
fi

kor_make_template || { kor_say "The Wine prefix template could not be made."; exit 1; }
prefix=$kor_build/test-prefixes/$(basename "$1" .exe)-$$
kor_copy_prefix "$prefix" || exit 1
export WINEPREFIX=$prefix HOME=$kor_build/scratch-home
finish() {
    "$kor_wineserver" -k >/dev/null 2>&1
    rm -rf "$prefix"
}
trap finish EXIT
trap 'exit 143' TERM INT
"$kor_wineserver" -p
# A test program refuses to start without this: it deletes registry keys and folders.
export KOR_TEST_SANDBOX=1
"$kor_wine" "$@"
