#!/usr/bin/env bash
# Builds the Debian package, installs it with its dependencies, checks that both programs start
# from the installed files, and removes it again.
#
# Usage: check-package.sh [--chroot DIR] [BUILD_DIR]   (as root, or with sudo)
#
# Without --chroot the package is installed on this machine. With --chroot it is installed in
# a clean Debian bookworm system in DIR (made there with debootstrap when DIR is missing or
# empty, kept for the next run), without recommended packages, so that what the package
# declares is all it gets. What the run installs in DIR is purged again at the end.
set -euo pipefail

chroot_dir=
while [ $# -gt 0 ]; do
  case $1 in
    --chroot) chroot_dir=${2:?"--chroot needs a folder"}; shift 2 ;;
    -h|--help) sed -n '2,10p' "$0" | sed 's/^# \{0,1\}//'; exit 0 ;;
    *) break ;;
  esac
done
build=${1:-build}
if [ "$(id -u)" -eq 0 ]; then as_root() { "$@"; }; else as_root() { sudo "$@"; }; fi
if [ -n "$chroot_dir" ] && [ "$(id -u)" -ne 0 ]; then
  exec sudo "$0" --chroot "$chroot_dir" "$build"
fi

# The checks of the installed programs, run on this machine or inside the chroot:
# cli (vinora-cli answers), man (its manual page is found), offscreen and xcb (the window
# program on a fresh application folder must still be running after a few seconds, then it is
# stopped; xcb, the platform plugin of most desktops, on an X server of its own).
start_checks() {
  set -euo pipefail
  local check home pid
  for check in "$@"; do
    case $check in
      cli) /usr/bin/vinora-cli --version ;;
      man) man -w vinora-cli ;;
      offscreen | xcb)
        home=$(mktemp -d)
        if [ "$check" = offscreen ]; then
          VINORA_HOME="$home" QT_QPA_PLATFORM=offscreen /usr/bin/vinora &
        else
          VINORA_HOME="$home" QT_QPA_PLATFORM=xcb xvfb-run -a /usr/bin/vinora &
        fi
        pid=$!
        sleep 4
        if ! kill -0 "$pid" 2> /dev/null; then
          wait "$pid" || true
          echo "vinora ($check) did not keep running"
          return 1
        fi
        # xvfb-run stops its X server when the program it started ends.
        if [ "$check" = xcb ]; then pkill -TERM -P "$pid" -x vinora; else kill "$pid"; fi
        wait "$pid" 2> /dev/null || true
        ls "$home"/*.db > /dev/null
        rm -rf "$home"
        echo "vinora ($check): kept running on a fresh application folder, databases made"
        ;;
    esac
  done
}

(cd "$build" && cpack -G DEB > /dev/null)
deb=$(realpath "$(ls -t "$build"/vinora_*.deb | head -1)")
echo "package: $deb"
dpkg-deb --field "$deb" Package Version Depends Recommends

if [ -z "$chroot_dir" ]; then
  as_root env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq "$deb" > /dev/null
  trap 'as_root env DEBIAN_FRONTEND=noninteractive apt-get remove -y -qq vinora > /dev/null' EXIT
  if command -v xvfb-run > /dev/null; then start_checks cli man offscreen xcb; else start_checks cli man offscreen; fi
  echo "installed, started and removed: ok"
  exit 0
fi

# ---- in a clean bookworm chroot -------------------------------------------------------------

mkdir -p "$chroot_dir"
dir=$(realpath "$chroot_dir")
if [ "$dir" = / ]; then
  echo "check-package.sh: the chroot cannot be /" >&2
  exit 2
fi
# A clean environment inside: nothing of the caller's (library paths, Qt variables) leaks in.
in_chroot() {
  chroot "$dir" /usr/bin/env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin HOME=/root LANG=C.UTF-8 \
    DEBIAN_FRONTEND=noninteractive "$@"
}
# shellcheck disable=SC2016 # the format is dpkg-query's
installed() { in_chroot dpkg-query -W -f '${Package}\n' | LC_ALL=C sort; }

if [ -z "$(ls -A "$dir")" ]; then
  echo "making a minimal bookworm system in $dir (debootstrap)"
  command -v debootstrap > /dev/null ||
    DEBIAN_FRONTEND=noninteractive apt-get install -y -qq debootstrap > /dev/null
  debootstrap --variant=minbase bookworm "$dir" http://deb.debian.org/debian > "$dir.debootstrap.log" ||
    { tail -20 "$dir.debootstrap.log"; exit 1; }
  # The updates and security fixes a bookworm machine has, as this one does.
  cat > "$dir/etc/apt/sources.list" << 'EOF'
deb http://deb.debian.org/debian bookworm main
deb http://deb.debian.org/debian bookworm-updates main
deb http://deb.debian.org/debian-security bookworm-security main
EOF
elif [ ! -f "$dir/etc/debian_version" ]; then
  echo "check-package.sh: $dir is neither empty nor a Debian system" >&2
  exit 2
fi
echo "chroot: $dir (Debian $(cat "$dir/etc/debian_version"))"

mounted=()
before=
cleanup() {
  local status=$? i
  set +e
  if [ -n "$before" ]; then
    # Back to the state the run found: everything it installed goes.
    local added
    added=$(LC_ALL=C comm -13 <(echo "$before") <(installed))
    if [ -n "$added" ]; then
      # shellcheck disable=SC2086
      in_chroot apt-get purge -y -qq $added > /dev/null 2>&1 ||
        echo "check-package.sh: could not purge the packages of this run from $dir" >&2
    fi
  fi
  in_chroot apt-get clean
  rm -rf "$dir"/tmp/vinora_*.deb "$dir/tmp/runtime-root"
  for ((i = ${#mounted[@]} - 1; i >= 0; i--)); do
    umount "${mounted[i]}" 2> /dev/null || umount -l "${mounted[i]}"
  done
  exit "$status"
}
trap cleanup EXIT
trap 'exit 130' INT TERM HUP

mount_in() { # TYPE-OR---bind SOURCE TARGET
  if mountpoint -q "$3"; then
    echo "check-package.sh: $3 is mounted already (a run that was killed?); unmount it first" >&2
    exit 1
  fi
  if [ "$1" = --bind ]; then mount --bind "$2" "$3"; else mount -t "$1" "$2" "$3"; fi
  mounted+=("$3")
}
mount_in proc proc "$dir/proc"
mount_in sysfs sysfs "$dir/sys"
mount_in --bind /dev "$dir/dev"
mount_in --bind /dev/pts "$dir/dev/pts"
cp -L /etc/resolv.conf "$dir/etc/resolv.conf"

# A previous run that was killed may have left the package behind.
if in_chroot dpkg-query -W vinora > /dev/null 2>&1; then
  in_chroot apt-get purge -y -qq vinora > /dev/null
  in_chroot apt-get autoremove --purge -y -qq > /dev/null
fi
in_chroot apt-get update -qq
before=$(installed)
cp "$deb" "$dir/tmp/"
in_chroot sh -c "cd /tmp && apt-get install -y -qq --no-install-recommends ./$(basename "$deb")" > /dev/null
pulled=$(LC_ALL=C comm -13 <(echo "$before") <(installed) | grep -vx vinora || true)
echo "installed in the chroot: vinora and $(echo "$pulled" | grep -c .) packages it depends on:"
echo "$pulled" | paste -sd ' ' | fold -s -w 100 | sed 's/^/  /'

in_chroot bash -c "$(declare -f start_checks); start_checks cli offscreen"
# The tools of the other checks come after, so that they cannot stand in for a missing
# dependency of the package in the checks above.
in_chroot apt-get install -y -qq --no-install-recommends man-db xvfb xauth procps > /dev/null
in_chroot bash -c "$(declare -f start_checks); start_checks man xcb"
echo "installed in a clean bookworm chroot, started and removed: ok"
