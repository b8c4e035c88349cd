#!/usr/bin/env bash
# Installs the build into a scratch prefix and checks that every file a desktop and a
# package manager look for is where they look for it.
# Usage: check-install.sh BUILD_DIR
set -euo pipefail
prefix=$(mktemp -d)
trap 'rm -rf "$prefix"' EXIT
cmake --install "$1" --prefix "$prefix" > /dev/null
status=0
for file in bin/vinora bin/vinora-cli share/applications/vinora.desktop \
            share/icons/hicolor/scalable/apps/vinora.svg share/metainfo/app.vinora.vinora.metainfo.xml \
            share/man/man1/vinora-cli.1 share/vinora/readme.txt; do
  if [ ! -s "$prefix/$file" ]; then
    echo "missing after install: $file"
    status=1
  fi
done
# The page tells every verb the tool knows.
while IFS= read -r verb; do
  grep -q "^\.SS $verb\$" "$prefix/share/man/man1/vinora-cli.1" || { echo "manual page lacks $verb"; status=1; }
done < <("$prefix/bin/vinora-cli" --help | awk -F '  +' '/^Verbs:/ { inside = 1; next } /^$/ { inside = 0 } inside { print $2 }')
exit $status
