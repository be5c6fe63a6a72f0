#!/usr/bin/env bash
# Installs, from Debian's packages, whatever the build and the tests need and is missing.
# Quick when everything is already there: dpkg is asked first, apt only when needed.
set -euo pipefail
pkgs=(
  build-essential cmake ninja-build ccache pkg-config git
  qt6-base-dev qt6-base-dev-tools qt6-tools-dev qt6-tools-dev-tools qt6-l10n-tools
  libqt6core5compat6-dev libqt6opengl6-dev libqt6svg6-dev qt6-multimedia-dev
  libgl-dev libglu1-mesa-dev
  liblua5.1-0-dev libuchardet-dev libgif-dev zlib1g-dev
  libbenchmark-dev googletest
  clang libclang-rt-dev
  xvfb xauth imagemagick python3-pil
  gstreamer1.0-plugins-base gstreamer1.0-plugins-good
  gstreamer1.0-pulseaudio pulseaudio pulseaudio-utils
  qt6-qpa-plugins qt6-image-formats-plugins fonts-dejavu-core
)
missing=()
for p in "${pkgs[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'install ok installed' || missing+=("$p")
done
if [ ${#missing[@]} -gt 0 ]; then
  echo "Installing: ${missing[*]}"
  if [ "$(id -u)" -ne 0 ]; then SUDO=sudo; else SUDO=; fi
  export DEBIAN_FRONTEND=noninteractive
  $SUDO apt-get update -qq
  $SUDO apt-get install -y -qq --no-install-recommends "${missing[@]}"
fi
