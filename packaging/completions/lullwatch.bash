# bash completion for lullwatch

_lullwatch_command() {
    local word i=1
    while ((i < COMP_CWORD)); do
        word=${COMP_WORDS[i++]}
        case $word in
        # Its value is no command. "--option=VALUE" comes as three words.
        --database | --profile | --or-picture | --range | --from | --to | --format | --picture | --count | --as | \
            --output | --width | --height | --paper) [[ ${COMP_WORDS[i]-} == = ]] && i=$((i + 1)); i=$((i + 1)) ;;
        list | stats | export | print | import | snapshot | agent) echo "$word"; return ;;
        esac
    done
}

_lullwatch_options() {
    echo "--help --version --database --profile --sample --start-agent"
    case $1 in
    "") echo "--or-picture" ;;
    list) echo "--range --from --to --format" ;;
    stats) echo "--range --from --to --format" ;;
    export) echo "--output --format --width --height --range" ;;
    print) echo "--output --paper --landscape --range --from --to" ;;
    snapshot) echo "--count --picture" ;;
    esac
}

_lullwatch_words() {
    local ranges="today yesterday last-seven-days this-week last-week this-month last-month everything"
    case $1 in
    "") echo "list stats export print import snapshot agent" ;;
    stats | export | print) echo "$ranges" ;;
    --range) echo "$ranges" ;;
    agent) echo "status install remove update" ;;
    --as) echo "system user session" ;;
    --paper) echo "A4 Letter" ;;
    --format)
        case $2 in
        stats) echo "text json" ;;
        export) echo "txt rtf plist doc tiff png" ;;
        agent) echo "table json" ;;
        *) echo "table tsv json" ;;
        esac
        ;;
    esac
}

_lullwatch() {
    local current=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD - 1]} command
    command=$(_lullwatch_command)
    [[ $current == = ]] && current=
    [[ $before == = ]] && before=${COMP_WORDS[COMP_CWORD - 2]}
    case $before in
    --database | --or-picture | --picture | --output | import)
        compopt -o filenames 2>/dev/null
        mapfile -t COMPREPLY < <(compgen -f -- "$current")
        return
        ;;
    --range | --as | --paper | --format)
        mapfile -t COMPREPLY < <(compgen -W "$(_lullwatch_words "$before" "$command")" -- "$current")
        return
        ;;
    --profile | --from | --to | --count | --width | --height) return ;;
    esac
    local words
    if [[ $current == -* ]]; then
        words=$(_lullwatch_options "$command")
        [[ $command == agent ]] && words="--help --version --format --as"
    else
        words=$(_lullwatch_words "$command")
    fi
    mapfile -t COMPREPLY < <(compgen -W "$words" -- "$current")
}

complete -F _lullwatch lullwatch
