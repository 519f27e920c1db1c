# Completion of mep for bash. Commands, options, and files or words where an option wants them.

_mep() {
  local word=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]}
  local commands="show eval check query xml protect unprotect"
  local command="" words="--help --encoding" i
  for ((i = 1; i < COMP_CWORD; ++i)); do
    case " $commands " in
      *" ${COMP_WORDS[i]} "*) command=${COMP_WORDS[i]}; break ;;
    esac
  done

  COMPREPLY=()
  case $previous in
    -e | --encoding)
      mapfile -t COMPREPLY < <(compgen -W "utf-8 windows-1252 latin-1 oem" -- "$word")
      return ;;
    -v | --var | --root | --max-steps | --max-memory | --timeout)
      return ;;
    --include-root)
      compopt -o filenames 2>/dev/null
      mapfile -t COMPREPLY < <(compgen -d -- "$word")
      return ;;
    -o | --output)
      compopt -o filenames 2>/dev/null
      mapfile -t COMPREPLY < <(compgen -f -- "$word")
      return ;;
  esac

  case $command in
    "") words="$commands --help --version --max-steps --max-memory --timeout" ;;
    show) words+=" --var --include-root" ;;
    eval) words+=" --var --strict --raw --type" ;;
    check) words+=" --include-root" ;;
    query) words+=" --var --include-root --json" ;;
    xml) words+=" --include-root --root --no-declaration" ;;
    protect | unprotect) words+=" --output" ;;
  esac
  if [[ -z $command || $word == -* ]]; then
    mapfile -t COMPREPLY < <(compgen -W "$words" -- "$word")
  elif [[ $command != eval ]]; then
    compopt -o filenames 2>/dev/null
    mapfile -t COMPREPLY < <(compgen -f -- "$word")
  fi
}

complete -F _mep mep
