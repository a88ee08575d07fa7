#!/usr/bin/env bash
# Makes the packages out of what is built. The same programs give the same bytes, whenever and wherever.
#   pack.sh windows BUILD OUT      of a Windows build of CMake's: portable archive, installer, symbols
#   pack.sh debian ZQWIPE OUT      of the program zqwipe for this system: its Debian package, and its symbols
#   pack.sh manifests URL OUT      for winget and Scoop, of the archive and the installer in OUT, which URL/ will offer
set -euo pipefail
packaging=$(cd -- "$(dirname -- "${BASH_SOURCE[0]}")" && pwd)
source=$(dirname -- "$packaging")

# One version for everything, from where the programs have it.
version=$(sed -n 's/^#define ZQ_VERSION_TEXT "\(.*\)"$/\1/p' "$source/resources/version.h")
numbers=$(sed -n 's/^#define ZQ_VERSION_NUMBERS \(.*\)$/\1/p' "$source/resources/version.h" | tr -d ' ' | tr ',' '.')
released=$(sed -n 's/^#define ZQ_RELEASE_DATE "\(.*\)"$/\1/p' "$source/resources/version.h")
[[ $version && $numbers && $released ]] || { echo "pack.sh: no version in resources/version.h" >&2; exit 1; }
# What would be the time of packing is the day of the release.
SOURCE_DATE_EPOCH=$(date --utc --date="$released" +%s)
export SOURCE_DATE_EPOCH TZ=UTC LC_ALL=C.UTF-8
umask 022

portable=Zeroquill-$version-portable.zip
setup=Zeroquill-$version-setup.exe

# one_time FOLDER: gives all in it the time of the release.
one_time() { find "$1" -exec touch --no-dereference --date="@$SOURCE_DATE_EPOCH" {} +; }

# archive FOLDER FILE.zip: what stands in the folder, by name.
archive() {
  local file
  file=$(realpath -m -- "$2")
  # zip adds to a file that is there.
  rm -f -- "$file"
  one_time "$1"
  (cd -- "$1" && find . -mindepth 1 -printf '%P\n' | sort | zip -q -X -9 "$file" -@)
}

windows() {
  local build=$1 out=$2 work
  work=$(mktemp -d)
  # shellcheck disable=SC2064  # now, while the variable is there
  trap "rm -rf -- '$work'" EXIT
  cmake --install "$build" --component program --prefix "$work/portable/Zeroquill" >/dev/null
  cmake --install "$build" --component symbols --prefix "$work/symbols" >/dev/null
  chmod -R u=rwX,go=rX "$work"
  mkdir -p -- "$out"
  archive "$work/portable" "$out/$portable"
  archive "$work/symbols" "$out/Zeroquill-$version-symbols.zip"

  # The installer keeps the files' times. Of its script's folder nothing enters it.
  cp -r -- "$source/resources/pictures" "$work/pictures"
  one_time "$work"
  makensis -V2 -WX -NOCD -INPUTCHARSET UTF8 -DVERSION="$version" -DNUMBERS="$numbers" -DPROGRAM="$work/portable/Zeroquill" \
    -DPICTURES="$work/pictures" -DOUT="$work/$setup" "$packaging/zeroquill.nsi"
  cp -- "$work/$setup" "$out/$setup"
}

debian() {
  local zqwipe=$1 out=$2 work root docs depends
  work=$(mktemp -d)
  # shellcheck disable=SC2064
  trap "rm -rf -- '$work'" EXIT
  root=$work/root docs=$work/root/usr/share/doc/zqwipe
  install -D --mode=755 "$zqwipe" "$root/usr/bin/zqwipe"
  strip --strip-all --remove-section=.comment --remove-section=.note "$root/usr/bin/zqwipe"
  mkdir -p -- "$root/usr/share/man/man1" "$docs"
  gzip --best --no-name <"$source/docs/zqwipe.1" >"$root/usr/share/man/man1/zqwipe.1.gz"
  install -D --mode=644 "$packaging/completions/zqwipe.bash" "$root/usr/share/bash-completion/completions/zqwipe"
  install -D --mode=644 "$packaging/completions/_zqwipe" "$root/usr/share/zsh/vendor-completions/_zqwipe"
  install -D --mode=644 "$packaging/completions/zqwipe.fish" "$root/usr/share/fish/vendor_completions.d/zqwipe.fish"
  {
    cat -- "$source/LICENSE"
    printf '\n%s\n\n' "zqwipe contains CLI11, which parses its command line:"
    cat -- "$source/src/cli/CLI11-LICENSE.txt"
  } >"$docs/copyright"
  gzip --best --no-name >"$docs/changelog.gz" <<CHANGES
zqwipe ($version) unstable; urgency=medium

  * Release $version.

 -- The Zeroquill developers <developers@zeroquill.example>  $(date --date="@$SOURCE_DATE_EPOCH" --rfc-email)
CHANGES

  # The libraries and how new they have to be, by the packages that they came in.
  mkdir -p -- "$work/debian" "$root/DEBIAN"
  printf 'Source: zqwipe\n\nPackage: zqwipe\nArchitecture: any\n' >"$work/debian/control"
  depends=$(cd -- "$work" && dpkg-shlibdeps -O --ignore-missing-info -e"$root/usr/bin/zqwipe" 2>/dev/null |
    sed -n 's/^shlibs:Depends=//p')
  [[ -n $depends ]] || { echo "pack.sh: dpkg-shlibdeps names no library of $zqwipe" >&2; return 1; }
  chmod -R u=rwX,go=rX "$root"
  chmod 755 "$root/usr/bin/zqwipe"
  cat >"$root/DEBIAN/control" <<CONTROL
Package: zqwipe
Version: $version
Architecture: $(dpkg --print-architecture)
Maintainer: The Zeroquill developers <developers@zeroquill.example>
Installed-Size: $(du --summarize --block-size=1K --apparent-size --exclude=DEBIAN "$root" | cut -f1)
Depends: $depends
Section: utils
Priority: optional
Description: destroys files so that nothing of them can be recovered
 Overwrites files, folders or the free space of a drive on the device
 itself, pass by pass, reads back what it wrote, hides names and lengths,
 and only then removes. What can't be overwritten where it lies is kept,
 and the reason is told.
CONTROL
  (cd -- "$root" && find usr -type f -print0 | sort -z | xargs -0 md5sum) >"$root/DEBIAN/md5sums"
  chmod 644 "$root/DEBIAN/control" "$root/DEBIAN/md5sums"
  one_time "$root"
  mkdir -p -- "$out"
  dpkg-deb --root-owner-group -Zgzip -z6 --build "$root" "$out/zqwipe_${version}_$(dpkg --print-architecture).deb" >/dev/null
  # A release's build has them beside it.
  if [[ -f $zqwipe.debug ]]; then
    mkdir -- "$work/symbols"
    cp -- "$zqwipe.debug" "$work/symbols/"
    archive "$work/symbols" "$out/zqwipe-$version-linux-symbols.zip"
  fi
}

sha256() { sha256sum -- "$1" | cut -d' ' -f1; }

manifests() {
  local url=${1%/} out=$2 winget=$2/winget id=Zeroquill.Zeroquill
  rm -rf -- "$winget" "$out/scoop"
  mkdir -p -- "$winget" "$out/scoop"
  cat >"$winget/$id.yaml" <<YAML
PackageIdentifier: $id
PackageVersion: "$version"
DefaultLocale: en-US
ManifestType: version
ManifestVersion: 1.6.0
YAML
  cat >"$winget/$id.locale.en-US.yaml" <<YAML
PackageIdentifier: $id
PackageVersion: "$version"
PackageLocale: en-US
Publisher: The Zeroquill developers
PackageName: Zeroquill
License: MIT
ShortDescription: Destroys files so that nothing of them can be recovered.
Tags:
- file-shredder
- secure-delete
ManifestType: defaultLocale
ManifestVersion: 1.6.0
YAML
  cat >"$winget/$id.installer.yaml" <<YAML
PackageIdentifier: $id
PackageVersion: "$version"
Platform:
- Windows.Desktop
MinimumOSVersion: 10.0.0.0
InstallerType: nullsoft
Scope: user
UpgradeBehavior: install
ReleaseDate: $released
Installers:
- Architecture: x64
  InstallerUrl: $url/$setup
  InstallerSha256: $(sha256 "$out/$setup" | tr a-f A-F)
  ProductCode: Zeroquill
ManifestType: installer
ManifestVersion: 1.6.0
YAML
  # Jobs and reports outlive an update.
  cat >"$out/scoop/zeroquill.json" <<JSON
{
    "version": "$version",
    "description": "Destroys files so that nothing of them can be recovered.",
    "homepage": "$url",
    "license": "MIT",
    "architecture": {
        "64bit": {
            "url": "$url/$portable",
            "hash": "$(sha256 "$out/$portable")",
            "extract_dir": "Zeroquill"
        }
    },
    "bin": "zqwipe.exe",
    "shortcuts": [
        ["Zeroquill.exe", "Zeroquill"]
    ],
    "persist": ["Jobs", "Report"]
}
JSON
}

case ${1:-}:$# in
  windows:3 | debian:3 | manifests:3) "$@" ;;
  *) sed -n '3,5s/^# //p' "${BASH_SOURCE[0]}" >&2; exit 2 ;;
esac
