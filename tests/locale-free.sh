#!/bin/sh
# Fails when the product calls what follows the process's locale, which any module may set: another decimal point,
# other letters, another order. base/Text.h and std::from_chars do not.
cd "$(dirname "$0")/.." || exit 2
calls='strto(d|f|ld)|ato(f|i|l|ll)|sto(d|f|ld)|v?[fs]?scanf|is(alnum|alpha|digit|lower|print|punct|space|upper)|to(lower|upper)'
calls="$calls|strcoll|strxfrm|strftime|_?str(n?casecmp|n?icmp)|lstrcmpi?[AW]?|Char(Upper|Lower)\\w*|wv?sprintf[AW]?"
found=$(grep -rnE --include=*.cpp --include=*.h \
    -e "\\b($calls) *\\(" -e 'printf.*%[-+ #0-9.*]*l*[aefgAEFG]' -e '<(sstream|iomanip|locale|cctype)>' \
    base framework host plugin sdk tools)
[ -z "$found" ] || { echo "$found"; exit 1; }
