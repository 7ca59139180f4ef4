#!/bin/sh
# hardening.sh READELF LIBRARY IMPORTS FORTIFIED: what is in a built library to make a fault in it hard to use. IMPORTS lists
# what the program's own libraries supply (or /dev/null), FORTIFIED is 1 where libc's checked forms are called.
set -eu
readelf=$1 library=$2 imports=$3 fortified=$4
failed=0
fail() { echo "$*"; failed=1; }

dynamic=$("$readelf" -dW "$library")
segments=$("$readelf" -lW "$library")
symbols=$("$readelf" --dyn-syms -W "$library" | awk 'NF >= 8 && $1 ~ /^[0-9]+:$/ { print $4, $5, $7, $8 }')
echo "$segments" | grep -q GNU_RELRO || fail "the relocated parts stay writable: no RELRO"
echo "$dynamic" | grep -qE 'BIND_NOW|Flags:.* NOW' || fail "functions are bound when first called: no BIND_NOW"
echo "$segments" | grep GNU_STACK | grep -q ' RW ' || fail "the stack can be executed"
! echo "$segments" | grep -q 'LOAD.* RWE ' || fail "a segment is writable and executable"
! echo "$dynamic" | grep -q TEXTREL || fail "code is relocated: TEXTREL"
echo "$symbols" | grep -q ' UND __stack_chk_fail' || fail "no function guards its stack"
[ "$fortified" = 0 ] || echo "$symbols" | grep -q ' UND __[a-z]*_chk@' || fail "libc is called without its checks: no FORTIFY"

# A program with a function of the same name does not get the library's calls of its own.
exported=$(echo "$symbols" | awk '$1 == "FUNC" && $2 != "LOCAL" && $3 != "UND" { sub("@.*", "", $4); print $4 }' | sort -u)
[ -n "$exported" ] || fail "nothing is exported"
bound=$("$readelf" -rW "$library" | awk '$3 ~ /^R_/ && NF >= 5 { sub("@.*", "", $5); print $5 }' | sort -u)
outside=$(printf '%s\n%s\n' "$exported" "$bound" | sort | uniq -d)
[ -z "$outside" ] || fail "bound outside the library: $outside"

# libc's functions are known by their version and FreeType's by their names.
if [ "$imports" != /dev/null ]; then
    undefined=$(echo "$symbols" | awk '$2 == "GLOBAL" && $3 == "UND" && $4 !~ /@|^FT_/ { print $4 }' | LC_ALL=C sort)
    [ "$undefined" = "$(LC_ALL=C sort "$imports")" ] || fail "left undefined: $undefined"
fi
exit $failed
