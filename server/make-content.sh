#!/bin/bash
# Fills ROOT with what the update server serves: a catalogue with one firmware for each key stem, images of BYTES random
# bytes and their digests, and the change logs.
set -euo pipefail

usage="usage: make-content.sh ROOT BYTES VERSION [HOST]"
root=${1:?$usage}
bytes=${2:?$usage}
version=${3:?$usage}
host=${4:-updates.talvex.example}
stems=(HB4 HB2 HBX ZEQPRO PANEL DSK10 LMB1 LMB2 PLT70)

catalogue=$root/wp-content/uploads/versions.txt
mkdir -p "$root/bin" "$root/logs" "$(dirname "$catalogue")"
printf '%s\n' "The updater itself, at its present version." > "$root/logs/updater.txt"
{
    echo "[updater]"
    echo "MainVer=11"
    echo "MainChangeLog=http://$host/logs/updater.txt"
    echo "MacMainBin=http://$host/bin/updater.zip"
} > "$catalogue"

for stem in "${stems[@]}"; do
    head -c "$bytes" /dev/urandom > "$root/bin/$stem.sb"
    printf 'Version %d.%d\n- Tempo range kept over a restart.\n- Brighter pads.\n' \
        $((version / 10)) $((version % 10)) > "$root/logs/$stem.txt"
    {
        echo
        echo "[$stem]"
        echo "${stem}Ver=$version"
        echo "${stem}Bin=http://$host/bin/$stem.sb"
        echo "${stem}Sha256=$(sha256sum < "$root/bin/$stem.sb" | cut -d ' ' -f 1)"
        echo "${stem}ChangeLog=http://$host/logs/$stem.txt"
    } >> "$catalogue"
done
