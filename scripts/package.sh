#!/usr/bin/env bash
# Installs what is missing and builds the Debian packages. See --help.
set -euo pipefail
. "$(dirname "$0")/common.sh"

usage() {
    cat <<'TEXT'
usage: scripts/package.sh [--twice] [--lint]

Builds the Debian packages of the service, the tools, the simulator and the API stub into
build/packages. They are built from a copy of the sources in build/package, which is kept, so that
the next time only what changed is compiled.

  --twice   builds a second time, from nothing and in another folder, and compares the bytes
  --lint    runs lintian over the packages and fails at an error or a warning
  --help    this text
TEXT
}

twice=no
lint=no
while [ $# -gt 0 ]; do
    case "$1" in
        --twice) twice=yes ;;
        --lint) lint=yes ;;
        --help) usage; exit 0 ;;
        *) usage >&2; die "unknown option: $1" ;;
    esac
    shift
done

# copy_sources FOLDER: the sources as they are, beside what a build left there. Only a file that
# still has its content keeps its time: one that changed while a build ran may be older than what
# that build made of it.
copy_sources() {
    local before
    mkdir -p "$1"
    before=$(mktemp -d "$1.XXXXXX")
    find "$1" -mindepth 1 -maxdepth 1 ! -name build -exec mv -t "$before" {} +
    tar -C "$root" --exclude=./build --exclude=./.git -c . | tar -xm -C "$1"
    (cd "$before" && find . -type f -print0) | while IFS= read -rd '' file; do
        ! cmp -s "$before/$file" "$1/$file" || touch -r "$before/$file" "$1/$file"
    done
    rm -rf "$before"
}

# build_packages FOLDER: the packages are put beside the folder.
build_packages() {
    copy_sources "$1"
    rm -f "$1"/../*.deb "$1"/../*.buildinfo "$1"/../*.changes
    if ! (cd "$1" && DEB_BUILD_OPTIONS="parallel=$jobs" dpkg-buildpackage -b -us -uc -nc) \
        >"$1/../build.log" 2>&1; then
        tail -n 40 "$1/../build.log" >&2
        die "building the packages failed; see build/package"
    fi
}

install_packages build package
version=$(sed -n 's/^project(.* VERSION \([0-9.]*\).*/\1/p' "$root/CMakeLists.txt")
[ "$(dpkg-parsechangelog -l "$root/debian/changelog" -S Version)" = "$version" ] ||
    die "debian/changelog does not start with version $version, as CMakeLists.txt has it"

say "Building the packages"
build_packages "$root/build/package/tree"
packages="$root/build/packages"
rm -rf "$packages"
mkdir -p "$packages"
cp "$root"/build/package/*.deb "$packages"

if [ "$twice" = yes ]; then
    say "Building them again"
    rm -rf "$root/build/package/again"
    build_packages "$root/build/package/again/tree-again"
    for package in "$packages"/*.deb; do
        cmp "$package" "$root/build/package/again/${package##*/}" || die "two builds differ"
    done
    rm -rf "$root/build/package/again"
    say "Two builds gave the same bytes"
fi
if [ "$lint" = yes ]; then
    lintian --fail-on error,warning --tag-display-limit 0 --allow-root "$root"/build/package/*.changes
fi
(cd "$packages" && du -h -- *.deb)
