# bash completion for paintdoc
_paintdoc() {
  local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]}
  local command= options word
  for word in "${COMP_WORDS[@]:1:COMP_CWORD-1}"; do
    case $word in info | render | check) command=$word; break ;; esac
  done
  case $previous in
    --format) mapfile -t COMPREPLY < <(compgen -W 'png jpeg webp tiff' -- "$current"); return ;;
    --svg) mapfile -t COMPREPLY < <(compgen -W 'system built-in' -- "$current"); return ;;
    --quality | --limit-*) return ;;
  esac
  case $command in
    '') options='info render check --limit-time --limit-memory --limit-output --svg --version --help' ;;
    render) options='--json --format --quality --help' ;;
    *) options='--json --help' ;;
  esac
  if [[ -z $command || $current == -* ]]; then
    mapfile -t COMPREPLY < <(compgen -W "$options" -- "$current")
  else
    compopt -o filenames
    mapfile -t COMPREPLY < <(compgen -f -- "$current")
  fi
}
complete -F _paintdoc paintdoc
