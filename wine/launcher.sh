# Builds and starts the launcher, waits for its page, takes its picture and ends it. Source common.sh
# first; WINEPREFIX and DISPLAY are the caller's.

kor_title='Vantrel Imaging Library >> Control Center'
kor_launcher=$kor_build/release/app/korcontrolcenter.exe

# Starts the launcher and waits until its page is filled; 1 if it was not, with the reason in
# kor_failure. The HTML class notes what it shows in a file; where Wine's own shows the page, the
# window alone is waited for.
kor_start_launcher() {
    local started=${EPOCHREALTIME/./} deadline=$((SECONDS + 60))
    kor_page=$WINEPREFIX/page.json
    rm -f "$kor_page"
    (
        cd "$WINEPREFIX/drive_c" || exit 1
        exec env KOR_HTML_TRACE="Z:${kor_page//\//\\}" "$kor_wine" "$kor_launcher"
    ) &
    kor_launcher_pid=$!
    while ! kor_page_is_filled; do
        if ! kill -0 "$kor_launcher_pid" 2>/dev/null; then
            wait "$kor_launcher_pid"
            kor_failure="the program ended before its window opened (exit code $?)"
            return 1
        fi
        if [ "$SECONDS" -ge "$deadline" ]; then
            kor_failure='the program did not show its page within a minute and was ended'
            kill "$kor_launcher_pid"
            return 1
        fi
        sleep 0.1
    done
    kor_say "Starting the program ... $(kor_seconds_since "$started")"
}

kor_page_is_filled() {
    kor_window=$(xdotool search --onlyvisible --name "^$kor_title\$" 2>/dev/null | head -n 1)
    [ -n "$kor_window" ] || return 1
    [ -n "${gecko:-}" ] || grep -Eq '"writes": *[1-9]' "$kor_page" 2>/dev/null
}

kor_describe_window() {
    local WIDTH=0 HEIGHT=0
    eval "$(xdotool getwindowgeometry --shell "$kor_window" 2>/dev/null | grep -E '^(WIDTH|HEIGHT)=[0-9]+$')"
    kor_say "It shows \"$(xdotool getwindowname "$kor_window")\", $WIDTH x $HEIGHT pixels."
}

# kor_save_picture FILE: the window's picture, once two taken in a row are the same.
kor_save_picture() {
    local file=$1 before='' now tries
    xdotool windowfocus "$kor_window" 2>/dev/null
    for tries in {1..20}; do
        import -window "$kor_window" "png:$file" || return 1
        now=$(convert "$file" rgb:- | sha256sum)
        # Before it is painted it is still, too, but has no banner.
        [ "$now" = "$before" ] && [ "$(identify -format %k "png:$file")" -gt 1000 ] && return 0
        before=$now
        sleep 0.2
    done
    kor_say "The page did not come to rest; this is the picture after $tries tries."
}

# Ends the launcher as a user does; by force if it does not follow.
kor_end_launcher() {
    local tries
    # F4 comes up before Alt: "key alt+F4" lets go of Alt first, and then it is no Alt+F4 any more.
    xdotool windowfocus "$kor_window" keydown alt keydown F4 keyup F4 keyup alt 2>/dev/null
    for tries in {1..50}; do
        kill -0 "$kor_launcher_pid" 2>/dev/null || return 0
        sleep 0.1
    done
    kor_say "It did not end on Alt+F4 within $((tries / 10)) s."
    kill "$kor_launcher_pid"
}
