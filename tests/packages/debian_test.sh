#!/usr/bin/env bash
# debian_test.sh SOURCE ZQWIPE SCRATCH: makes the Debian package of zqwipe twice and looks into it. The completions offer
# what the program takes, in three shells.
set -euo pipefail
source=$1 zqwipe=$2 scratch=$3
failed=0
complain() {
  echo "$*"
  failed=1
}

rm -rf -- "$scratch"/{once,again,tree}
"$source/packaging/pack.sh" debian "$zqwipe" "$scratch/once"
(umask 077 && TZ=Asia/Tokyo LC_ALL=C "$source/packaging/pack.sh" debian "$zqwipe" "$scratch/again")
diff --recursive "$scratch/once" "$scratch/again"

packages=("$scratch"/once/zqwipe_*.deb)
deb=${packages[0]}
version=$(sed -n 's/^#define ZQ_VERSION_TEXT "\(.*\)"$/\1/p' "$source/resources/version.h")
field() { dpkg-deb --field "$deb" "$1"; }
[[ $(field Package) == zqwipe && $(field Version) == "$version" ]] || complain "it is $(field Package) $(field Version)"
[[ $(field Architecture) == "$(dpkg --print-architecture)" ]] || complain "its architecture is $(field Architecture)"
[[ $(field Depends) == *"libc6 (>= "* && $(field Depends) == *"libstdc++6 (>= "* ]] ||
  complain "it depends on '$(field Depends)'"

dpkg-deb --extract "$deb" "$scratch/tree"
files=$(cd -- "$scratch/tree" && find . -type f -printf '%m %p\n' | LC_ALL=C sort -k 2)
expected="755 ./usr/bin/zqwipe
644 ./usr/share/bash-completion/completions/zqwipe
644 ./usr/share/doc/zqwipe/changelog.gz
644 ./usr/share/doc/zqwipe/copyright
644 ./usr/share/fish/vendor_completions.d/zqwipe.fish
644 ./usr/share/man/man1/zqwipe.1.gz
644 ./usr/share/zsh/vendor-completions/_zqwipe"
diff <(echo "$expected") <(echo "$files") || complain "it holds other files"
[[ -z $(dpkg-deb --contents "$deb" | awk '$2 != "root/root"') ]] || complain "its files aren't root's"
(cd -- "$scratch/tree" && dpkg-deb --info "$deb" md5sums | md5sum --check --quiet) || complain "its checksums are wrong"
program=$scratch/tree/usr/bin/zqwipe
[[ $("$program" --version) == "zqwipe $version" ]] || complain "the program doesn't run"
gzip --decompress --stdout "$scratch/tree/usr/share/man/man1/zqwipe.1.gz" | cmp - "$source/docs/zqwipe.1" ||
  complain "it has another manual page"

# What the program says that it takes is what each shell offers.
options=$("$program" --help | grep -oE '^ +(-h,)?--[a-z-]+' | grep -oE -- '--[a-z-]+' | sort -u)
(($(wc -l <<<"$options") > 8)) || complain "the program's options were not read"
offers() { # SHELL, the options that its completion names on its input
  diff <(echo "$options") <(sort -u) || complain "$1 offers other options than the program takes"
}
share=$scratch/tree/usr/share
sed '/^#/d' "$share/zsh/vendor-completions/_zqwipe" | grep -oE -- "(^|[^(a-z -])--[a-z-]+" | grep -oE -- '--[a-z-]+' | offers zsh
grep -oE -- ' -l [a-z-]+' "$share/fish/vendor_completions.d/zqwipe.fish" | sed 's/ -l /--/' | offers fish
complete_in_bash() { # WORD...: what bash offers for the last one
  # shellcheck disable=SC2016  # the other shell's
  bash -c 'compopt() { :; }; source "$0"; COMP_WORDS=("$@"); COMP_CWORD=$(($# - 1)); _zqwipe; printf "%s\n" "${COMPREPLY[@]}"' \
    "$share/bash-completion/completions/zqwipe" "$@"
}
complete_in_bash zqwipe - | offers bash
[[ $(complete_in_bash zqwipe --level "" | paste -sd ' ') == "3 5 7" ]] || complain "bash offers no levels"
[[ $(complete_in_bash zqwipe --level = 5) == 5 ]] || complain "bash offers no level after ="
[[ -z $(complete_in_bash zqwipe -- --r) ]] || complain "bash takes a path after -- for an option"
[[ $(complete_in_bash zqwipe --rec) == --recursive ]] || complain "bash doesn't complete --rec"

((failed == 0)) && echo "$(basename -- "$deb"): $(stat --format=%s -- "$deb") bytes, $(field Depends)"
exit "$failed"
