#!/usr/bin/env bash
# Renders every picture of pictures.list from its drawing into ico/ and png/.
#
#   render.sh [DIR]      into DIR instead of beside this script
#   render.sh --sources  only tells which drawing serves which picture and size
#
# Needs rsvg-convert and icotool. The same versions of both give the same bytes.
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
[[ -n $sources_only ]] || mkdir -p "$out/ico" "$out/png"

while read -r kind name subject rest; do
  case $kind in
    ico)
      frames=()
      for size in $rest; do
        source=$(source_for "$subject" "$size")
        if [[ -n $sources_only ]]; then
          echo "$name $size $source"
          continue
        fi
        frame=$work/$name-$size.png
        rsvg-convert --width "$size" --height "$size" --output "$frame" "$here/svg/$source"
        # From 256 pixels on a frame is a PNG; below, a bitmap that every reader knows.
        if ((size >= 256)); then frames+=(--raw="$frame"); else frames+=("$frame"); fi
      done
      # The AND mask leaves out what is less than half opaque.
      [[ -n $sources_only ]] ||
        icotool --create --bit-depth=32 --alpha-threshold=127 --output="$out/ico/$name.ico" "${frames[@]}"
      ;;
    png)
      read -r size ground <<<"$rest"
      source=$(source_for "$subject" "${size%x*}")
      if [[ -n $sources_only ]]; then
        echo "$name $size $source"
        continue
      fi
      rsvg-convert --width "${size%x*}" --height "${size#*x}" --background-color "$ground" \
        --output "$out/png/$name.png" "$here/svg/$source"
      ;;
    '' | '#'*) ;;
    *)
      echo "render.sh: pictures.list: unknown kind $kind" >&2
      exit 1
      ;;
  esac
done <"$here/pictures.list"
