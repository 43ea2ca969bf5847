# Completion of qvinspect for bash. Source it, or put it as "qvinspect" into the folder of completions.

_qvinspect() {
    local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]}
    local words=
    COMPREPLY=()

    # bash takes "=" for a word of its own: "--level=na" and "--check codec=h26" come in three.
    [[ $current == = ]] && current=
    if [[ $previous == = ]]; then
        previous=${COMP_WORDS[COMP_CWORD - 2]}
    fi

    case $previous in
        --codec) words='auto h264 h265' ;;
        --format) words='auto annexb lp1 lp2 lp4 container' ;;
        --level) words='summary samples nalus sei fields elements' ;;
        --color) words='auto always never' ;;
        --check)
            words='max-key-interval= max-unit-size= max-access-unit-size= parameter-sets-first hdr10
                hdr-vivid captions no-errors codec=h264 codec=h265'
            ;;
        codec) words='h264 h265' ;;
        --sei | --drop-sei | --keep-sei | --request) words='0 1 4 5 6 45 47 56 129 132 137 144 147' ;;
        --t35 | --drop-t35) words='b5: 26: 26:0004 b5:0031 b5:003c' ;;
        --type | --stream | --frame-rate | --start | --duration | --limit) return ;;
        --extract-sei)
            mapfile -t COMPREPLY < <(compgen -d -- "$current")
            compopt -o filenames 2>/dev/null
            return
            ;;
        *)
            if [[ $current == -?* && $previous != --@(json|ndjson|csv|html|to-annexb|to-lengths) ]]; then
                words='--codec --format --stream --frame-rate --start --duration --limit --level --type --sei
                    --t35 --key-only --errors-only --request --json --ndjson --csv --html --to-annexb
                    --to-lengths --rewrite --drop-sei --keep-sei --drop-t35 --elements --extract-sei --schema --color
                    --stamp --check --list-checks --strict --help --version'
            fi
            ;;
    esac

    if [[ -n $words ]]; then
        mapfile -t COMPREPLY < <(compgen -W "$words" -- "$current")
        [[ ${#COMPREPLY[@]} -eq 1 && ${COMPREPLY[0]} == *= ]] && compopt -o nospace 2>/dev/null
    else
        mapfile -t COMPREPLY < <(compgen -f -- "$current")
        compopt -o filenames 2>/dev/null
    fi
    return 0
}

complete -F _qvinspect qvinspect
