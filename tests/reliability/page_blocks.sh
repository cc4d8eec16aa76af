#!/bin/sh
# page_blocks.sh PAGE: the C++ blocks of a page, one after the other, as one source file.
# page_blocks.sh PAGE FILE: whether they are that file, word by word.
blocks() { awk '/^```cpp$/ { inside = 1; if (n++) print ""; next } /^```$/ { inside = 0 } inside' "$1"; }
[ $# -eq 1 ] && { blocks "$1"; exit; }
blocks "$1" | diff - "$2" || { echo "$2 is not what $1 shows"; exit 1; }
