#!/usr/bin/env bash
# in-prefix.sh PROGRAM.exe [ARGUMENT...]: runs a test program in a throw-away Wine prefix and gives
# back its exit code. CTest starts every test program through it.
set -u
source "$(dirname "${BASH_SOURCE[0]}")/common.sh"

kor_enter_test_prefix "$1"
"$kor_wineserver" -p"$kor_server_seconds"
kor_run_tests "$@"
