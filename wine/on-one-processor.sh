#!/usr/bin/env bash
# on-one-processor.sh COMMAND...: runs the command on one processor, which at most one other command
# shares meanwhile: one computes while the other waits. A program and its Wine server, which it asks
# all the time, are several times as fast on one processor as on two.
set -u
source "$(dirname "${BASH_SOURCE[0]}")/common.sh"

# The processors that this process may use, one a line.
processors() {
    local ranges range
    ranges=$(sed -n 's/^Cpus_allowed_list:[[:space:]]*//p' /proc/self/status)
    for range in ${ranges//,/ }; do
        seq "${range%-*}" "${range#*-}"
    done
}

mkdir -p "$kor_build/processors"
while :; do
    for place in first second; do
        for processor in $(processors); do
            # The lock is this script's alone: a process that stays behind does not keep it.
            exec 9>"$kor_build/processors/$processor-$place"
            if flock -n 9; then
                taskset -c "$processor" "$@" 9>&-
                exit
            fi
        done
    done
    sleep 0.05
done
