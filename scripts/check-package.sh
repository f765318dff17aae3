#!/usr/bin/env bash
# Builds the Debian package from a configured build folder and checks what a user would
# get: unpacks it into a scratch root, runs the unpacked program, lets it seed a fresh
# home folder from its own shipped files, and validates the desktop entry and the
# AppStream metainfo.
#
#   scripts/check-package.sh [BUILD_DIR]     # default: build/ (or $TOLV_BUILD_DIR)
set -euo pipefail
top=$(cd "$(dirname "$0")/.." && pwd)
build=${1:-${TOLV_BUILD_DIR:-$top/build}}
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
fail() { echo "check-package: $*" >&2; exit 1; }

(cd "$build" && cpack -G DEB >"$scratch/cpack.log") || { cat "$scratch/cpack.log"; fail "cpack failed"; }
deb=$(ls -t "$build"/tolv_*.deb | head -n 1)
echo "check-package: $(basename "$deb")"
dpkg-deb --field "$deb" Depends | grep -q libqt6widgets6 || fail "no Qt runtime among the dependencies"
root="$scratch/root"
dpkg -x "$deb" "$root"
for file in usr/bin/tolv usr/share/tolv/servers.txt usr/share/tolv/help/help.html \
            usr/share/applications/org.kelvane.Tolv.desktop \
            usr/share/metainfo/org.kelvane.Tolv.metainfo.xml usr/share/man/man1/tolv.1.gz \
            usr/share/icons/hicolor/scalable/apps/tolv.svg \
            usr/share/icons/hicolor/48x48/apps/tolv.png usr/share/icons/hicolor/256x256/apps/tolv.png; do
  [[ -f $root/$file ]] || fail "the package lacks /$file"
done
file "$root/usr/share/icons/hicolor/48x48/apps/tolv.png" | grep -q "48 x 48" || fail "the 48 px icon is not 48 px"
! grep -q -F "$top" "$root/usr/bin/tolv" || fail "the installed program names the source folder $top"

# The unpacked program, with nothing from the build to fall back on.
tolv=(env -u TOLV_DATA -u DISPLAY -u WAYLAND_DISPLAY -u QT_QPA_PLATFORM "$root/usr/bin/tolv")
version=$("${tolv[@]}" --version)
[[ $version == "tolv $(dpkg-deb --field "$deb" Version)" ]] || fail "--version says '$version'"
help=$("${tolv[@]}" --help)
[[ $help == *--headless* && $help == *--connect* ]] || fail "--help does not list --headless and --connect"
home="$scratch/home"
# An unknown option or a stray argument is named, ends with status 2 and touches nothing.
for arguments in "--frobnicate|Unknown option 'frobnicate'." "--connect x|Unexpected argument 'x'."; do
  status=0
  TOLV_HOME=$home "${tolv[@]}" ${arguments%%|*} >/dev/null 2>"$scratch/err" || status=$?
  printf "tolv: %s\nTry 'tolv --help' for the options.\n" "${arguments#*|}" | cmp -s - "$scratch/err" ||
    fail "tolv ${arguments%%|*} says: $(cat "$scratch/err")"
  [[ $status -eq 2 && ! -e $home ]] || fail "tolv ${arguments%%|*} ended with $status or made $home"
done
TOLV_HOME=$home timeout 20 "${tolv[@]}" --headless </dev/null >"$scratch/headless.log" 2>&1 ||
  { cat "$scratch/headless.log"; fail "the headless program did not end cleanly"; }
for file in servers.txt favorites.txt join.wav help/help.html settings.reg; do
  [[ -f $home/$file ]] || fail "the fresh home folder lacks $file"
done
cmp -s "$home/servers.txt" "$root/usr/share/tolv/servers.txt" || fail "the home's server list is not the shipped one"

desktop-file-validate "$root/usr/share/applications/org.kelvane.Tolv.desktop"
appstreamcli validate --no-net "$root/usr/share/metainfo/org.kelvane.Tolv.metainfo.xml" >/dev/null
echo "check-package: the package installs, starts, seeds a home folder and validates"
