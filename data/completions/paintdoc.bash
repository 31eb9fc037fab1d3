# bash completion for paintdoc
_paintdoc() {
  local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]}
  local command= options word
  for word in "${COMP_WORDS[@]:1:COMP_CWORD-1}"; do
    case $word in info | render | check | help) command=$word; break ;; esac
  done
  case $previous in
    --format) mapfile -t COMPREPLY < <(compgen -W 'png jpeg jpg webp tiff tif' -- "$current"); return ;;
    --svg) mapfile -t COMPREPLY < <(compgen -W 'system built-in' -- "$current"); return ;;
    --fit) mapfile -t COMPREPLY < <(compgen -W 'contain cover stretch' -- "$current"); return ;;
    --background) mapfile -t COMPREPLY < <(compgen -W 'white black' -- "$current"); return ;;
    --quality | --limit-* | --scale | --dpi | --size | --part | --draws) return ;;
  esac
  local common='--json --limit-time --limit-memory --limit-output --svg -V --version -h --help'
  case $command in
    '') options="info render check help $common" ;;
    render) options="--format --quality --scale --dpi --size --fit --enlarge --part --draws --background --trim $common" ;;
    help) options='info render check help' ;;
    *) options=$common ;;
  esac
  if [[ -z $command || $command == help || $current == -* ]]; then
    mapfile -t COMPREPLY < <(compgen -W "$options" -- "$current")
  else
    compopt -o filenames
    mapfile -t COMPREPLY < <(compgen -f -- "$current")
  fi
}
complete -F _paintdoc paintdoc
