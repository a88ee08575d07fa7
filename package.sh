#!/usr/bin/env bash
# Builds the release and makes its packages, in build/packages: for Windows a portable archive, an installer for one
# user and the manifests for winget and Scoop; for Debian zqwipe; the symbols, apart; SHA256SUMS over all of them.
#   package.sh [URL]   the folder on the net that will offer the files, which the manifests name
# Installs what is missing. Run twice, it gives the same bytes.
set -euo pipefail
cd -- "$(dirname -- "${BASH_SOURCE[0]}")"
# shellcheck source=scripts/packages.sh
source scripts/packages.sh
need_packages build build-native package >&2

url=${1:-https://zeroquill.example/download}
out=$PWD/build/packages
cmake --preset program -Wno-dev >&2
cmake --build --preset program --parallel "$(nproc)" --target program >&2
cmake --preset native-release -Wno-dev >&2
cmake --build --preset native-release --parallel "$(nproc)" --target zqwipe >&2

rm -rf -- "$out"
mkdir -p -- "$out"
packaging/pack.sh windows build/program "$out"
packaging/pack.sh debian build/native-release/src/cli/zqwipe "$out"
packaging/pack.sh manifests "$url" "$out"
(cd -- "$out" && find . -type f ! -name SHA256SUMS -printf '%P\n' | sort | xargs -d '\n' sha256sum) >"$out/SHA256SUMS"
(($# > 0)) || echo "The manifests name $url, where nothing is: give the address as the first argument." >&2
cat -- "$out/SHA256SUMS"
echo "$out"
