#!/usr/bin/env bash
# prefix.sh PREFIX [SET]: makes PREFIX, with a demonstration installation in it, and starts its server.
set -eu
source "$(dirname "${BASH_SOURCE[0]}")/../../../wine/common.sh"
source "$kor_root/wine/installation.sh"
export WINEPREFIX=$1 HOME=$kor_build/scratch-home
kor_copy_prefix "$1"
"$kor_wineserver" -p"$kor_server_seconds"
if [ $# -gt 1 ]; then
    data=$kor_root/wine/demo/$2
    # No test starts the programs: any file will do for them.
    kor_lay_files "$1" "$data/files.txt" "$data/files.txt"
    kor_import "$data/registry.reg"
fi
