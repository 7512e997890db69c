# Functions shared by the scripts of this folder; to be sourced.
# shellcheck shell=bash

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
jobs=$(nproc)

say() { printf '== %s\n' "$*"; }
die() { printf 'error: %s\n' "$*" >&2; exit 1; }

# packages_for KIND...: the Debian packages listed for these kinds of work.
packages_for() {
    local kinds=" $* "
    while read -r kind package; do
        case "$kind" in ''|'#'*) continue ;; esac
        case "$kinds" in *" $kind "*) printf '%s\n' "$package" ;; esac
    done < "$root/scripts/packages.txt" | sort -u
}

# A command that came from elsewhere (node's own packages bring npm, and Debian's would clash with
# them) counts as well.
is_installed() {
    command -v "$1" >/dev/null ||
        [ "$(dpkg-query -W -f '${db:Status-Status}' "$1" 2>/dev/null)" = installed ]
}

# install_packages KIND...: installs those of them that are missing. Quick when none is.
install_packages() {
    local missing=() package
    for package in $(packages_for "$@"); do
        is_installed "$package" || missing+=("$package")
    done
    [ ${#missing[@]} -eq 0 ] && return
    command -v apt-get >/dev/null || die "missing packages (no apt-get here): ${missing[*]}"
    [ "$(id -u)" -eq 0 ] || die "run as root, or install first: ${missing[*]}"
    say "Installing ${#missing[@]} packages: ${missing[*]}"
    apt-get update -q
    DEBIAN_FRONTEND=noninteractive apt-get install -q -y --no-install-recommends "${missing[@]}"
}

# build PRESET [TARGET...]: configures and builds; the build tool shows its progress.
build() {
    local preset=$1
    shift
    say "Building ($preset)"
    (cd "$root" && cmake --preset "$preset" --log-level=NOTICE >/dev/null) ||
        die "configuring the $preset build failed"
    cmake --build "$root/build/$preset" -j "$jobs" ${1:+--target "$@"} ||
        die "the $preset build failed"
}
