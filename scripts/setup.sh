#!/usr/bin/env bash
# Installs the Debian packages Tolv needs to build, run and test. Quick when they are
# all there already: apt is only asked when something is missing.
set -euo pipefail

packages=(
  g++ cmake ninja-build pkg-config
  qt6-base-dev qt6-multimedia-dev qt6-svg-dev libgl-dev libssl-dev openssl
  libgtest-dev libgmock-dev libbenchmark-dev
  ngircd python3 irssi weechat-headless
  xvfb xdotool imagemagick fonts-dejavu-core
  clang libclang-rt-14-dev
  dpkg-dev file desktop-file-utils appstream
)

missing=()
for p in "${packages[@]}"; do
  status=$(dpkg-query -W -f='${Status}' "$p" 2>/dev/null || true)
  [[ "$status" == "install ok installed" ]] || missing+=("$p")
done
[[ ${#missing[@]} -eq 0 ]] && exit 0

echo "setup: installing ${missing[*]}" >&2
sudo=""
[[ $(id -u) -eq 0 ]] || sudo="sudo"
export DEBIAN_FRONTEND=noninteractive
$sudo apt-get update -qq
$sudo apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
