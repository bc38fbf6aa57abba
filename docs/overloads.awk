# What Doxygen reads in place of a header. A comment stands for all declarations of the same kind behind
# it up to the next blank line, as overloads, pairs of operators and rows of members are written here,
# and Doxygen wants one for each; others do not get what it says of arguments that they lack. Copies,
# moves and destructors without a comment of their own are left out: there is nothing to be told of them.
# A comment that says nothing in front of its commands says what is returned, so that tables of members
# do. What specialises a template, and the members of it, are told by the template. What has one meaning
# wherever it stands, as util/traits.h tells it of traits classes, gets that. Lines keep their numbers.

BEGIN {
    meaning["static void set("] = "Fills a record from a value; what hangs from the record lies on the heap of the context."
    meaning["static void get("] = "Fills a value from a record."
    meaning["static void copy("] = "Copies a record on to the heap of the context."
    meaning["static int encode("] = "Encodes a record: octets, or a negative status."
    meaning["static int decode("] = "Decodes a record: 0, or a negative status."
    meaning["Present : 1;"] = "1 where the element of this name is there, 0 where it is not."
    meaning["() = default;"] = "Empty: numbers are 0, pointers null, and no optional element is there."
    meaning["void decode(const CBlob&"] = "Replaces the value by the one that is encoded in @p blob."
    meaning["using ASN1_T ="] = "The type of the record."
    meaning["operator!=("] = "The opposite of ==."
    meaning["operator<("] = "Compares as the class does."
    meaning["operator>("] = "Compares as the class does."
    meaning["operator<=("] = "Compares as the class does."
    meaning["operator>=("] = "Compares as the class does."
    meaning["operator==("] = "Whether both are equal."
    meaning["operator=("] = "Takes over the value of another."
    meaning[" swap("] = "Exchanges the values of two objects."
    meaning[" begin()"] = "The first element."
    meaning[" end()"] = "Behind the last element."
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

# What kind of declaration a line begins: a constructor, a variable, an operator, a getter, a setter, or
# what else has the same name.
function kindOf(code,   name) {
    if (code ~ /~[A-Za-z0-9_]+\(/) {
        return "destructor"
    }
    if (code ~ /operator=\(/) {
        return "assignment"
    }
    if (code ~ /operator/) {
        return "operator"
    }
    if (code ~ /^ *(using|static_assert)/) {
        return "other"
    }
    if (!match(code, /[A-Za-z0-9_]+\(/)) {
        return "variable"
    }
    name = substr(code, RSTART, RLENGTH - 1)
    if (substr(code, 1, RSTART - 1) ~ /^ *(explicit |constexpr )*$/) {
        return code ~ ("\\((const )?" name "&&? ?[a-z]*\\)") ? "copy" : "constructor"
    }
    return match(name, /^(get|put|set)(_|[A-Z])/) ? substr(name, 1, 3) : name
}

# What the comment behind other declarations says, without arguments that this one does not have.
function shared(code,   parts, count, i, name, text) {
    if (kindOf(code) != kind) {
        return ""
    }
    text = rest
    gsub(/ @(t?param|return|throws?|warning|note) /, "\n&", text)
    count = split(text, parts, /\n /)
    text = comment
    for (i = 2; i <= count; ++i) {
        name = parts[i]
        if (sub(/^@t?param +/, "", name)) {
            sub(/ .*/, "", name)
            if (index(code, name) == 0) {
                continue
            }
        }
        text = text " " parts[i]
    }
    return text
}

# A line of a comment in front of a declaration.
/^ *\/\/\/($|[^<])/ && !/\/\/\/ @(file|code|endcode|cond|endcond)/ {
    if (!commented) {
        comment = ""
        rest = ""
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
    } else {
        rest = rest " " text
    }
    match($0, /^ */)
    indent = RLENGTH
    gsub(/\{@/, "{\\@")
    held[++heldCount] = $0
    next
}

# Gives out the comment in front of a declaration, but for arguments that this overload does not have.
function release(code,   i, name, known) {
    known = meaningOf(code)
    if (heldCount > 0 && comment == "" && known != "") {
        sub(/\/\/\/ /, "&" known " ", held[1])
    } else if (heldCount > 0 && comment == "" && sub(/\/\/\/ @return /, "/// Returns ", held[1])) {
        for (i = 1; i < heldCount && held[i + 1] !~ /^ *\/\/\/ *@/; ++i) {
        }
        sub(/[.]?$/, ".", held[i])
    }
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
    rest = ""
    inside = 0
    print
    next
}

{
    match($0, /^ */)
    own = RLENGTH
    begins = !inside
    # Declarations end with a semicolon, or with a body.
    own_kind = begins ? kindOf($0) : ""
    special = own_kind == "copy" || own_kind == "destructor" ||
        (own_kind == "assignment" && /= (default|delete);/)
    if (special && !commented && /;$/) {
        print ""
        next
    }
    if (commented) {
        kind = own_kind
    }
    if (/^(class|struct) [A-Za-z]+<.*\{$/ && !commented) {
        specialised = $2
        sub(/<.*/, "", specialised)
        printf "/** @copydoc %s */ ", specialised
    } else if (specialised != "" && begins && !commented && match($0, /[A-Za-z]+( = |\(\) )/)) {
        name = substr($0, RSTART, RLENGTH)
        sub(/[ (].*/, "", name)
        printf "/** @copydoc %s::%s */ ", specialised, name
    } else if (begins && !commented && shared($0) != "" && own == indent && !/^ *[{}]/ &&
               !/\/\/\/</) {
        printf "/**%s */ ", shared($0)
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
        rest = ""
    } else if (code ~ /^ *\}/ && depth < base) {
        base = depth
        inside = 0
        comment = ""
        rest = ""
        specialised = ""
    }
}

END { release("") }
