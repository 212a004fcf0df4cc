# SPDX-License-Identifier: MIT
# bash completion for nimbo(1)                             -*- shell-script -*-

_nimbo()
{
    local cur prev words cword
    _init_completion || return

    local command=${words[1]} first=2 offered=""
    if ((cword == 1)); then
        offered="awake usage memory processes open quit"
        [[ $cur != -* ]] || offered="--help --version --diagnostics --profile --claude-desktop-check"
        COMPREPLY=($(compgen -W "$offered" -- "$cur"))
        return
    fi
    if [[ $command == awake ]]; then
        if ((cword == 2)); then
            COMPREPLY=($(compgen -W "on off extend status run while" -- "$cur"))
            return
        fi
        command=${words[2]} first=3
    fi

    case $command:$prev in
        on:--for | extend:extend)
            COMPREPLY=($(compgen -W "30m 1h 2h 4h 8h" -- "$cur"))
            return
            ;;
        on:--until | processes:-n) return ;;
    esac

    case $command in
        on) offered="--for --until --display" ;;
        status | usage | memory) offered="--json --short --watch" ;;
        processes)
            offered="--json --short --watch"
            ((cword > 2)) || offered+=" -n"
            ;;
        run)
            local begin=$first
            while ((begin < cword)) && [[ ${words[begin]} == --?* ]]; do ((begin++)); done
            if [[ $begin -lt $cword && ${words[begin]} == -- ]]; then ((begin++)); fi
            if [[ $begin -lt $cword || $prev == -- || $cur != -* ]]; then
                _command_offset "$begin"
                return
            fi
            offered="--display"
            ;;
        while)
            [[ $cur == -* ]] || _pids
            offered="--display"
            ;;
        open) ((cword > 2)) || offered="usage resources awake settings" ;;
    esac

    # Each is said once, and an end in one way only.
    local given=" ${words[*]:first:cword-first} " word
    [[ $given != *" --for "* && $given != *" --until "* ]] || given+="--for --until "
    for word in $offered; do
        [[ $given == *" $word "* || $word != "$cur"* ]] || COMPREPLY+=("$word")
    done
} &&
    complete -F _nimbo nimbo
