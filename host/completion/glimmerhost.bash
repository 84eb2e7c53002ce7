# Completion of glimmerhost's command line in bash. What commands, options and presets there are
# is the program's word; values that it takes only by name stand below.

# _glimmerhost_options COMMAND: the options of a command, or of the program.
_glimmerhost_options() {
  "${COMP_WORDS[0]}" ${1:+"$1"} --help 2>/dev/null |
    grep -oE '^  (-[a-z],)?--[a-z0-9-]+' | grep -oE -- '--[a-z0-9-]+'
}

# _glimmerhost_names ARGUMENT...: the first words of lines that the program prints with it, behind
# the title of a list if there is one.
_glimmerhost_names() {
  "${COMP_WORDS[0]}" "$@" 2>/dev/null | awk '$0 == "Subcommands:" { names = ""; next }
    NF { names = names $1 "\n" } END { printf "%s", names }'
}

_glimmerhost() {
  local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD - 1]} command=""
  # Bash parts --shape=circle into three words.
  if [[ $word == "=" ]]; then
    word=""
  elif [[ $before == "=" ]]; then
    before=${COMP_WORDS[COMP_CWORD - 2]}
  fi
  ((COMP_CWORD == 1)) || command=${COMP_WORDS[1]}

  local choices
  case $before in
    --shape) choices="circle ellipse polygon image" ;;
    --alpha) choices="premultiplied as-is" ;;
    --engine)
      choices="fast exact double single"
      [[ $command != submit ]] || choices="local slurm $choices"
      ;;
    --bits) choices="8 16" ;;
    --progress) choices="auto bar lines json" ;;
    --grid) choices="512 1024 2048 4096" ;;
    --preset) choices=$(_glimmerhost_names presets) ;;
    *)
      if [[ $word == -* ]]; then
        choices=$(_glimmerhost_options "$command")
      elif [[ -z $command ]]; then
        choices=$(_glimmerhost_names --help)
      fi
      ;;
  esac

  COMPREPLY=()
  local line
  if [[ -n ${choices-} ]]; then
    while IFS= read -r line; do
      COMPREPLY+=("$line")
    done < <(compgen -W "$choices" -- "$word")
  else
    compopt -o filenames 2>/dev/null
    while IFS= read -r line; do
      COMPREPLY+=("$line")
    done < <(compgen -f -- "$word")
  fi
}

complete -F _glimmerhost glimmerhost
