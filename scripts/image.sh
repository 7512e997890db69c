#!/usr/bin/env bash
# Installs what is missing and builds the container image. See --help.
set -euo pipefail
. "$(dirname "$0")/common.sh"
. "$root/scripts/debianRoot.sh"

usage() {
    cat <<'TEXT'
usage: scripts/image.sh

Makes a container image of the service and the simulated array: build/packages/san-sandbox.oci.tar, an
archive of the Open Container Initiative's format. It is made of Debian's packages and of those in
build/packages, which scripts/package.sh builds first if there are none; no image registry is asked.
docs/sandbox.md tells how to run it. Needs root.
TEXT
}

case "${1:-}" in
    '') ;;
    --help) usage; exit 0 ;;
    *) usage >&2; die "unknown option: $1" ;;
esac

packages="$root/build/packages"
compgen -G "$packages/san-service_*.deb" >/dev/null || "$root/scripts/package.sh"
install_packages package
archive="$packages/san-sandbox.oci.tar"
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
version=$(dpkg-parsechangelog -l "$root/debian/changelog" -S Version)
SOURCE_DATE_EPOCH=$(dpkg-parsechangelog -l "$root/debian/changelog" -S Timestamp)
export SOURCE_DATE_EPOCH

say "Making the container image"
mkdir "$scratch/debs"
cp "$packages"/san-{service,tools,simulator}_*.deb "$scratch/debs"
# shellcheck disable=SC2016  # $1 is for the hooks
(make_debian_root "$scratch/root.tar" "busybox,$(echo "$scratch"/debs/*.deb | tr ' ' ,)" essential \
    --hook-dir=/usr/share/mmdebstrap/hooks/file-mirror-automount \
    --dpkgopt='path-exclude=/usr/share/doc/*' --dpkgopt='path-include=/usr/share/doc/*/copyright' \
    --dpkgopt='path-exclude=/usr/share/man/*' --dpkgopt='path-exclude=/usr/share/locale/*' \
    --customize-hook="copy-in $root/packaging/image/san-sandbox /usr/bin" \
    --customize-hook='mkdir "$1/etc/san-sandbox"' \
    --customize-hook="copy-in $root/packaging/image/httpd.conf /etc/san-sandbox" \
    --customize-hook='rm -rf "$1"/var/lib/apt/lists/* "$1"/var/cache/* "$1"/var/log/*') \
    >"$scratch/log" 2>&1 || { tail -n 20 "$scratch/log" >&2; exit 1; }

image="$scratch/oci:san-sandbox"
umoci init --layout "$scratch/oci"
umoci new --image "$image"
umoci raw add-layer --image "$image" --history.created_by "mmdebstrap" "$scratch/root.tar"
umoci config --image "$image" --created "$(date -u -d "@$SOURCE_DATE_EPOCH" +%FT%TZ)" \
    --history.created_by "scripts/image.sh" \
    --config.entrypoint /usr/bin/san-sandbox --config.exposedports 8080/tcp \
    --config.env SANSIM_CONTROL=/run/san/control.sock --config.stopsignal SIGTERM --config.volume /var/lib/san-simulator \
    --config.label "org.opencontainers.image.title=san-sandbox" \
    --config.label "org.opencontainers.image.version=$version"
umoci gc --layout "$scratch/oci"
tar -C "$scratch/oci" --sort=name --mtime="@$SOURCE_DATE_EPOCH" --owner=0 --group=0 --numeric-owner \
    -cf "$archive" .
du -h "$archive"
