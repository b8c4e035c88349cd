#!/usr/bin/env bash
# Makes docs/screenshots/catalogue-audio.png, catalogue-pc.png, catalogue-dvd.png and
# editor.png: the catalogue browsers on a few dozen discs with a cover, and the editor;
# filelist.png: the file list of a computer disc; search.png: the search through the file
# lists; loans.png and rating.png: the debtor list and the borrowers' statistics; options.png:
# the options dialog.
set -euo pipefail
cd "$(dirname "$0")/.."
build=${1:-build}
cmake --build "$build" --target vinora-screenshots -j "$(nproc)" >/dev/null
"$build/tools/vinora-screenshots" docs/screenshots
echo "docs/screenshots/catalogue-*.png, editor.png, filelist.png, search.png, loans.png, rating.png, tracklist.png, cddb.png and options.png written"
