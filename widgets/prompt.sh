# SPDX-License-Identifier: MIT
# shellcheck shell=bash
# In .bashrc or .zshrc: . …/widgets/prompt.sh   The prompt then begins with the session that keeps the machine awake.
nimbo_prompt() {
  local shown
  shown=$(nimbo awake status --short 2>/dev/null)
  if [ -n "${ZSH_VERSION:-}" ]; then shown=${shown//\%/%%}; fi
  printf '%s' "${shown:+$shown }"
}
if [ -n "${ZSH_VERSION:-}" ]; then setopt prompt_subst; fi
PS1='$(nimbo_prompt)'"$PS1"
