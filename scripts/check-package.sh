#!/usr/bin/env bash
# Builds the Debian package, installs it on this machine with its dependencies, checks that
# both programs start from the installed files, and removes it again.
# Usage: check-package.sh [BUILD_DIR]   (as root, or with sudo)
set -euo pipefail
build=${1:-build}
if [ "$(id -u)" -eq 0 ]; then as_root() { "$@"; }; else as_root() { sudo "$@"; }; fi

(cd "$build" && cpack -G DEB > /dev/null)
deb=$(ls -t "$build"/vinora_*.deb | head -1)
echo "package: $deb"
dpkg-deb --field "$deb" Package Version Depends

as_root env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq "$(realpath "$deb")" > /dev/null
trap 'as_root env DEBIAN_FRONTEND=noninteractive apt-get remove -y -qq vinora > /dev/null' EXIT

/usr/bin/vinora-cli --version
man -w vinora-cli
home=$(mktemp -d)
# The window program on a fresh application folder: it must still be running after a few
# seconds (then it is stopped), not have failed to start.
VINORA_HOME="$home" QT_QPA_PLATFORM=offscreen /usr/bin/vinora &
pid=$!
sleep 4
if ! kill -0 "$pid" 2> /dev/null; then
  wait "$pid" || true
  echo "vinora did not keep running"
  exit 1
fi
kill "$pid"
wait "$pid" 2> /dev/null || true
ls "$home"/*.db > /dev/null
rm -rf "$home"
echo "installed, started and removed: ok"
