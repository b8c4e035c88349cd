#!/usr/bin/env bash
# Installs everything vinora needs to build, run and test on a Debian machine.
# Safe to run again: it only installs what is missing.
set -euo pipefail

packages=(
  build-essential cmake pkg-config
  qt6-base-dev qt6-base-dev-tools libqt6sql6-sqlite libqt6svg6 libgl-dev
  qt6-gtk-platformtheme qt6-xdgdesktopportal-platformtheme qt6-translations-l10n
  libsqlite3-dev sqlite3
  libcdio-dev libiso9660-dev libudf-dev e2fsprogs
  genisoimage xorriso udftools libcdio-utils libdiscid-dev libuchardet-dev
  xvfb xauth fonts-dejavu-core adwaita-icon-theme
  clang-14 libclang-rt-14-dev
  help2man desktop-file-utils appstream dpkg-dev
)

missing=()
for p in "${packages[@]}"; do
  if ! dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed"; then
    missing+=("$p")
  fi
done

if [ ${#missing[@]} -eq 0 ]; then
  exit 0
fi

if [ "$(id -u)" -eq 0 ]; then
  run() { "$@"; }
else
  run() { sudo "$@"; }
fi

echo "Installing: ${missing[*]}"
export DEBIAN_FRONTEND=noninteractive
run apt-get update -qq
run apt-get install -y -qq --no-install-recommends "${missing[@]}"
