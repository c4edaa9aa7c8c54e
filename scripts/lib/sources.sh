# shellcheck shell=bash
# The project's files. Sourced, not run, from the project's folder.

# copySources FOLDER: what git tracks or would add, as it is now; with the present time, as after a checkout.
copySources() {
    mkdir -p "$1" && git ls-files -z --cached --others --exclude-standard |
        tar --create --null --files-from=- | tar --extract --touch --directory "$1"
}
