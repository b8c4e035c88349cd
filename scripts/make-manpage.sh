#!/usr/bin/env bash
# Writes the manual page of vinora-cli from the tool's own help texts, so the page always
# tells what the built tool does: the overview, then every verb with its options.
# Usage: make-manpage.sh VINORA-CLI OUTPUT
set -euo pipefail
cli=$1
out=$2
details=$(mktemp)
trap 'rm -f "$details"' EXIT
{
  echo "[VERBS IN DETAIL]"
  # A verb is the text before the summary, one word or two ("export catalogue").
  "$cli" --help | awk -F '  +' '/^Verbs:/ { inside = 1; next } /^$/ { inside = 0 } inside { print $2 }' |
    while IFS= read -r verb; do
      echo ".SS $verb"
      echo ".nf"
      # The verb's text as it stands: backslashes and leading dots are quoted for troff.
      # shellcheck disable=SC2086 # a verb of two words is two arguments
      "$cli" $verb --help | sed -n '/^Exit status:/q; p' | sed -e 's/\\/\\e/g' -e "s/^\\([.']\\)/\\\\\\&\\1/"
      echo ".fi"
    done
} > "$details"
help2man --no-info --name="catalogue of optical discs, for scripts" --include="$details" \
  --output="$out" "$cli"
