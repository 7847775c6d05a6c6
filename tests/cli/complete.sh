# complete.sh SCRIPT LINE...: what bash offers at the end of each line once SCRIPT is sourced, a line each.
# A line's words are parted as readline does it.
source "$1"
compopt() { :; }
for COMP_LINE in "${@:2}"; do
  mapfile -t COMP_WORDS < <(grep -oE '[=:<>]+|[^ =:<>]+' <<<"$COMP_LINE")
  [[ $COMP_LINE != *' ' ]] || COMP_WORDS+=('')
  COMP_CWORD=$((${#COMP_WORDS[@]} - 1))
  _torvane_cli
  printf '%s|' "${COMPREPLY[@]}"
  echo
done
