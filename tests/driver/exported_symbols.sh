#!/bin/sh
# exported_symbols.sh NM LIBRARY LIST: the library exports exactly the names in LIST.
exported=$("$1" -D --defined-only "$2" | awk '{ print $NF }' | grep -v '^__\(asan\|odr_asan\|tsan\|ubsan\|sanitizer\)' | sort)
listed=$(grep -v '^#' "$3" | sort)
[ "$exported" = "$listed" ] && exit 0
echo "The library's exports differ from $3 (left: listed, right: exported):"
echo "$listed" > "${TMPDIR:-/tmp}/listed.$$"
echo "$exported" | diff "${TMPDIR:-/tmp}/listed.$$" -
rm -f "${TMPDIR:-/tmp}/listed.$$"
exit 1
