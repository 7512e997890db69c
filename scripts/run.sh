#!/usr/bin/env bash
# Installs what is missing, builds, and runs the service. See --help.
set -euo pipefail
# shellcheck source=common.sh
. "$(dirname "$0")/common.sh"

usage() {
    cat <<'TEXT'
usage: scripts/run.sh [--port N] [--listen ADDRESS] [--tls] [--page ADDRESS] [--no-simulator]
                      [--mpm event|worker|prefork] [--build-only]

Builds a release and runs it, on this machine's loopback unless told otherwise: a private Apache httpd with the module
and the plug-in, and an array simulator that stands in for the array's API manager. Prints the
service's URLs when a Ping has been answered. Ctrl-C or SIGTERM ends everything that it started.
Its files are in build/release/run/PORT. Runs of different ports can live beside each other: give
the later ones --no-simulator, and they use the first one's simulator.

  --port N               TCP port of the service, by default 8080
  --listen ADDRESS       where the service listens, by default 127.0.0.1: an address or a name of
                         this machine, or 0.0.0.0 for all
  --tls                  the service over TLS, with a throw-away certificate authority; clients
                         need the certificate that is made for them
  --page ADDRESS         where the simulator's page and HTTP interface listen, by default
                         127.0.0.1; elsewhere they ask for the token that is printed
  --no-simulator         an API manager is already there; it is looked for at the port of the
                         service-database entry ostrel-apimgr, or 35000
  --mpm NAME             how Apache spreads requests: threads (event, the default, or worker) or
                         processes (prefork)
  --build-only           install and build, run nothing
  --help                 this text
TEXT
}

port=8080
listen=127.0.0.1
page=127.0.0.1
tls=no
mpm=event
simulate=yes
run=yes
while [ $# -gt 0 ]; do
    case "$1" in
        --port) port=${2:-}; shift ;;
        --listen) listen=${2:-}; shift ;;
        --page) page=${2:-}; shift ;;
        --tls) tls=yes ;;
        --mpm) mpm=${2:-}; shift ;;
        --no-simulator) simulate=no ;;
        --build-only) run=no ;;
        --help) usage; exit 0 ;;
        *) usage >&2; die "unknown option: $1" ;;
    esac
    [ $# -gt 0 ] && shift
done
case "$mpm" in event|worker|prefork) ;; *) die "--mpm is event, worker or prefork" ;; esac
[[ "$port" =~ ^[1-9][0-9]{0,4}$ && "$port" -le 65535 ]] || die "--port is a number from 1 to 65535"

for address in "$listen" "$page"; do
    [[ "$address" =~ ^[0-9A-Za-z.:-]+$ ]] || die "--listen and --page take an address or a name"
done

release="$root/build/release"
state="$release/run/$port"
# As it stands in a URL and in the server's configuration: an IPv6 address in brackets.
host=$listen
[[ "$listen" != *:* ]] || host="[$listen]"
# Who asks on this machine: "all addresses" is none to connect to.
reach=$listen
[ "$reach" != 0.0.0.0 ] || reach=127.0.0.1
scheme=http
[ "$tls" = no ] || scheme=https
url="$scheme://${host/#0.0.0.0/127.0.0.1}:$port/sanService"
api_port=$({ getent services ostrel-apimgr/tcp || true; } | awk '{ sub("/.*", "", $2); print $2 }')
api_port=${api_port:-35000}

is_taken() { (exec 3<>"/dev/tcp/${2:-127.0.0.1}/$1") 2>/dev/null; }
refuse_port() { die "port $port is taken; choose another with --port"; }

if [ "$run" = yes ]; then
    ! is_taken "$port" "$reach" || refuse_port
    [ "$simulate" = no ] || ! is_taken "$api_port" || die "port $api_port is taken: is an API \
manager there already? Then run with --no-simulator"
fi

install_packages build run
build release mod_gsoap sanService sanSim simctl sanctl
[ "$run" = yes ] || exit 0

# A run that is only starting has its port not yet, and has the lock of its folder.
mkdir -p "$state"
exec 9>"$state/lock"
flock -n 9 || refuse_port

# The process ids of what runs, in the order of its start.
started=()

# start NAME COMMAND...: in the background and in a session of its own, since Apache ends its
# whole process group and Ctrl-C is for this script to handle.
start() {
    local name=$1
    shift
    setsid "$@" </dev/null >>"$state/$name.log" 2>&1 9>&- &
    started+=($!)
}

stop_all() {
    trap - EXIT
    trap '' INT TERM
    local at
    for ((at = ${#started[@]} - 1; at >= 0; at--)); do
        kill -TERM "${started[at]}" 2>/dev/null || continue
        wait "${started[at]}" 2>/dev/null || true
    done
}
trap stop_all EXIT
trap 'exit 130' INT
trap 'exit 143' TERM

all_run() {
    local process
    for process in "${started[@]}"; do
        kill -0 "$process" 2>/dev/null || return
    done
}

# Where the service's log lines go; without a log daemon they are collected into a file. The
# collector of another run takes the lines of this one as well.
start_log_collector() {
    if [ -S /dev/log ] && log_place=$("$root/scripts/logCollector.py" --probe); then
        if [ -n "$log_place" ]; then
            log_place+=" (of another run, while that lasts)"
        else
            log_place="the system log: journalctl -t SANService, or /var/log/syslog"
        fi
        return
    fi
    if [ ! -w /dev ]; then
        log_place="nowhere: no log daemon listens on /dev/log, and only root can stand in for it"
        return
    fi
    log_place="$state/syslog.log"
    start collector "$root/scripts/logCollector.py" "$log_place"
    local place
    for _ in {1..100}; do
        if place=$("$root/scripts/logCollector.py" --probe); then
            [ "$place" != "$log_place" ] || return 0
            # Another run that starts now was quicker: its collector takes our lines as well.
            wait "${started[-1]}" 2>/dev/null || true
            unset 'started[-1]'
            log_place="$place (of another run, while that lasts)"
            return 0
        fi
        sleep 0.05
    done
    fail_with_logs "the log collector did not start"
}

start_simulator() {
    # Its page stands next to the service; when that port is taken, on any free one.
    local page_port=$((port + 1))
    { [ "$page_port" -le 65535 ] && ! is_taken "$page_port"; } || page_port=0
    start simulator "$release/sim/sanSim" --port "$api_port" --web "$page_port" --listen "$page"
    wait_for_simulator
}

# The simulator waits for a port that an ended connection still has; then it says so.
wait_for_simulator() {
    local waits=''
    until grep -qs '^listening' "$state/simulator.log"; do
        all_run || fail_with_logs "the simulator did not start"
        if [ -z "$waits" ] && waits=$(grep -s '^waiting' "$state/simulator.log"); then
            say "The simulator is ${waits}"
        fi
        sleep 0.1
    done
}

# The address of the simulator's page, as it printed it.
page_url() { sed -n 's/^page at //p' "$state/simulator.log"; }

# A certificate of the run's own authority: NAME, the line of extensions.
make_certificate() {
    local name=$1 extensions=$2
    openssl req -newkey rsa:2048 -nodes -subj "/O=sanService sandbox/CN=$name" \
        -keyout "$name.key" -out "$name.csr" 2>/dev/null
    openssl x509 -req -in "$name.csr" -CA ca.pem -CAkey ca.key -CAcreateserial -days 30 \
        -extfile <(printf '%s\n' "$extensions") -out "$name.crt" 2>/dev/null
    cat "$name.crt" "$name.key" >"$name.pem"
}

# An authority for this run alone, the server's certificate, and one for all clients.
make_certificates() (
    umask 077
    mkdir -p "$state/tls"
    cd "$state/tls"
    rm -f ./*
    openssl req -x509 -newkey rsa:2048 -nodes -days 30 -subj "/O=sanService sandbox/CN=authority" \
        -keyout ca.key -out ca.pem 2>/dev/null
    local names="DNS:localhost,IP:127.0.0.1"
    if [[ "$listen" == *:* || "$listen" =~ ^[0-9.]+$ ]]; then
        names+=",IP:$listen"
    else
        names+=",DNS:$listen"
    fi
    make_certificate server "subjectAltName=$names"
    make_certificate client "extendedKeyUsage=clientAuth"
)

write_configuration() {
    local identity='' encryption=''
    if [ "$tls" = yes ]; then
        encryption="LoadModule ssl_module $modules/mod_ssl.so
SSLEngine on
SSLProtocol -all +TLSv1.2 +TLSv1.3
SSLCertificateFile \"$state/tls/server.pem\"
SSLCACertificateFile \"$state/tls/ca.pem\"
SSLVerifyClient require"
    fi
    [ "$(id -u)" -ne 0 ] || identity=$'User www-data\nGroup www-data'
    cat >"$state/httpd.conf" <<TEXT
ServerRoot "$state"
ServerName 127.0.0.1
Listen $host:$port
PidFile "$state/httpd.pid"
DefaultRuntimeDir "$state"
DocumentRoot "$state"
ErrorLog "$state/error.log"
ServerTokens Prod
TraceEnable off
$identity
LoadModule mpm_${mpm}_module $modules/mod_mpm_$mpm.so
LoadModule authz_core_module $modules/mod_authz_core.so
LoadModule authz_host_module $modules/mod_authz_host.so
LoadModule reqtimeout_module $modules/mod_reqtimeout.so
LoadModule env_module $modules/mod_env.so
$encryption
LoadModule gsoap_module "$release/host/mod_gsoap.so"
<Directory />
    Require all denied
</Directory>
Define SAN_PLUGIN "$release/apiMgmt/webservices/sanService/libsanService.so"
Define SAN_WSDL "$release/generated/sanContract/sanApi.wsdl"
Define SAN_PING "$state/ping.xml"
Define SAN_ACCESS_LOG "$state/access.log"
Include "$release/packaging/apache/san-service.conf"
TEXT
}

start_apache() {
    modules=$(apxs -q LIBEXECDIR)
    write_configuration
    start apache /usr/sbin/apache2 -d "$state" -f "$state/httpd.conf" -DFOREGROUND
}

# What curl needs besides.
trust=()
[ "$tls" = no ] || trust=(--cacert "$state/tls/ca.pem" --cert "$state/tls/client.pem")

ping() { curl -s -m 10 "${trust[@]}" -H 'Content-Type: text/xml' --data-binary "@$state/ping.xml" "$url"; }

fail_with_logs() {
    tail -n 5 "$state"/*.log >&2 || true
    die "$1; see $state"
}

# Waits until a Ping is answered. Without the simulator a fault will do: it shows that the
# service runs, and the API manager may come later.
wait_for_ping() {
    local reply end=$((SECONDS + 60))
    say "Waiting for the answer to a Ping"
    while [ $SECONDS -lt $end ]; do
        all_run || fail_with_logs "a process ended at its start"
        reply=$(ping || true)
        case "$reply" in
            *PingResponse*) return ;;
            *Fault*)
                [ "$simulate" = yes ] || { unanswered=yes; return; } ;;
        esac
        sleep 0.2
    done
    fail_with_logs "no answer to a Ping within a minute"
}

third_command() {
    if [ "$simulate" = yes ] && [ "$page" != 127.0.0.1 ]; then
        echo "$release/sim/simctl --url '$(page_url)' log -n 3"
    elif [ "$simulate" = yes ]; then
        echo "$release/sim/simctl --port $api_port log -n 3"
    else
        echo "curl -s ${trust[*]:+${trust[*]} }'$url?wsdl'"
    fi
}

print_places() {
    [ -z "${unanswered:-}" ] ||
        say "The service runs, and no API manager answers at 127.0.0.1:$api_port yet"
    cat <<TEXT

  service         $url
  WSDL            $url?wsdl
  how it goes     ${url%/*}/san-status
  log lines       $log_place
  other output    $state/*.log
TEXT
    [ "$simulate" = no ] || echo "  simulated array $(page_url)"
    [ "$tls" = no ] || cat <<TEXT
  authority       $state/tls/ca.pem
  for clients     $state/tls/client.pem (certificate and key)
  the server's    $state/tls/server.pem
TEXT
    cat <<TEXT

  try             curl -s ${trust[*]:+${trust[*]} }-H 'Content-Type: text/xml' \\
                       --data-binary @$state/ping.xml $url
                  SANCTL_TOKEN=any $release/client/sanctl --url $url ${trust[*]:+${trust[*]} }lifecycle
                  $(third_command)

Ctrl-C ends it.
TEXT
}

rm -f "$state"/*.log "$state/httpd.pid"
cp "$root/packaging/apache/ping.xml" "$state/ping.xml"
start_log_collector
[ "$simulate" = no ] || start_simulator
[ "$tls" = no ] || make_certificates
start_apache
wait_for_ping
print_places
wait -n "${started[@]}" || true
fail_with_logs "a process ended by itself"
