# What Doxygen reads in place of a header. A comment stands for all declarations behind it up to the
# next blank line, as overloads and pairs of operators are written here, and Doxygen wants one for each.
# Of the comment, others get what is said in front of the first command. Copies, moves and destructors
# that are defaulted or deleted are left out: there is nothing to be told of them. What has one meaning
# wherever it stands, as util/traits.h tells it of traits classes, gets that. Lines keep their numbers.

BEGIN {
    meaning["static void set("] = "Fills a record from a value; what hangs from the record lies on the heap of the context."
    meaning["static void get("] = "Fills a value from a record."
    meaning["static void copy("] = "Copies a record on to the heap of the context."
    meaning["static int encode("] = "Encodes a record: octets, or a negative status."
    meaning["static int decode("] = "Decodes a record: 0, or a negative status."
    meaning["using ASN1_T ="] = "The type of the record."
    meaning["operator!=("] = "The opposite of ==."
    meaning["operator<("] = "Compares as the class does."
    meaning["operator>("] = "Compares as the class does."
    meaning["operator<=("] = "Compares as the class does."
    meaning["operator>=("] = "Compares as the class does."
    meaning["operator==("] = "Whether both are equal."
    meaning["operator=("] = "Takes over the value of another."
    meaning[" swap("] = "Exchanges the values of two objects."
    meaning[" begin() const"] = "The first element."
    meaning[" end() const"] = "Behind the last element."
    meaning[" size() const"] = "The count of elements."
    meaning[" empty() const"] = "Whether there is no element."
}

function meaningOf(line,   pattern) {
    for (pattern in meaning) {
        if (index(line, pattern) != 0) {
            return meaning[pattern]
        }
    }
    return ""
}

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
    } else if (begins && !commented && !/\/\/\/</ && meaningOf($0) != "") {
        printf "/** %s */ ", meaningOf($0)
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
