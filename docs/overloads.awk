# What Doxygen reads in place of a header: a comment stands for all declarations behind it up to the
# next blank line, as overloads and pairs of operators are written here, and Doxygen wants one for each.
# Of the comment, others get what is said in front of the first command. Copies, moves and destructors
# that are defaulted or deleted are left out: there is nothing to be told of them. Lines keep their
# numbers.

# A line of a comment in front of a declaration.
/^ *\/\/\/($|[^<])/ && !/\/\/\/ @(file|code|endcode|cond|endcond)/ {
    if (!commented) {
        comment = ""
        commands = 0
        commented = 1
    }
    text = $0
    sub(/^ *\/\/\/ ?/, "", text)
    if (text ~ /^@/) {
        commands = 1
    }
    if (!commands) {
        comment = comment " " text
    }
    match($0, /^ */)
    indent = RLENGTH
    gsub(/\{@/, "{\\@")
    held[++heldCount] = $0
    next
}

# Gives out the comment in front of a declaration, but for arguments that this overload does not have.
function release(code,   i, name) {
    for (i = 1; i <= heldCount; ++i) {
        name = held[i]
        if (code ~ /;$/ && sub(/^.*@param +/, "", name)) {
            sub(/ .*/, "", name)
            if (index(code, name) == 0) {
                held[i] = ""
            }
        }
        print held[i]
    }
    heldCount = 0
}

{ release($0) }

/^ *$/ || /^ *(public|protected|private):/ || /^ *#/ || /^ *\/\// {
    commented = 0
    comment = ""
    inside = 0
    print
    next
}

{
    match($0, /^ */)
    own = RLENGTH
    begins = !inside
    # Declarations end with a semicolon, or with a body.
    special = begins && /= (default|delete);/ && /(operator=|~[A-Za-z]+\(\)|[A-Z][A-Za-z0-9_<>, ]*\((const )?[A-Z][A-Za-z0-9_<>, :]*&&? ?[a-z]*\))/
    if (special && !commented) {
        print ""
        next
    }
    if (begins && !commented && comment != "" && own == indent && !/^ *[{}]/ && !/\/\/\/</) {
        printf "/**%s */ ", comment
    }
    commented = 0
    gsub(/\{@/, "{\\@")
    print
    code = $0
    sub(/ *\/\/.*$/, "", code)
    opened = gsub(/[{(]/, "&", code)
    closed = gsub(/[})]/, "&", code)
    depth += opened - closed
    if (depth < 0) {
        depth = 0
    }
    inside = !(depth == base && code ~ /[;}]$/)
    # Bodies of namespaces and classes hold declarations of their own.
    if (code ~ /\{$/ && code !~ /\)( const)?( noexcept)?( override)? \{$/ && code !~ /= *\{$/) {
        base = depth
        inside = 0
        comment = ""
    } else if (code ~ /^ *\};?$/ && depth < base) {
        base = depth
        inside = 0
        comment = ""
    }
}

END { release("") }
