# Completion of tofcal for bash. Commands and options are asked from the program's own help, so that they are
# always those of the installed version. The word that the help shows after an option says what follows it:
# FILE a file, DIR a folder, a|b|c one of these; of anything else nothing is offered.

# The commands, one a line.
_tofcal_commands() {
  "$1" --help 2>/dev/null | sed -n '/^Subcommands:/,$ s/^  \([a-z][a-z-]*\) .*/\1/p'
}

# "--option WORD" or "--option", one a line.
_tofcal_options() {
  "$@" --help 2>/dev/null |
    sed -n 's/^  \(-[a-zA-Z0-9],\)\{0,1\}\(--[a-zA-Z0-9-]*\)\( [^ ][^ ]*\)\{0,1\}  .*/\2\3/p;
            s/^  \(-[a-zA-Z0-9],\)\{0,1\}\(--[a-zA-Z0-9-]*\)\( [^ ][^ ]*\)\{0,1\} *$/\2\3/p'
}

_tofcal() {
  local program=${COMP_WORDS[0]}
  local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]}
  local command='' word i
  # A word that begins with a tilde or holds a variable is the shell's to expand.
  program=${program/#\~\//$HOME/}
  COMPREPLY=()
  # The shell takes --option=value for three words.
  [[ $current == = ]] && current=''
  [[ $previous == = ]] && previous=${COMP_WORDS[COMP_CWORD - 2]}
  for ((i = 1; i < COMP_CWORD; i++)); do
    [[ ${COMP_WORDS[i]} == -* ]] && continue
    command=${COMP_WORDS[i]}
    break
  done
  if [[ -z $command ]]; then
    mapfile -t COMPREPLY < <(compgen -W "$(_tofcal_commands "$program") --help --version" -- "$current")
    return
  fi

  local options
  options=$(_tofcal_options "$program" "$command")
  word=$(sed -n "s/^$previous \(..*\)/\1/p" <<<"$options")
  if [[ $previous == --* && -n $word ]]; then
    _tofcal_value "$word" "$current"
  elif [[ $current == -* ]]; then
    mapfile -t COMPREPLY < <(compgen -W "$(cut -d ' ' -f 1 <<<"$options")" -- "$current")
  else
    _tofcal_value FILE "$current"
  fi
}

# _tofcal_value WORD CURRENT: what may stand where the help says WORD.
_tofcal_value() {
  case $1 in
    *FILE* | *FOLDER*) compopt -o filenames 2>/dev/null; mapfile -t COMPREPLY < <(compgen -f -- "$2") ;;
    *DIR*) compopt -o filenames 2>/dev/null; mapfile -t COMPREPLY < <(compgen -d -- "$2") ;;
    # A capital letter alone stands for a value of the user's.
    *'|'*) mapfile -t COMPREPLY < <(compgen -W "${1//|/ }" -- "$2" | grep -v '^[A-Z]*$') ;;
  esac
}

complete -F _tofcal tofcal
