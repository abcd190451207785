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
    {
        printf '\xff\xfe'
        {
            printf 'Windows Registry Editor Version 5.00\r\n\r\n'
            for file in "$@"; do
                kor_reg_text "$file" | tail -n +2 || return 1
                printf '\r\n'
            done
        } | iconv -f UTF-8 -t UTF-16LE
    } >"$merged" || return 1
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

# kor_settings_reg DPI DLL: what ./run and the tests set besides an installation: the screen's
# resolution, and the class that shows HTML (an empty DLL leaves Wine's own in its place).
kor_settings_reg() {
    printf 'Windows Registry Editor Version 5.00\n\n'
    printf '[HKEY_CURRENT_USER\\Control Panel\\Desktop]\n"LogPixels"=dword:%08x\n\n' "$1"
    if [ -n "$2" ]; then
        local path=Z:${2//\//\\}
        printf '[HKEY_LOCAL_MACHINE\\Software\\Classes\\CLSID\\{25336920-03F9-11CF-8FD0-00AA00686F13}\\InprocServer32]\n'
        printf '@="%s"\n' "${path//\\/\\\\}"
    fi
}
