#compdef torvane-cli torvane
# Completion of torvane-cli and torvane in zsh. Commands and options of torvane-cli are filled in by
# the build.

# A model: its name, or a model file.
_torvane_models() {
  local -a names=(${(f)"$(_call_program models torvane-cli models 2>/dev/null | cut -f 2)"})
  _alternative "models:model:compadd -a names" 'files:model file or loop:_files -g "*.((#i)tvf|mo)"'
}

# The same, or a table of a study or of its share.
_torvane_studies() {
  _torvane_models
  _files -g '*.(#i)csv'
}

# Words of a kind that torvane-cli knows of the model that the line names, a table of a study before
# it passed over.
_torvane_values() {
  local model= word i
  for ((i = 2; i < CURRENT; i++)); do
    word=${(Q)words[i]}
    if [[ $word == -* ]]; then
      [[ $word == *=* || " $values" != *" $word="* ]] || ((++i))
    elif [[ -z $model || $model == *.csv ]]; then
      model=$word
    fi
  done
  local -a found=(${(f)"$(torvane-cli complete $1 "$model" "${(Q)PREFIX}" 2>/dev/null)"})
  local -a ends=(${(M)found:#*[=:,<>]})
  found=(${found:#*[=:,<>]})
  compadd -S '' -a ends
  compadd -a found
  [[ $1 != wave ]] || _files -g '*.(#i)csv'
}

_torvane_cli() {
  local -a commands=(
@ZSH_DESCRIPTIONS@
  )
  if ((CURRENT == 2)); then
    _describe -t commands command commands
    _arguments '--help[Print a help and exit]' '--version[Print the version and exit]'
    return
  fi
  local command=$words[2] values=
  shift words
  ((CURRENT--))
  case $command in
@ZSH_COMMANDS@
  esac
}

_torvane() {
  _arguments \
    '--speed-test[Press Run, print the speed after that time, and end]:SECONDS: ' \
    '--help[Print a help and exit]' \
    '--version[Print the version and exit]' \
    ':MODEL:_torvane_models'
}

case $service in
  torvane-cli) _torvane_cli ;;
  torvane) _torvane ;;
esac
