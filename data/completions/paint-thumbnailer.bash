# bash completion for paint-thumbnailer
_paint_thumbnailer() {
  local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]}
  case $previous in
    -s | --size) mapfile -t COMPREPLY < <(compgen -W '128 256 512 1024' -- "$current"); return ;;
    --limit-*) return ;;
  esac
  if [[ $current == -* ]]; then
    mapfile -t COMPREPLY < <(compgen -W '-s --size --limit-time --limit-memory --limit-output
      -V --version -h --help' -- "$current")
  else
    compopt -o filenames
    mapfile -t COMPREPLY < <(compgen -f -- "$current")
  fi
}
complete -F _paint_thumbnailer paint-thumbnailer
