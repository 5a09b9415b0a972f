#!/bin/sh
# Usage: summary.sh OUTPUT LOG LOOPS
#
# A readable table from what ravikTest printed (OUTPUT) and logged (LOG) when it profiled with LOOPS loops: which groups
# passed, and how long a call of each function took on each target that ran; last, the program's verdict.
exec awk -v loops="$3" '
    function ratio(a, b) { return (a > 0 && b > 0) ? sprintf("%.1f", a / b) : "-" }
    function formatted(total) { return (total > 0) ? sprintf("%.1f", total / loops) : "-" }

    # D/ravik_test: RAVIK_TEST, ABSDIFF=>PASS
    FILENAME == ARGV[2] && match($0, /RAVIK_TEST, [A-Z0-9]+=>(PASS|FAIL)/) {
        split(substr($0, RSTART + 12, RLENGTH - 12), verdict, "=>")
        groups[verdict[2]] = groups[verdict[2]] " " verdict[1]
    }
    FILENAME == ARGV[1] && /^RAVIK_PROFILE, FIT:/ { fit = substr($0, 16) }
    # RAVIK_PROFILE, rvkAbsDiffu8 :: PASS, 812, 64, 0, 0, 0, 66, 65, 66, 65
    FILENAME == ARGV[1] && / :: (PASS|FAIL)/ {
        fields = split(substr($0, 16), field, /, | :: /)
        row[++rows] = sprintf("%-40s %s", field[1], field[2])
        for (i = 3; i <= fields; i++) {
            time[rows, i - 2] = field[i]
            if (field[i] > 0)
                used[i - 2] = 1
        }
    }
    END {
        columns = split("C;VECTA;NDSP;NDSPw/oRem;GPU;LowPower;Performance;CPUOffload;CPUPerform.", title, ";")
        if (rows) {
            printf "%-40s %4s", "Microseconds a call", ""
            for (i = 1; i <= columns; i++)
                if (used[i])
                    printf " %11s", title[i]
            print "     C/VECTA"
        }
        for (r = 1; r <= rows; r++) {
            printf "%s", row[r]
            for (i = 1; i <= columns; i++)
                if (used[i])
                    printf " %11s", formatted(time[r, i])
            printf " %11s\n", ratio(time[r, 1], time[r, 2])
        }
        print ""
        if (groups["PASS"]) print "Groups that passed:" groups["PASS"]
        if (groups["FAIL"]) print "Groups that FAILED:" groups["FAIL"]
        print fit ? fit : "ravikTest came to no verdict; see its log"
    }' "$1" "$2"
