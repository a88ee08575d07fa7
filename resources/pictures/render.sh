#!/usr/bin/env bash
# Renders every picture of pictures.list from its drawing into ico/, png/ and bmp/.
#
#   render.sh [DIR]      into DIR instead of beside this script
#   render.sh --sources  only tells which drawing serves which picture and size
#
# Needs rsvg-convert, icotool and ImageMagick. The same versions of both give the same bytes.
set -euo pipefail

# The version the committed files were rendered with; another may smooth edges differently.
rendered_with=2.54.7

here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
sources_only=
out=$here
case ${1-} in
  --sources) sources_only=1 ;;
  --rendered-with) echo "$rendered_with"; exit ;;
  ?*) out=$1 ;;
esac

# source_for SUBJECT SIZE: the drawing that gives the crispest picture of that size. A drawing on a
# pixel grid stays crisp only when it is enlarged by a whole number, and of several such the finest
# shows most. Failing that, the drawing that serves all sizes; failing that, the finest grid.
source_for() {
  local subject=$1 size=$2 grid best='' finest='' file
  for grid in 16 20 24 32 40 48 256; do
    [[ -f $here/svg/$subject-$grid.svg ]] || continue
    finest=$grid
    if ((size % grid == 0)); then best=$grid; fi
  done
  if [[ -n $best ]]; then
    file=$subject-$best.svg
  elif [[ -f $here/svg/$subject.svg ]]; then
    file=$subject.svg
  elif [[ -n $finest ]]; then
    file=$subject-$finest.svg
  else
    echo "render.sh: no drawing of $subject" >&2
    return 1
  fi
  echo "$file"
}

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
[[ -n $sources_only ]] || mkdir -p "$out/ico" "$out/png" "$out/bmp"

while read -r kind name subject rest; do
  case $kind in
    app | ico)
      # The largest frames are PNGs, which every Windows that the program runs on can read, at a tenth of the bytes. Of
      # an icon that others read only the one that they know as such, the smaller ones being bitmaps.
      if [[ $kind == app ]]; then png_from=256; else png_from=40; fi
      frames=()
      for size in $rest; do
        source=$(source_for "$subject" "$size")
        if [[ -n $sources_only ]]; then
          echo "$name $size $source"
          continue
        fi
        frame=$work/$name-$size.png
        rsvg-convert --width "$size" --height "$size" --output "$frame" "$here/svg/$source"
        if ((size >= png_from)); then frames+=(--raw="$frame"); else frames+=("$frame"); fi
      done
      # The AND mask leaves out what is less than half opaque.
      [[ -n $sources_only ]] ||
        icotool --create --bit-depth=32 --alpha-threshold=127 --output="$out/ico/$name.ico" "${frames[@]}"
      ;;
    png | bmp)
      read -r size ground <<<"$rest"
      source=$(source_for "$subject" "${size%x*}")
      if [[ -n $sources_only ]]; then
        echo "$name $size $source"
        continue
      fi
      picture=$out/png/$name.png
      [[ $kind == png ]] || picture=$work/$name.png
      rsvg-convert --width "${size%x*}" --height "${size#*x}" --background-color "$ground" \
        --output "$picture" "$here/svg/$source"
      # In 24 bits a point, the form that installers have read for ever.
      [[ $kind == png ]] || convert "$picture" -alpha off -strip -type TrueColor BMP3:"$out/bmp/$name.bmp"
      ;;
    '' | '#'*) ;;
    *)
      echo "render.sh: pictures.list: unknown kind $kind" >&2
      exit 1
      ;;
  esac
done <"$here/pictures.list"
