# Puts an installation of the library into a Wine prefix: files from a list, registry data, the
# viewers of documents, the class that shows HTML. Used by ./run and by the tests that start the
# real launcher. Source common.sh first.

# kor_lay_files PREFIX LIST STUB: makes the files of LIST on the prefix's drive C. The form of a
# list: see demo/development/files.txt.
kor_lay_files() {
    local drive=$1/drive_c list=$2 stub=$3 kind path folder='' target
    while read -r kind path || [ -n "$kind" ]; do
        target=$drive/$folder/$path
        case $kind in
            '' | '#'*) ;;
            in) folder=$path ;;
            folder) mkdir -p "$target" || return 1 ;;
            file)
                [ -d "${target%/*}" ] || mkdir -p "${target%/*}" || return 1
                printf 'Part of the demonstration installation: %s\n' "$path" >"$target" || return 1
                ;;
            program)
                [ -d "${target%/*}" ] || mkdir -p "${target%/*}" || return 1
                # -f: what stands there may be a link to a file that other prefixes share.
                ln -fT "$stub" "$target" 2>/dev/null || cp --remove-destination "$stub" "$target" || return 1
                ;;
            *)
                kor_say "$list: unknown kind '$kind' ($path)"
                return 1
                ;;
        esac
    done <"$list"
}

# kor_import FILE.reg...: imports registry files into WINEPREFIX. They may be UTF-8 or, as the
# registry editor writes them, UTF-16; all go in with one start of the registry editor.
kor_import() {
    local file merged=$WINEPREFIX/import.reg
    (
        set -o pipefail
        printf '\xff\xfe'
        {
            printf 'Windows Registry Editor Version 5.00\r\n\r\n'
            for file in "$@"; do
                kor_reg_text "$file" | tail -n +2 || return 1
                printf '\r\n'
            done
        } | iconv -f UTF-8 -t UTF-16LE
    ) >"$merged" || return 1
    "$kor_wine" regedit /S "$merged" >/dev/null 2>&1 || return 1
    rm -f "$merged"
}

# A registry file as UTF-8 without a byte order mark.
kor_reg_text() {
    case $(head -c 2 "$1" | od -An -tx1) in
        ' ff fe') iconv -f UTF-16 -t UTF-8 "$1" ;;
        *) sed '1s/^\xef\xbb\xbf//' "$1" ;;
    esac
}

# kor_settings_reg DPI MODE DLL: what is set besides an installation: the screen's resolution, whether
# a window manager handles the windows, and the class that shows HTML (an empty DLL leaves Wine's own).
kor_settings_reg() {
    local managed=N path=Z:${3//\//\\}
    [ "$2" = window ] && managed=Y
    printf 'Windows Registry Editor Version 5.00\n\n'
    printf '[HKEY_CURRENT_USER\\Control Panel\\Desktop]\n"LogPixels"=dword:%08x\n\n' "$1"
    printf '[HKEY_CURRENT_USER\\Software\\Wine\\X11 Driver]\n"Managed"="%s"\n\n' "$managed"
    if [ -n "$3" ]; then
        printf '[HKEY_LOCAL_MACHINE\\Software\\Classes\\CLSID\\{25336920-03F9-11CF-8FD0-00AA00686F13}\\InprocServer32]\n'
        printf '@="%s"\n' "${path//\\/\\\\}"
    fi
}

# kor_install_into PREFIX DPI MODE HTML ITEM...: makes PREFIX anew and puts an installation into it.
# An ITEM is a list of files (.txt) or registry data (.reg). MODE "window" leaves the windows to the
# desktop's window manager. HTML "none" leaves the HTML class as Wine has it.
kor_install_into() {
    local prefix=$1 dpi=$2 mode=$3 html=$4 item reg=() stub=$kor_build/release/wine/demo/demostub.exe
    shift 4
    local dll=$kor_build/release/wine/htmldocument/htmldocument.dll
    [ "$html" != none ] || dll=''
    kor_copy_prefix "$prefix" || return 1
    for item in "$@"; do
        case $item in
            *.txt) kor_lay_files "$prefix" "$item" "$stub" || return 1 ;;
            *) reg+=("$item") ;;
        esac
    done
    kor_settings_reg "$dpi" "$mode" "$dll" >"$prefix/settings.reg" || return 1
    WINEPREFIX=$prefix HOME=$kor_build/scratch-home kor_import "${reg[@]}" "$prefix/settings.reg"
}

# What a prefix with the demonstration installation is made from: another value, another prefix.
kor_fingerprint() {
    {
        find "$kor_root"/wine/demo "$kor_root"/wine/*.sh -type f -exec sha256sum {} +
        sha256sum "$kor_build/release/wine/demo/demostub.exe"
        stat -c %Y "$kor_template/.ready"
    } | sha256sum
}
