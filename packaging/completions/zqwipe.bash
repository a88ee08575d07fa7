# Completion of zqwipe for bash. Paths are completed by readline, as everywhere.
_zqwipe() {
  local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD - 1]} index
  COMPREPLY=()
  # After a "--" nothing is an option.
  for ((index = 1; index < COMP_CWORD; ++index)); do
    [[ ${COMP_WORDS[index]} != -- ]] || return 0
  done
  # bash takes --level=5 for three words.
  if [[ $word == "=" ]]; then
    word=""
  elif [[ $before == "=" ]]; then
    before=${COMP_WORDS[COMP_CWORD - 2]}
  fi
  case $before in
    --level)
      mapfile -t COMPREPLY < <(compgen -W "3 5 7" -- "$word")
      compopt +o default
      return 0
      ;;
    --mask)
      compopt +o default
      return 0
      ;;
    --report) return 0 ;;
  esac
  if [[ $word == -* ]]; then
    mapfile -t COMPREPLY < <(compgen -W "--help --version --level --recursive --mask --free-space --dry-run --yes \
      --trust-file-system --report --json --quiet" -- "$word")
  fi
}
complete -o default -F _zqwipe zqwipe
