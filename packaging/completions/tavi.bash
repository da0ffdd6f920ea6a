# bash completion of tavi
_tavi_takes() {
  local name IFS=$'\n'
  COMPREPLY=()
  while IFS= read -r name; do
    COMPREPLY+=("$(printf %q "$name")")
  done < <(compgen -W "$(tavi library 2>/dev/null | sed 's|.*/||')" -- "$cur")
}

_tavi() {
  local cur=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD-1]} words arguments
  if [ "$COMP_CWORD" -eq 1 ]; then
    COMPREPLY=($(compgen -W "sources record stop library zoom export render inspect doctor -h --help --version" -- "$cur"))
    return
  fi
  case "${COMP_WORDS[1]}" in
    sources) words="-h --help --json" arguments=":" ;;
    record) words="-h --help --display --window --mic --camera --countdown --duration" arguments=":" ;;
    stop) words="-h --help" arguments=":" ;;
    library) words="-h --help --json" arguments=":" ;;
    zoom) words="-h --help --aggressiveness --dry-run" arguments="_tavi_takes" ;;
    export) words="-h --help -o --output --out-dir --draft --set" arguments="_tavi_takes" ;;
    render) words="-h --help -o --output --set --at" arguments="_tavi_takes" ;;
    inspect) words="-h --help --at --output-time --aggressiveness" arguments="_tavi_takes" ;;
    doctor) words="-h --help --json" arguments=":" ;;
    *) return ;;
  esac
  case "$previous" in
    -o|--output) COMPREPLY=($(compgen -f -- "$cur")); return ;;
    --out-dir) COMPREPLY=($(compgen -d -- "$cur")); return ;;
  esac
  case "$cur" in
    -*) COMPREPLY=($(compgen -W "$words" -- "$cur")) ;;
    *) $arguments ;;
  esac
}
complete -o filenames -F _tavi tavi
