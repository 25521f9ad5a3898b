# bash completion for qos-agent                                -*- shell-script -*-

# Completes the names of files that end in one of the suffixes, and of folders.
_qos_agent_files() {
    local suffix
    compopt -o filenames
    mapfile -t COMPREPLY < <(
        compgen -d -- "$1"
        for suffix in "${@:2}"; do compgen -f -X "!*$suffix" -- "$1"; done)
}

_qos_agent() {
    local word=$2 previous=$3
    COMPREPLY=()
    # The sign in --option=value is a word of its own.
    if [[ $word == = ]]; then
        word=
        previous+==
    elif [[ $previous == = ]]; then
        previous=${COMP_WORDS[COMP_CWORD - 2]}=
    fi
    case $previous in
        --output | --output=)
            mapfile -t COMPREPLY < <(compgen -W 'table openconfig entities none' -- "$word") ;;
        # A word of its own behind it is an input.
        --follow=)
            mapfile -t COMPREPLY < <(compgen -W 'json text' -- "$word") ;;
        --plugin | --plugin=)
            _qos_agent_files "$word" .so ;;
        --toggle-dir | --toggle-dir=)
            _qos_agent_files "$word" ;;
        --trace-file | --trace-file= | --record | --record= | --listen | --listen= | \
            --connect | --connect= | --tls-cert | --tls-cert= | --tls-key | --tls-key= | \
            --tls-client-ca | --tls-client-ca=)
            _qos_agent_files "$word" '' ;;
        --trace | --trace= | --explain | --explain= | --gnmi | --gnmi= | --gnmi-writers | \
            --gnmi-writers= | --http | --http= | --store | --store=) ;;
        *)
            if [[ $word == -* ]]; then
                mapfile -t COMPREPLY < <(compgen -W '--plugin --toggle-dir --output --follow
                    --machines --explain --trace --trace-file --keep-going --strict --check --record
                    --listen --connect --gnmi --tls-cert --tls-key --tls-client-ca --gnmi-insecure
                    --gnmi-writers --http --http-open --store --apply-documents --help
                    --version' -- "$word")
            else
                _qos_agent_files "$word" .json .jsonl
            fi ;;
    esac
}

complete -F _qos_agent qos-agent
