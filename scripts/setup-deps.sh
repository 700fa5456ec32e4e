#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Installs the Debian packages the build, the tests and the demo need, and only
# those that are missing. The CJK font lets the Chinese texts of the panel render on a machine
# that has no desktop installed. Safe to run again: with everything present it does nothing.
set -euo pipefail

packages=(
    cmake
    ninja-build
    g++
    clang-format
    qtbase5-dev
    qttools5-dev
    qttools5-dev-tools
    libqt5svg5
    libboost-dev
    libbenchmark-dev
    xvfb
    xauth
    fonts-wqy-microhei
    doxygen
)

missing=()
for package in "${packages[@]}"; do
    if ! dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q "install ok installed"; then
        missing+=("$package")
    fi
done

if [ ${#missing[@]} -eq 0 ]; then
    exit 0
fi

echo "Installing missing Debian packages: ${missing[*]}"
sudo_cmd=()
if [ "$(id -u)" -ne 0 ]; then
    if command -v sudo >/dev/null 2>&1; then
        sudo_cmd=(sudo)
    else
        echo "error: missing packages (${missing[*]}) and no root rights to install them" >&2
        exit 1
    fi
fi
export DEBIAN_FRONTEND=noninteractive
"${sudo_cmd[@]}" apt-get update -qq
"${sudo_cmd[@]}" apt-get install -y -qq --no-install-recommends "${missing[@]}"
