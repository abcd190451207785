# Shared by the scripts that run Windows programs under Wine. Everything lives under build/; the
# user's own ~/.wine is never touched.

kor_root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
kor_build=$kor_root/build
kor_template=$kor_build/prefix-template

# -all: the hint about the missing 32-bit part is of no use here. winemenubuilder would write into
# the desktop's menus. A UTF-8 locale: file names beyond ASCII could not be reached without.
export WINEARCH=win64 WINEDEBUG=${WINEDEBUG:--all} WINEDLLOVERRIDES='mscoree=d;winemenubuilder.exe=d'
export LC_ALL=C.UTF-8
kor_wine=$kor_root/wine/wine.sh
kor_wineserver=$(command -v wineserver || echo /usr/lib/wine/wineserver)
# How long a test's Wine server stays without programs. It ends by itself where a script that was to
# end it was killed.
kor_server_seconds=600

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

# kor_build_preset PRESET [TARGET...]: configures once and builds.
kor_build_preset() {
    local preset=$1 targets=()
    shift
    [ $# -eq 0 ] || targets=(--target "$@")
    if [ ! -e "$kor_root/build/$preset/build.ninja" ]; then
        kor_step "Configuring the $preset build" cmake --preset "$preset" || return 1
    fi
    kor_step "Building ($preset)" cmake --build --preset "$preset" "${targets[@]}"
}

# kor_private_display WIDTHxHEIGHT: starts an X server of its own and sets DISPLAY; the caller ends
# the process kor_display_pid.
kor_private_display() {
    local number=''
    # The server tells its number through a pipe that it alone keeps open. Without -noreset it throws
    # its clients out when the last one goes, and with it a next one that is just coming.
    coproc KOR_XVFB { exec Xvfb -displayfd 1 -screen 0 "$1x24" -nolisten tcp -noreset 2>/dev/null; }
    kor_display_pid=$!
    read -r -t 20 number <&"${KOR_XVFB[0]}"
    if [ -z "$number" ]; then
        kill "$kor_display_pid" 2>/dev/null
        kor_say "No private display could be started (Xvfb)."
        return 1
    fi
    export DISPLAY=:$number
}

# A prefix that others are copied from: made once, with a scratch home, so that its Desktop and
# Documents are folders of its own instead of links to the real home.
kor_make_template() {
    mkdir -p "$kor_build"
    (
        flock 9
        [ -e "$kor_template/.ready" ] && exit 0
        rm -rf "$kor_template"
        mkdir -p "$kor_build/scratch-home"
        export HOME=$kor_build/scratch-home WINEPREFIX=$kor_template
        kor_say "Making the Wine prefix template (about 10 s, once) ..."
        "$kor_wine" wineboot -i >/dev/null 2>&1 || exit 1
        # A crash must not wait for a dialog; without a window manager a dialog closes at once.
        # This Wine does not look where Debian puts the symbols of a caption's buttons.
        "$kor_wine" reg add 'HKCU\Software\Wine\WineDbg' /v ShowCrashDialog /t REG_DWORD /d 0 /f \
            >/dev/null 2>&1 || exit 1
        "$kor_wine" reg add 'HKCU\Software\Wine\X11 Driver' /v Managed /d N /f >/dev/null 2>&1 || exit 1
        [ ! -e /usr/share/wine/fonts/marlett.ttf ] ||
            ln -sf /usr/share/wine/fonts/marlett.ttf "$kor_template/drive_c/windows/Fonts/" || exit 1
        "$kor_wineserver" -w
        touch "$kor_template/.ready"
    ) 9>"$kor_build/.prefix-template.lock"
}

# kor_copy_prefix DIR: a copy of the template; files that nobody writes to are links.
kor_copy_prefix() {
    kor_make_template || return 1
    rm -rf "$1"
    mkdir -p "$(dirname "$1")"
    cp -as "$kor_template" "$1" || return 1
    rm -rf "$1"/*.reg "$1/.update-timestamp" "$1/.ready" "$1/dosdevices"
    # The drives are links already; links to them would lead into the template.
    cp -a "$kor_template/dosdevices" "$1/"
    cp "$kor_template"/*.reg "$kor_template/.update-timestamp" "$1/"
}

# kor_enter_test_prefix PROGRAM.exe: a throw-away Wine prefix, and a display where there is none, for
# the rest of the script; both go with its end.
kor_enter_test_prefix() {
    local prefix
    prefix=$kor_build/test-prefixes/$(basename "$1" .exe)-$$
    kor_copy_prefix "$prefix" || { kor_say "The Wine prefix could not be made."; exit 1; }
    # A test program refuses to start without the last: it deletes registry keys and folders.
    export WINEPREFIX=$prefix HOME=$kor_build/scratch-home KOR_TEST_SANDBOX=1
    kor_display_pid=
    trap kor_leave_test_prefix EXIT
    trap 'exit 143' TERM INT
    [ -n "${DISPLAY:-}" ] || kor_private_display 1600x1200 || exit 1
}

# kor_run_tests PROGRAM.exe [ARGUMENT...]: the program's exit code; a failure when it left its tests.
kor_run_tests() {
    local result=0
    "$kor_wine" "$@" || result=$?
    if [ -e "$WINEPREFIX/drive_c/tests-are-running" ]; then
        kor_say "The program ended before its tests did (exit code $result)."
        return 1
    fi
    return "$result"
}

kor_leave_test_prefix() {
    "$kor_wineserver" -k >/dev/null 2>&1
    [ -z "$kor_display_pid" ] || kill "$kor_display_pid"
    rm -rf "$WINEPREFIX"
}
