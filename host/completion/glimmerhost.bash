# SPDX-License-Identifier: BSD-3-Clause
# Completion of glimmerhost's command line in bash. Commands, options and their values are the
# program's word.

# _glimmerhost_values COMMAND OPTION: what stands for the option's value, and the values that it may
# have; nothing for a switch, and for an option that the command does not have.
_glimmerhost_values() {
  "${COMP_WORDS[0]}" --complete "$1" 2>/dev/null |
    awk -v option="$2" '$1 == option && $2 != "-" { $1 = ""; print }'
}

_glimmerhost() {
  local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD - 1]} command="" option=""
  # Bash parts --shape=circle into three words.
  if [[ $word == "=" ]]; then
    word=""
  elif [[ $before == "=" ]]; then
    before=${COMP_WORDS[COMP_CWORD - 2]}
  fi
  ((COMP_CWORD == 1)) || command=${COMP_WORDS[1]}

  # FILE and FOLDER ask for names of files; any other value without choices is the person's own.
  local kind=FILE choices="" values
  if [[ -z $command ]]; then
    kind="" choices="$("${COMP_WORDS[0]}" --complete 2>/dev/null) --help --version"
    [[ $word == -* ]] || choices=${choices%% --*}
  elif [[ $before == -* ]]; then
    option=$before
    [[ $option != -o ]] || option=--output
    values=$(_glimmerhost_values "$command" "$option")
    read -r kind choices <<<"${values:-FILE}"
  fi
  if [[ -n $command && $word == -* && $kind == FILE ]]; then
    choices=$("${COMP_WORDS[0]}" --complete "$command" 2>/dev/null | awk '/^-/ { print $1 }')
  fi

  COMPREPLY=()
  local line
  if [[ -n $choices ]]; then
    while IFS= read -r line; do
      COMPREPLY+=("$line")
    done < <(compgen -W "$choices" -- "$word")
  elif [[ $kind == FILE || $kind == FOLDER ]]; then
    compopt -o filenames 2>/dev/null
    local action=-f
    [[ $kind == FILE ]] || action=-d
    while IFS= read -r line; do
      COMPREPLY+=("$line")
    done < <(compgen "$action" -- "$word")
  fi
}

complete -F _glimmerhost glimmerhost
