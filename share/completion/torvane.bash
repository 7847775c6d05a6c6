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

# A model: its name, a model file or a loop.
_torvane_offer_models() {
  _torvane_offer "$1" < <(torvane-cli models 2>/dev/null | cut -f 2)
  _torvane_offer_files -f -X '!*.[tT][vV][fF]' -- "$1"
  _torvane_offer_files -f -X '!*.[mM][oO]' -- "$1"
  _torvane_offer_files -d -- "$1"
}

# The words of the line, rejoined where bash parts them at "=", ":", "<" or ">": all of them, what is
# typed of the current one, the option before it, and how much of it bash keeps as it stands.
_torvane_words() {
  local line=$COMP_LINE last=${COMP_WORDS[COMP_CWORD]} word i
  words=()
  for ((i = 0; i <= COMP_CWORD; i++)); do
    word=${COMP_WORDS[i]}
    if [[ $i -gt 0 && -n $line && $line != [[:space:]]* ]]; then
      words[-1]+=$word
    else
      line=${line#"${line%%[![:space:]]*}"}
      words+=("$word")
    fi
    line=${line#"$word"}
  done
  current=${words[-1]} before=${words[-2]-}
  kept=${current%"$last"}
  [[ $last == *[!=:\<\>]* ]] || kept=$current
  [[ $current == --*=* ]] || return
  before=${current%%=*} current=${current#*=} kept=${kept#*=}
}

# The model that the line names, a table of a study before it passed over.
_torvane_model() {
  local word i
  model=
  for ((i = 2; i < ${#words[@]} - 1; i++)); do
    word=${words[i]}
    if [[ $word == -* ]]; then
      [[ $word == *=* || " $values" != *" $word="* ]] || ((++i))
    elif [[ -z $model || $model == *.csv ]]; then
      model=${word//\\/} model=${model#[\"\']} model=${model%[\"\']}
    fi
  done
}

# Offers words of a kind that torvane-cli knows of the model: each whole, and quoted if it has to be.
_torvane_offer_values() {
  local word model typed=${current//\\/}
  typed=${typed#[\"\']}
  _torvane_model
  while IFS= read -r word; do
    [[ $word != *[=:,\<\>] ]] || compopt -o nospace
    word=${word#"${kept//\\/}"}
    if [[ $current != [\"\']* && $word == *[!A-Za-z0-9_=:,./+-]* ]]; then printf -v word %q "$word"; fi
    COMPREPLY+=("$word")
  done < <(torvane-cli complete "$1" "$model" "$typed" 2>/dev/null)
}

_torvane_cli() {
  local current before kept words options='' values='' argument='' value='' pair
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
    file) _torvane_offer_files -f -- "$current" ;;
    none) ;;
    *'|'*) mapfile -t COMPREPLY < <(compgen -W "${value//|/ }" -- "$current") ;;
    wave)
      _torvane_offer_values wave
      mapfile -t -O "${#COMPREPLY[@]}" COMPREPLY < <(compgen -f -X '!*.[cC][sS][vV]' -- "$current")
      ;;
    ?*) _torvane_offer_values "$value" ;;
    *)
      if [[ $current == -* ]]; then
        mapfile -t COMPREPLY < <(compgen -W "$options" -- "$current")
      else
        case $argument in
          file) _torvane_offer_files -f -- "$current" ;;
          model | study) _torvane_offer_models "$current" ;;
        esac
        [[ $argument != study ]] || _torvane_offer_files -f -X '!*.[cC][sS][vV]' -- "$current"
      fi
      ;;
  esac
}

_torvane() {
  local current before kept words
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
