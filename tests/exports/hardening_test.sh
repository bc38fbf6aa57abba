#!/usr/bin/env bash
# Checks that files are linked and compiled with what makes mistakes harder to exploit.
#
# Usage: hardening_test.sh [--shadow-stack] FILE...
set -uo pipefail

shadow_stack=false
if [[ $1 == --shadow-stack ]]; then
    shadow_stack=true
    shift
fi
failed=0

# expect FILE WHAT PATTERN TEXT
expect() {
    if ! grep -qE -- "$3" <<<"$4"; then
        printf '%s: %s missing\n' "$1" "$2"
        failed=1
    fi
}

for file in "$@"; do
    headers=$(readelf -lW "$file") || exit 1
    dynamic=$(readelf -dW "$file")
    symbols=$(readelf -W --dyn-syms "$file")
    expect "$file" "read-only relocations are" 'GNU_RELRO' "$headers"
    expect "$file" "binding at the start is" 'BIND_NOW|FLAGS_1.*NOW' "$dynamic"
    expect "$file" "a stack that cannot be executed is" 'GNU_STACK .* RW ' "$headers"
    expect "$file" "the stack protector is" 'UND __stack_chk_fail@' "$symbols"
    # Of the checked calls, the compiler replaces those whose bounds it knows.
    expect "$file" "checked calls of the C library are" 'UND __(w?mem|str|v?s?n?printf)[a-z]*_chk@' \
        "$symbols"
    if $shadow_stack; then
        expect "$file" "the mark of shadow stacks is" 'SHSTK' "$(readelf -nW "$file")"
    fi
done
exit $failed
