#!/bin/bash
# Checks that PROGRAM is what users get: linked to the system's HID library and Qt, without any test code.
set -euo pipefail

program=${TALVEX_TEST_PROGRAM:-${1:?usage: check-shipped.sh PROGRAM}}
failed=0
complain() {
    echo "$program: $*" >&2
    failed=1
}

libraries=$(ldd "$program")
for needed in libhidapi-libusb.so libQt5Core.so libQt5Gui.so libQt5Network.so libQt5Widgets.so; do
    # From the system's folders, not from a build's.
    grep -Eq "^[[:space:]]*$needed\.[0-9]+ => (/usr)?/lib/" <<< "$libraries" || complain "not linked to the system's $needed"
done
if grep -Ei 'virtual|probe|Qt5Test' <<< "$libraries"; then
    complain "linked to a library of the tests"
fi
# So is a build with a catalogue key alone.
if grep libsodium <<< "$libraries"; then
    complain "linked to what only signatures need"
fi
symbols=$(nm -C "$program")
grep -q 'MainWindow::connectSlot' <<< "$symbols" || complain "has no symbols, so this check cannot see anything"
if grep -E 'virtualunit::|QTest::|\btst_|snapshot::take' <<< "$symbols"; then
    complain "contains test code"
fi
if grep ' T hid_' <<< "$symbols"; then
    complain "contains an HID library of its own"
fi
if ! nm -D --undefined-only "$program" | grep -q ' U hid_open_path'; then
    complain "does not use the HID library"
fi
exit "$failed"
