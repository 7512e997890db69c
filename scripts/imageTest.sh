#!/usr/bin/env bash
# Tries the container image: unpacks it and runs it in namespaces, with a network between it and a
# client outside of it. Needs root and build/packages/san-sandbox.oci.tar (scripts/image.sh).
set -euo pipefail
. "$(dirname "$0")/common.sh"

if [ "${1:-}" != inside ]; then
    [ $# -eq 0 ] || die "usage: scripts/imageTest.sh"
    "$root/scripts/image.sh"
    say "Running the container image"
    # The client's side has a network of its own as well, so no port of this machine is used.
    exec unshare --net --mount --pid --fork --kill-child --mount-proc "$0" inside
fi

scratch=$(mktemp -d)
trap 'kill -9 "${container:-}" 2>/dev/null || true; rm -rf "$scratch"' EXIT
mkdir "$scratch/oci"
tar -C "$scratch/oci" -xf "$root/build/packages/san-sandbox.oci.tar"
umoci unpack --image "$scratch/oci:san-sandbox" "$scratch/bundle" >/dev/null 2>&1
cp -a "$scratch/bundle/rootfs" "$scratch/outside"

# What the image says is run, as a container engine would: the command, the environment.
said() {
    python3 -c '
import json, sys
print(*json.load(open(sys.argv[1]))["process"][sys.argv[2]], sep="\n")' "$scratch/bundle/config.json" "$1"
}
mapfile -t command < <(said args)
mapfile -t environment < <(said env)
# shellcheck disable=SC2016
SAN_PORT=8181 SANSIM_OPTIONS='--volumes 3' unshare --net --mount --pid --ipc --uts --fork bash -c '
    mount --bind "$1" "$1"
    cd "$1" && shift
    mount -t proc proc proc
    mount -t tmpfs run run
    mount -t tmpfs dev dev
    for node in null zero full random urandom; do
        touch "dev/$node" && mount --bind "/dev/$node" "dev/$node"
    done
    ln -s /proc/self/fd dev/fd
    ln -s /proc/self/fd/1 dev/stdout
    ln -s /proc/self/fd/2 dev/stderr
    ip link set lo up
    until ip link show inside >/dev/null 2>&1; do sleep 0.05; done
    ip address add 192.0.2.2/24 dev inside && ip link set inside up
    exec chroot . "$@"' container "$scratch/bundle/rootfs" "${command[@]}" >"$scratch/output" 2>&1 &
unshare_id=$!
for _ in {1..100}; do
    container=$(cat "/proc/$unshare_id/task/$unshare_id/children")
    [ -z "$container" ] || break
    sleep 0.05
done
container=${container// /}
ip link set lo up
ip link add outside type veth peer name inside netns "$container"
ip address add 192.0.2.1/24 dev outside
ip link set outside up

fail() { cat "$scratch/output"; die "$1"; }
client() { chroot "$scratch/outside" sanctl --url http://192.0.2.2:8181/sanService "$@"; }
for _ in {1..300}; do
    ! client ping >/dev/null 2>&1 || break
    sleep 0.1
done
client ping || fail "no answer to a Ping"
client --token any lifecycle >/dev/null || fail "the life cycle failed"
entered() { nsenter --target "$container" --all --root --wd env -i "${environment[@]}" SAN_PORT=8181 "$@"; }
entered san-sandbox health || fail "the health check failed"
entered simctl state | grep -q . || fail "simctl does not find the array"

for status in /proc/[0-9]*/status; do
    [ "$(readlink "${status%status}ns/net" 2>/dev/null)" != "$(readlink "/proc/$container/ns/net")" ] ||
        ! grep -q $'^Uid:.*\t0\t' "$status" || [ "$(sed -n 's/^Pid:\t//p' "$status")" = "$unshare_id" ] ||
        fail "a process of root: $(tr '\0' ' ' <"${status%status}cmdline")"
done
for line in 'SANService: .*Serving Ping' 'listening on' '"POST /sanService HTTP/1.1" 200'; do
    grep -q -- "$line" "$scratch/output" || fail "nothing on standard output says $line"
done
kill -TERM "$container"
status=0
timeout 30 tail --pid="$unshare_id" -f /dev/null || fail "SIGTERM does not end it"
wait "$unshare_id" || status=$?
[ "$status" -eq 0 ] || fail "it ended with $status"
container=''
say "The image serves, logs, is healthy, runs without root and ends"
