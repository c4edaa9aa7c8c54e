#!/bin/bash
# What the configuration takes as a catalogue key: those that minisign makes, or none at all.
set -euo pipefail

rule=$(dirname "$(realpath "$0")")/../../cmake/cataloguekey.cmake
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
failed=0

# takes KEY: whether the configuration goes on.
takes() {
    cmake "-DTALVEX_CATALOGUE_KEY=$1" -P "$rule" > "$work/output" 2>&1
}
mustTake() {
    takes "$2" || { echo "refused: $1: '$2'" >&2 && failed=1; }
}
mustRefuse() {
    if takes "$2" || ! grep -q 'not a minisign public key' "$work/output"; then
        echo "not refused: $1: '$2'" >&2
        failed=1
    fi
}

minisign -G -W -p "$work/pub" -s "$work/key" > /dev/null
key=$(sed -n 2p "$work/pub")
mustTake "no key" ""
mustTake "a key" "$key"
for letter in Q R S T; do
    mustTake "a key whose third letter is $letter" "RW$letter${key:3}"
done
mustRefuse "a character too few" "${key:0:55}"
mustRefuse "a character too many" "${key}A"
mustRefuse "padding instead of the last" "${key:0:55}="
mustRefuse "a blank in it" "${key:0:30} ${key:31}"
mustRefuse "the other base64's letter" "${key:0:30}_${key:31}"
mustRefuse "a semicolon in it" "${key:0:30};${key:31}"
mustRefuse "the label of a signature" "RU${key:2}"
mustRefuse "another label" "RWU${key:3}"
mustRefuse "small letters" "rw${key:2}"
mustRefuse "the key file's name" "$work/pub"
for word in OFF 0 NO NOTFOUND; do
    mustRefuse "what CMake takes for false" "$word"
done
exit "$failed"
