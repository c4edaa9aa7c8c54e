# shellcheck shell=bash
# Starts and stops the update server for a script. Sourced from the repository's root, not run.

serverPid=
serverPort=

answers() {
    (exec 3<> "/dev/tcp/127.0.0.1/$1") 2> /dev/null
}

# Waits until the most recently started server answers; 1: it has exited, or does not answer within 10 s.
serverIsUp() {
    local waited
    for ((waited = 0; waited < 100; ++waited)); do
        if answers "$serverPort"; then
            return 0
        fi
        kill -0 "$serverPid" 2> /dev/null || return 1
        sleep 0.1
    done
    return 1
}

# startServer ROOT RUN: serves ROOT on a free port and waits until it answers; sets serverPid and serverPort.
startServer() {
    local tried
    for ((tried = 0; tried < 20; ++tried)); do
        serverPort=$((20000 + RANDOM % 20000))
        if answers "$serverPort"; then
            continue # in use
        fi
        server/serve.sh "$1" "$serverPort" "$2" &
        serverPid=$!
        if serverIsUp; then
            return 0
        fi
        stopServer
    done
    echo "The update server did not start; see $2/error.log" >&2
    return 1
}

stopServer() {
    if [ -n "$serverPid" ]; then
        kill "$serverPid" 2> /dev/null || true
        wait "$serverPid" 2> /dev/null || true
    fi
    serverPid=
}
