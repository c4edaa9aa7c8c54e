#!/bin/bash
# relativelink.sh PREFIX COMMAND...: runs a command of the linker's that names the libraries in the folder PREFIX by
# relative paths instead. The linker sorts what a program imports by the names of the libraries' files: otherwise the
# order would depend on where the folder is.
set -euo pipefail

prefix=$1
shift
exec "${@/#"$prefix/"/"$(realpath --relative-to=. "$prefix")/"}"
