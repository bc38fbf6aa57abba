# Completion of derview for bash.
_derview() {
    local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]} words=
    # "--option=word" comes as three words.
    if [[ $current == = ]]; then
        current=
    elif [[ $previous == = ]]; then
        previous=${COMP_WORDS[COMP_CWORD - 2]}
    fi
    case $previous in
        --type | --describe) words=$("${COMP_WORDS[0]}" --list-types 2>/dev/null | cut -d ' ' -f 1) ;;
        --format) words="tree json html list der pem" ;;
        --input) words="auto der pem base64 hex mail json" ;;
        --color) words="auto always never" ;;
        --at | --at-offset | --limit | --message | --oids | --schema | --width) return ;;
        *)
            if [[ $current == -* ]]; then
                words="--help --version --schema --type --input --message --limit --format --oids --list --fingerprint --lines --offsets --full --at --raw --contents --at-offset
                    --check --lint --tolerant --exact --der --diff --list-types --describe --color --width"
            fi
            ;;
    esac
    mapfile -t COMPREPLY < <(compgen -W "$words" -- "$current")
}
complete -o default -F _derview derview
