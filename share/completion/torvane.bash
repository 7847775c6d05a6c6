# Completion of torvane-cli and torvane in bash. Commands and options of torvane-cli are filled in by
# the build.

# Offers those of the words, one a line on standard input, that the current word begins; bash quotes
# them as it does files' names.
_torvane_offer() {
  local word typed=${1//\\/}
  typed=${typed#[\"\']}
  compopt -o filenames
  while IFS= read -r word; do
    [[ $word == "$typed"* ]] && COMPREPLY+=("$word")
  done
}

_torvane_offer_files() {
  compopt -o filenames
  local files
  mapfile -t files < <(compgen "$@")
  COMPREPLY+=("${files[@]}")
}

# A model: its name, or a model file.
_torvane_offer_models() {
  _torvane_offer "$1" < <(torvane-cli models 2>/dev/null | cut -f 2)
  _torvane_offer_files -f -X '!*.[tT][vV][fF]' -- "$1"
  _torvane_offer_files -d -- "$1"
}

# "--out=name" comes as three words.
_torvane_words() {
  current=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD - 1]}
  if [[ $current == = ]]; then
    current=
  elif [[ $before == = ]]; then
    before=${COMP_WORDS[COMP_CWORD - 2]}
  fi
}

_torvane_cli() {
  local current before options='' values='' value='' pair
  _torvane_words
  COMPREPLY=()
  if ((COMP_CWORD == 1)); then
    mapfile -t COMPREPLY < <(compgen -W '@COMMAND_WORDS@ --help --version' -- "$current")
    return
  fi
  case ${COMP_WORDS[1]} in
@BASH_COMMANDS@
  esac
  for pair in $values; do
    [[ $pair != "$before="* ]] || value=${pair#*=}
  done
  case $value in
    FILE*) _torvane_offer_files -f -- "$current" ;;
    *'|'*) mapfile -t COMPREPLY < <(compgen -W "${value//|/ }" -- "$current") ;;
    ?*) ;;
    *)
      if [[ $current == -* ]]; then
        mapfile -t COMPREPLY < <(compgen -W "$options" -- "$current")
      else
        _torvane_offer_models "$current"
      fi
      ;;
  esac
}

_torvane() {
  local current before
  _torvane_words
  COMPREPLY=()
  if [[ $current == -* ]]; then
    mapfile -t COMPREPLY < <(compgen -W '--speed-test --help --version' -- "$current")
  elif [[ $before != --speed-test ]]; then
    _torvane_offer_models "$current"
  fi
}

complete -F _torvane_cli torvane-cli
complete -F _torvane torvane
