# shellcheck shell=bash
# The user's guide as a page for people who have no reader for Markdown. Sourced, not run.
# It needs guidePackages (scripts/lib/packages.sh).

guideStyle='
    :root { color-scheme: light dark; }
    body { font: 1em/1.5 sans-serif; max-width: 60em; margin: 2em auto; padding: 0 1em; }
    img { max-width: 100%; }
    p > img { max-width: 24em; }
    table { border-collapse: collapse; }
    th, td { border: 1px solid #8886; padding: 0.4em 0.6em; text-align: left; vertical-align: top; }
    code { background: #8883; padding: 0 0.2em; }
'

# guideAsHtml MARKDOWN: prints the document as one page that needs no other file: its pictures are in it, and a link to
# another document, which is not there, becomes plain text.
guideAsHtml() {
    local folder title body
    folder=$(dirname "$1")
    title=$(sed -n '1s/^# //p' "$1")
    body=$(cmark-gfm --extension table "$1") || return
    printf '<!DOCTYPE html>\n<html lang="en">\n<head>\n<meta charset="utf-8">\n<title>%s</title>\n' "$title"
    printf '<meta name="viewport" content="width=device-width">\n<style>%s</style>\n</head>\n<body>\n' "$guideStyle"
    sed -E 's|<a href="[^":]*\.md">([^<]*)</a>|\1|g' <<< "$body" | withPictures "$folder" || return
    printf '</body>\n</html>\n'
}

# withPictures FOLDER: the HTML from standard input with each PNG of this folder in place of its name.
withPictures() {
    local line name picture
    while IFS= read -r line; do
        while [[ $line =~ src=\"([^\":]*\.png)\" ]]; do
            name=${BASH_REMATCH[1]}
            picture=$(base64 -w0 "$1/$name") || return
            line=${line/"src=\"$name\""/"src=\"data:image/png;base64,$picture\""}
        done
        printf '%s\n' "$line"
    done
}
