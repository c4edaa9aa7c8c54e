# shellcheck shell=bash
# Keys to sign a catalogue with, for the tests and the demo. Sourced, not run.

# signingKey FOLDER: prints the public key of FOLDER/catalogue.key, a secret key without a password, and creates both if
# they do not exist yet.
signingKey() {
    local key=$1/catalogue.key
    mkdir -p "$1"
    if [ ! -e "$key.pub" ]; then
        minisign -G -W -f -p "$key.pub" -s "$key" > /dev/null || return
    fi
    sed -n 2p "$key.pub"
}
