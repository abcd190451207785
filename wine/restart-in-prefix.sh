#!/usr/bin/env bash
# restart-in-prefix.sh PROGRAM.exe: runs a test program before and after a restart of the registry
# server, in one throw-away Wine prefix. KOR_TEST_STAGE tells it which half it is in.
set -u
source "$(dirname "${BASH_SOURCE[0]}")/common.sh"

kor_enter_test_prefix "$1"
for stage in before after; do
    "$kor_wineserver" -p"$kor_server_seconds"
    KOR_TEST_STAGE=$stage kor_run_tests "$@" || exit 1
    "$kor_wineserver" -k
    "$kor_wineserver" -w
done
