# Makes and enters a Debian of its own; to be sourced after common.sh.
# shellcheck shell=bash disable=SC2016  # what stands in single quotes is for others to expand

# make_debian_root TARGET PACKAGE,... [VARIANT [OPTION...]]: a bare Debian 12 with these packages, from
# where this machine takes its own; in a folder, or in an archive whose name ends with .tar.
make_debian_root() {
    local target=$1 packages=$2 variant=${3:-minbase} sources settings
    shift $(($# < 3 ? $# : 3))
    install_packages package
    sources=$(mktemp)
    settings=$(mktemp)
    apt-get indextargets --format 'deb $(REPO_URI) $(RELEASE) $(COMPONENT)' \
        'Created-By: Packages' 'Origin: Debian' | sort -u >"$sources"
    [ -s "$sources" ] || die "no Debian among this machine's package sources; apt-get update?"
    apt-config dump Acquire | grep -iE '::(proxy|retries|check-)' >"$settings" || true
    printf '%s\n' 'Acquire::Languages "none";' 'DPkg::Use-Pty "false";' >>"$settings"
    mmdebstrap --quiet --mode=root --variant="$variant" --include="$packages" \
        --aptopt="$settings" --skip=cleanup/apt/lists \
        --customize-hook='printf "127.0.0.1\tlocalhost\n" >"$1/etc/hosts"' "$@" \
        bookworm "$target" "$sources" || die "mmdebstrap failed"
    rm -f "$sources" "$settings"
}

# in_root FOLDER COMMAND...: runs it there, with processes and a network of its own, which end with it.
in_root() {
    local folder=$1
    shift
    unshare --mount --net --pid --ipc --uts --fork --kill-child bash -c '
        ip link set lo up
        mount --bind "$1" "$1"
        mount -t proc proc "$1/proc"
        mount -t tmpfs run "$1/run"
        mkdir -m 1777 "$1/run/lock"
        mount -t tmpfs dev "$1/dev"
        for node in null zero full random urandom; do
            touch "$1/dev/$node"
            mount --bind "/dev/$node" "$1/dev/$node"
        done
        mkdir -m 1777 "$1/dev/shm"
        ln -s /proc/self/fd "$1/dev/fd"
        cd "$1" && shift && exec chroot . "$@"' in_root "$folder" "$@"
}
