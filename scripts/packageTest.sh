#!/usr/bin/env bash
# Tries the Debian packages in a bare Debian 12. See --help.
set -euo pipefail
. "$(dirname "$0")/common.sh"

usage() {
    cat <<'TEXT'
usage: scripts/packageTest.sh [--image]

Builds the packages, makes a bare Debian 12 below build/package and does in it what an administrator
does, from the installation to the purge, with an upgrade under load between (debian/tests). It has a
network of its own, so no port of this machine is used. Needs root.

  --image   then builds the container image and tries that too
  --help    this text
TEXT
}

image=no
case "${1:-}" in
    '') ;;
    --image) image=yes ;;
    --help) usage; exit 0 ;;
    *) usage >&2; die "unknown option: $1" ;;
esac

"$root/scripts/package.sh" --lint
. "$root/scripts/debianRoot.sh"
packages="$root/build/packages"
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
system="$scratch/root"

# as_if_newer FOLDER VERSION: the packages as a higher version, each one's files first handed to
# the function change_PACKAGE if there is one.
as_if_newer() {
    local folder=$1 version=$2 package name tree
    mkdir -p "$folder"
    for name in san-service san-tools san-simulator; do
        package=$(echo "$packages/${name}"_*.deb)
        tree="$scratch/$name"
        dpkg-deb -R "$package" "$tree"
        sed -i "s/^Version: .*/Version: $version/; s/^\(Provides: .*\) (= [^)]*)/\1 (= $version)/" \
            "$tree/DEBIAN/control"
        if [ "$name" = san-service ]; then
            "$3" "$tree"
        fi
        dpkg-deb -Znone --root-owner-group -b "$tree" "$folder/${name}_${version}_any.deb" >/dev/null
        rm -rf "$tree"
    done
}
new_description() { sed -i 's/<\/[a-zA-Z]*:\?definitions>/<!-- upgraded description -->&/' "$1/usr/share/sanService/sanApi.wsdl"; }
new_plugin() { objcopy --add-section .comment.newer="$0" "$1"/usr/lib/*/sanService/libsanService.so; }

say "Checking what AppArmor and systemd read"
printf 'include <tunables/global>\nprofile apache2 {\n    include "%s"\n}\n' \
    "$root/packaging/apparmor/san-service" |
    apparmor_parser --skip-kernel-load --skip-cache || die "the AppArmor profile is refused"
systemd-analyze security --offline=true --no-pager --threshold=20 "$root/debian/san-simulator.service" |
    tail -n 1

say "Making a bare Debian 12"
make_debian_root "$system" curl,openssl
mkdir "$system/test"
cp "$packages"/*.deb "$system/test"
as_if_newer "$system/test/files" 9.0.0 new_description
as_if_newer "$system/test/plugin" 9.0.1 new_plugin
cp "$root/debian/tests/administrator" "$system/test"
# What the packages depend on is fetched now: the test has no way out.
chroot "$system" sh -c 'apt-get install -q -y --no-install-recommends --download-only \
    /test/san-service_*.deb /test/san-tools_*.deb /test/san-simulator_*.deb rsyslog logrotate' \
    >"$scratch/download.log" 2>&1 || { tail "$scratch/download.log"; die "no packages to be had"; }

say "Doing what an administrator does"
in_root "$system" env PACKAGES=/test UPGRADE_FILES=/test/files UPGRADE_PLUGIN=/test/plugin \
    /test/administrator
[ "$image" = no ] || "$root/scripts/imageTest.sh"
