# Completion of derview for fish.
function __derview_types
    derview --list-types 2>/dev/null | string replace -r '\s+' \t
end

complete -c derview -s h -l help -f -d 'tell how it is used'
complete -c derview -l version -f -d 'tell the version'
complete -c derview -l schema -r -F -d 'ASN.1 modules with types of one\'s own'
complete -c derview -l type -x -a '(__derview_types)' -d 'what the messages are'
complete -c derview -l input -x -a 'auto der pem base64 hex mail' -d 'how the files hold them'
complete -c derview -l message -x -d 'look at one message of each file only'
complete -c derview -l format -x -a 'tree json der' -d 'how they are shown'
complete -c derview -l oids -r -F -d 'names of identifiers, as dumpasn1 is told them'
complete -c derview -l lines -d 'JSON: one message a line'
complete -c derview -l offsets -d 'tree: offsets and sizes in front of each line'
complete -c derview -l full -d 'tree: cut no value'
complete -c derview -l at -x -d 'show one element'
complete -c derview -l raw -d 'with --at: write its octets'
complete -c derview -l check -d 'decode, encode again and compare'
complete -c derview -l lint -d 'tell what is not DER'
complete -c derview -l tolerant -d 'read on where open values do not decode or sizes are not kept'
complete -c derview -l exact -d 'refuse what decoding changes'
complete -c derview -l der -d 'refuse what is not DER'
complete -c derview -l diff -d 'compare the messages of two files'
complete -c derview -l list-types -f -d 'names of all types'
complete -c derview -l describe -x -a '(__derview_types)' -d 'the ASN.1 of a type'
complete -c derview -l color -x -a 'auto always never' -d 'whether to use colours'
complete -c derview -l width -x -d 'columns of the tree'
