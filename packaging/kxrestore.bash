# Completion of kxrestore's command line for Bash.
# shellcheck shell=bash

_kxrestore() {
  local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD - 1]} i command=
  local commands='sets runs types find versions list count mark unmark clear copy'
  local criteria='--set --run --up-to --type --under --names --newest --as-of'
  local options='--catalog --server --database --user --password-file --json --help --version'
  COMPREPLY=()
  case $before in
    --catalog | --names | --password-file)
      mapfile -t COMPREPLY < <(compgen -f -- "$word")
      return
      ;;
    --set | --run | --up-to | --type | --under | --as-of | --server | --database | --user) return ;;
  esac
  for ((i = 1; i < COMP_CWORD; ++i)); do
    [[ " $commands " != *" ${COMP_WORDS[i]} "* ]] || command=${COMP_WORDS[i]}
  done
  case $command in
    '') options="$commands $options" ;;
    find | count) options="$criteria $options" ;;
    mark | unmark) options="$criteria --dry-run $options" ;;
    versions) options="--set --run --up-to $options" ;;
    clear) options="--dry-run $options" ;;
  esac
  mapfile -t COMPREPLY < <(compgen -W "$options" -- "$word")
}

complete -o filenames -F _kxrestore kxrestore
