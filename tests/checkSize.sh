#!/bin/sh
# Usage: checkSize.sh FUNCTION_LIST OBJECT...
#
# How much code the vector implementations are on 32-bit Arm, where a phone pays for it: all of them must stay below 900 KB.
# A limit for the whole list would be reached when it is too late to ask what the functions before have taken, so the limit
# grows with the functions that there are: 60 KB for what they have in common, and for each its share of the rest.
list=$1
shift
rows=$(grep -c '^RVK_FUNCTION(' "$list")
functions=$(grep -cE '^RVK_FUNCTION\([^,]*,[^,]*, *YES' "$list")
limit=$((60 + 840 * functions / rows))

size -A "$@" | awk -v functions="$functions" -v limit="$limit" '
    # "path/ravikBlurV.cpp.o  :", then lines "section size address"
    / :$/ { family = $1; sub(/.*\//, "", family); sub(/^ravik/, "", family); sub(/V?\.cpp\.o$/, "", family) }
    $1 ~ /^\.(text|rodata)/ { bytes[family] += $2; all += $2 }
    END {
        printf "NEON text: %d KB for %d functions, limit %d KB;", (all + 1023) / 1024, functions, limit
        for (family in bytes)
            line[++n] = sprintf("%9d %s %d", bytes[family], family, (bytes[family] + 512) / 1024)
        for (i = 2; i <= n; i++) # insertion sort, the largest first
            for (j = i; j > 1 && line[j - 1] < line[j]; j--) { t = line[j]; line[j] = line[j - 1]; line[j - 1] = t }
        for (i = 1; i <= n; i++) { split(line[i], word, " "); printf " %s %d%s", word[2], word[3], i < n ? "," : "\n" }
        exit all > limit * 1024 || all == 0
    }'
