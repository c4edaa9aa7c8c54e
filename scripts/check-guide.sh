#!/bin/bash
# Checks that docs/user-guide.md becomes a page that needs no other file. Exit code 1: it does not; the reason is printed.
set -euo pipefail

cd "$(dirname "$(realpath "$0")")/.."
source scripts/lib/guide.sh

page=$(guideAsHtml docs/user-guide.md)
# A picture that is in the page begins with "data:"; one that is not has an address, as a link has.
if grep -oE '(src|href)="[^"]{1,80}' <<< "$page" | grep -v '^src="data:image/png;base64,'; then
    echo "check-guide.sh: the page refers to what is not in it." >&2
    exit 1
fi
pictures=$(grep -o '<img src="data:image/png;base64,[^"]' <<< "$page" | wc -l)
if [ "$pictures" -ne 12 ]; then
    echo "check-guide.sh: $pictures pictures on the page instead of 12." >&2
    exit 1
fi
