# SPDX-FileCopyrightText: 2026 The Sendrivo authors
# SPDX-License-Identifier: GPL-3.0-or-later
#
# bash completion for sendrivo-batch

_sendrivo_batch()
{
    local current=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD - 1]}
    local options="--rule --position --settings --tolerance --match --method --output --name
        --existing --damaged --output-options --no-sync --dry-run --files-from --jobs --report --resume --json --quiet --list-rules
        --fragments --save-rule --help --version"
    case $before in
    --rule)
        local settings=setting.ini rule i
        for ((i = 1; i < COMP_CWORD; ++i)); do
            [[ ${COMP_WORDS[i]} == --settings ]] && settings=${COMP_WORDS[i + 1]}
        done
        COMPREPLY=()
        while IFS= read -r rule; do
            [[ $rule == "$current"* ]] && COMPREPLY+=("$rule")
        done < <("${COMP_WORDS[0]}" --settings "$settings" --list-rules 2>/dev/null)
        ;;
    --method) mapfile -t COMPREPLY < <(compgen -W "1 2 3" -- "$current") ;;
    --existing) mapfile -t COMPREPLY < <(compgen -W "fail overwrite rename" -- "$current") ;;
    --damaged) mapfile -t COMPREPLY < <(compgen -W "fail split" -- "$current") ;;
    --output) mapfile -t COMPREPLY < <(compgen -d -- "$current") ;;
    --position | --tolerance | --match | --name | --jobs | --fragments | --save-rule) COMPREPLY=() ;;
    *)
        if [[ $current == -* ]]; then
            mapfile -t COMPREPLY < <(compgen -W "$options" -- "$current")
        else
            mapfile -t COMPREPLY < <(compgen -f -- "$current")
        fi
        ;;
    esac
}
complete -o filenames -F _sendrivo_batch sendrivo-batch
