#!/bin/bash
# Serves ROOT on 127.0.0.1:PORT until ended; its logs are in RUN (access.log, error.log).
# The process becomes the server itself, so its process ID is the one to kill.
set -euo pipefail

if [ $# -ne 3 ]; then
    echo "usage: serve.sh ROOT PORT RUN" >&2
    exit 2
fi
root=$(realpath "$1")
port=$2
run=$(realpath "$3")
here=$(dirname "$(realpath "$0")")

template=$(<"$here/nginx.conf.in")
template=${template//@ROOT@/$root}
template=${template//@PORT@/$port}
printf '%s\n' "${template//@RUN@/$run}" > "$run/nginx.conf"

export PATH=$PATH:/usr/sbin # where Debian puts it
exec nginx -e "$run/error.log" -p "$run" -c "$run/nginx.conf"
