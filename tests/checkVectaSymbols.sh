#!/bin/sh
# Usage: checkVectaSymbols.sh NM ISA OBJECT...
#
# A vecta object is built for an instruction set that the processor may lack. If it defined a weak or unique symbol, the
# linker could take that definition for the whole program; so it may define only symbols of its own namespace.
nm=$1
isa=$2
shift 2
leaks=$("$nm" -C --defined-only -A "$@" | awk -v home="rvk::vecta::$isa::" '
    { entry = $0; sub(/^[^ ]*:[0-9a-fA-F]* */, "", entry); type = substr(entry, 1, 1); name = substr(entry, 3) }
    type ~ /[WwVvu]/ || (type ~ /[A-Z]/ && index(name, home) == 0) { print }')
if [ -n "$leaks" ]; then
    printf 'symbols that leave the vecta objects for %s:\n%s\n' "$isa" "$leaks"
    exit 1
fi
echo "$# objects define nothing outside rvk::vecta::$isa"
