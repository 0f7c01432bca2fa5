# Completion of planfold-basket for bash: source it, or put it into /usr/share/bash-completion/completions/planfold-basket.
_planfold_basket() {
    local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD-1]} all="--scrips --products --mode --today"
    local reads="--rejects --normalised --limits --json" words
    COMPREPLY=()
    case $before in
    --amount) words="rupees paise" ;;
    --date) words="dd/mm/yyyy mm/dd/yyyy yyyy-mm-dd" ;;
    --mode) words="months" ;;
    --scrips | --map | --limits | --rejects | --normalised | --out)
        mapfile -t COMPREPLY < <(compgen -f -- "$word")
        return
        ;;
    --products | --today | --lines | --default | --user) return ;;
    esac
    if [ -z "${words:-}" ]; then
        case ${COMP_CWORD}:${COMP_WORDS[1]} in
        1:*) words="check import template changes --help --version" ;;
        *:check) words="$all $reads" ;;
        *:import) words="$all $reads --map --date --amount --default" ;;
        *:changes) words="--mode --user --json" ;;
        *:template) words="$all --lines --out" ;;
        esac
        case $word in
        -*) ;;
        *) [ "$COMP_CWORD" = 1 ] || { mapfile -t COMPREPLY < <(compgen -f -- "$word"); return; } ;;
        esac
    fi
    mapfile -t COMPREPLY < <(compgen -W "$words" -- "$word")
}
complete -o filenames -F _planfold_basket planfold-basket
