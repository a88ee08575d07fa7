#!/usr/bin/env bash
# side_by_side.sh [SOURCE]: puts each page as the preview draws it, as it is printed and as LibreOffice shows it from
# the rich text beside each other, in build/pictures/side-by-side, and says whether LibreOffice has the same text on
# the same pages. Beside them come the preview's zooms at 96 and 144 dpi. Run by hand, after printing_test and
# report_forms_test: LibreOffice (libreoffice-writer-nogui) is too large for each run of the tests.
set -euo pipefail
source=$(realpath -- "${1:-$(dirname -- "${BASH_SOURCE[0]}")/../../..}")
pictures=$source/build/pictures
printed=$pictures/printing_test
out=$pictures/side-by-side
command -v soffice >/dev/null || { echo "LibreOffice is not installed" >&2; exit 2; }
rm -rf -- "$out"
mkdir -p -- "$out/scratch"
cd -- "$out/scratch"

render() { # FILE NAME DPI
  gs -q -dNOPAUSE -dBATCH -dSAFER -sDEVICE=png16m -r"$3" -dTextAlphaBits=4 -dGraphicsAlphaBits=4 -sOutputFile="$2-%d.png" "$1"
}

status=0
for name in a4 scripts; do
  soffice --headless -env:UserInstallation="file://$out/scratch/profile" --convert-to pdf "$printed/$name.rtf" >/dev/null 2>&1
  [[ -s $name.pdf ]] || { echo "LibreOffice made nothing of $name.rtf" >&2; exit 1; }
  python3 "$source/tests/windows/printing/look_at_pages.py" --text "$name.pdf" "$printed/$name.txt" || status=1
  render "$printed/$name.ps" "$name-paper" 96
  render "$name.pdf" "$name-office" 96
  for screen in "$printed/$name"-screen-96-*.png; do
    page=${screen##*-}
    page=${page%.png}
    montage -label "preview" "$screen" -label "printed" "$name-paper-$page.png" \
      -label "LibreOffice" "$name-office-$page.png" -tile 3x1 -geometry +6+6 -background '#a0a0a0' "$out/$name-$page.png"
  done
done
for run in report_forms_test report_forms_test.144dpi; do
  compgen -G "$pictures/$run/report-*.png" >/dev/null || continue
  montage -label '%t' "$pictures/$run"/report-{50,100,200,whole-page,page-width,two-pages,thumbnail}.png -tile 3x \
    -geometry +6+6 -background '#a0a0a0' "$out/zooms-$run.png"
done
rm -rf -- "$out/scratch"
ls "$out"
exit "$status"
