# The Debian packages that each script needs, in one place, and how missing ones are installed.
# Source common.sh first.

kor_run_packages=(
    g++-mingw-w64-x86-64-posix binutils-mingw-w64-x86-64 cmake ninja-build
    wine wine64 fonts-wine xvfb xdotool imagemagick python3
)
kor_package_packages=(
    g++-mingw-w64-x86-64-posix binutils-mingw-w64-x86-64 cmake ninja-build python3
    wixl msitools
)
kor_kit_packages=("${kor_package_packages[@]}" googletest lld)
# What the long tests need besides.
kor_long_test_packages=(
    "${kor_package_packages[@]}"
    osslsigncode openssl
)
kor_test_packages=(
    "${kor_run_packages[@]}"
    googletest lld chromium python3-jsonschema
)
kor_lint_packages=(
    g++-mingw-w64-x86-64-posix binutils-mingw-w64-x86-64 cmake ninja-build python3
    git googletest clang-format-19 clang-tidy-19 shellcheck flake8
)
kor_mutation_packages=(
    "${kor_test_packages[@]}"
    python3-clang-19 libclang-common-19-dev util-linux
)

# kor_need PACKAGE...: installs those that are missing; asks apt only when one is.
kor_need() {
    local missing=() package installed
    if ! command -v dpkg-query >/dev/null; then
        kor_say "This is no Debian: see to it that what these packages hold is there: $*"
        return 0
    fi
    installed=" $(dpkg-query -W -f '${Package}=${db:Status-Status} ' "$@" 2>/dev/null) "
    for package in "$@"; do
        [[ $installed == *" $package=installed "* ]] || missing+=("$package")
    done
    [ ${#missing[@]} -eq 0 ] && return 0

    local as_root=()
    if [ "$(id -u)" -ne 0 ]; then
        if ! command -v sudo >/dev/null; then
            kor_say "These packages are missing, and only root can install them (there is no sudo):" \
                "  apt-get install --no-install-recommends ${missing[*]}"
            return 1
        fi
        as_root=(sudo)
        # Without a terminal sudo could not ask for the password.
        [ -t 0 ] || as_root=(sudo -n)
    fi
    if ! kor_step "Installing missing packages: ${missing[*]}" kor_install "${missing[@]}"; then
        kor_say "The packages could not be installed. By hand:" \
            "  apt-get install --no-install-recommends ${missing[*]}"
        return 1
    fi
}

kor_install() { kor_apt update && kor_apt install -y --no-install-recommends "$@"; }
kor_apt() { "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get -q "$@" </dev/null; }
