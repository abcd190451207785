# Shared by the scripts that run Windows programs under Wine. Everything lives under build/; the
# user's own ~/.wine is never touched.

kor_root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
kor_build=$kor_root/build
kor_template=$kor_build/prefix-template

# Numbers and file names read the same everywhere.
export LC_ALL=C.UTF-8
# What handles running programs is in sandbox/, and leaves no compiled files beside it.
export PYTHONPATH=$kor_root/wine PYTHONDONTWRITEBYTECODE=1

kor_say() { printf '%s\n' "$@" >&2; }

# kor_step TEXT COMMAND...: says what is done and how long it took, and every ten seconds how far it
# is; shows the end of what the command printed when it failed.
kor_step() {
    local text=$1 log=$kor_build/step.log started=${EPOCHREALTIME/./} result=0 watcher
    shift
    mkdir -p "$kor_build"
    : >"$log"
    printf '%s ... ' "$text" >&2
    (
        while sleep 10 >/dev/null 2>&1 && kill -0 $$ 2>/dev/null; do
            printf '\n    %.110s ... ' "$(tail -n 1 "$log")"
        done
    ) >&2 &
    watcher=$!
    "$@" >"$log" 2>&1 || result=$?
    kill "$watcher" 2>/dev/null
    wait "$watcher" 2>/dev/null
    [ "$result" -eq 0 ] || printf 'FAILED after ' >&2
    kor_seconds_since "$started" >&2
    [ "$result" -eq 0 ] || tail -n "${KOR_STEP_LINES:-40}" "$log" >&2
    return "$result"
}

# kor_seconds_since START: prints the seconds since START, a value of EPOCHREALTIME without its dot.
kor_seconds_since() {
    local tenths=$(((${EPOCHREALTIME/./} - $1) / 100000))
    printf '%d.%d s\n' $((tenths / 10)) $((tenths % 10))
}

# kor_build_preset PRESET [TARGET...]: configures if need be and builds.
kor_build_preset() {
    local preset=$1 targets=()
    shift
    [ $# -eq 0 ] || targets=(--target "$@")
    # Also after a change of the presets, of which the build itself does not learn.
    if [ ! "$kor_root/build/$preset/build.ninja" -nt "$kor_root/CMakePresets.json" ]; then
        kor_step "Configuring the $preset build" cmake --preset "$preset" || return 1
    fi
    kor_step "Building ($preset)" cmake --build --preset "$preset" "${targets[@]}"
}

# kor_private_display WIDTHxHEIGHT: starts an X server of its own and sets DISPLAY; the caller ends
# the process kor_display_pid.
kor_private_display() {
    local started
    started=$(python3 -m sandbox.display "$1") && eval "$started"
}

# The prefix that others are copied from; made once.
kor_make_template() { python3 -m sandbox.prefix; }
