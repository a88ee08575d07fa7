#!/usr/bin/env bash
# Proves that every picture the windows ask for is there in every size, that it is the rendering of a
# drawing that is there too, and that the resource script carries it. Needs icotool; compares the
# renderings themselves where rsvg-convert is the version they were made with.
set -uo pipefail

resources=$(cd "$(dirname "${BASH_SOURCE[0]}")/../../resources" && pwd)
pictures=$resources/pictures
failures=0

fail() {
  echo "pictures_test: $*" >&2
  failures=$((failures + 1))
}

small='newsmall opensmall savesmall report MainSmall addfilessmall addfoldersmall delete wipspacesmall
  help folder file job drivehard drivefloppy driveremote driveremovable'
large='newlarge openlarge savelarge addfileslarge addfolderlarge MainLarge wipespacelarge'
decorations='imgwelcome imgabout imgfolder imgedit imgnew imgsave imgopenjob imgstatus imgdrivewipe
  imgspacestatus imgquick imgpreferences'

# expect_icon SIZES NAME...: each icon holds these sizes in this order and no other, 32 bits a pixel.
expect_icon() {
  local sizes=$1 name size want got
  shift
  for name in "$@"; do
    [[ -s $pictures/ico/$name.ico ]] || { fail "ico/$name.ico is missing"; continue; }
    want=$(for size in $sizes; do echo "${size}x$size 32"; done)
    got=$(icotool --list "$pictures/ico/$name.ico" |
      sed -E 's/.*--width=([0-9]+) --height=([0-9]+) --bit-depth=([0-9]+).*/\1x\2 \3/')
    [[ $got == "$want" ]] || fail "ico/$name.ico holds" $got ", not" $want
    grep -Eqh "^(aaProgram|[0-9]+|$name) ICON \"pictures/ico/$name\.ico\"\$" "$resources"/*.rc ||
      fail "no resource script carries $name.ico"
  done
}

# expect_png WIDTHxHEIGHT NAME
expect_png() {
  local file=$pictures/png/$2.png got
  [[ -s $file ]] || { fail "png/$2.png is missing"; return; }
  # Width and height are the two big-endian numbers at byte 16.
  got=$(od -An -tu1 -j16 -N8 "$file" |
    awk '{ print (($1 * 256 + $2) * 256 + $3) * 256 + $4 "x" (($5 * 256 + $6) * 256 + $7) * 256 + $8 }')
  [[ $got == "$1" ]] || fail "png/$2.png is $got, not $1"
  grep -q "^${2//-/} RCDATA \"pictures/png/$2\.png\"\$" "$resources/pictures.rc" ||
    fail "pictures.rc does not carry $2.png"
}

command -v icotool >/dev/null || { echo "pictures_test: icotool is needed" >&2; exit 1; }

expect_icon '16 20 24 32 40 48 64 256' zeroquill manager
expect_icon '16 20 24 32 40 48 64 256' jobfile
expect_icon '16 20 24 32' $small
expect_icon '32 40 48 64' $large
expect_icon '32 40 48 64 96' $decorations
expect_icon '64 80 96 128' imgdrop
expect_png 480x300 splash-96
expect_png 720x450 splash-144
expect_png 960x600 splash-192
expect_png 600x120 logo
expect_png 1200x240 logo-192

# The shell takes the first icon: the numbered ones by number, but the named ones before them.
[[ $(head -n 1 "$resources/pictures.rc") == '#pragma code_page(65001)' ]] ||
  fail "pictures.rc does not begin with its code page"
first=$(sed -nE 's/^([A-Za-z][A-Za-z0-9]*) ICON (.*)/\U\1\E \2/p' "$resources/pictures.rc" | LC_ALL=C sort | head -n 1)
[[ $first == *zeroquill.ico* ]] || fail "the first named icon of pictures.rc is $first"

# Every drawing is rendered, and every rendering has its drawing.
if sources=$("$pictures/render.sh" --sources); then
  used=$(awk '{ print $3 }' <<<"$sources" | sort -u)
  drawn=$(cd "$pictures/svg" && ls | sort)
  for name in $(comm -13 <(echo "$used") <(echo "$drawn")); do fail "svg/$name is rendered nowhere"; done
  for name in $(comm -23 <(echo "$used") <(echo "$drawn")); do fail "svg/$name is not there"; done
  listed=$(awk '{ print $1 }' <<<"$sources" | sort -u)
  there=$(cd "$pictures" && for file in ico/*.ico png/*.png bmp/*.bmp; do basename "${file%.*}"; done | sort -u)
  for name in $(comm -3 <(echo "$listed") <(echo "$there")); do fail "$name: listed or rendered, but not both"; done
else
  fail "render.sh can't tell its sources"
fi

# The committed renderings are those of the drawings beside them.
version=$(rsvg-convert --version 2>/dev/null | awk '{ print $3 }')
if [[ $version == "$("$pictures/render.sh" --rendered-with)" ]]; then
  again=$(mktemp -d)
  trap 'rm -rf "$again"' EXIT
  if "$pictures/render.sh" "$again"; then
    for kind in ico png bmp; do
      diff -rq "$again/$kind" "$pictures/$kind" || fail "$kind/ is not what the drawings give; run render.sh"
    done
  else
    fail "render.sh fails"
  fi
else
  echo "pictures_test: rsvg-convert is '${version:-absent}'; the renderings themselves were not compared"
fi

if ((failures)); then
  echo "pictures_test: $failures failures" >&2
  exit 1
fi
echo "pictures_test: all pictures are there"
