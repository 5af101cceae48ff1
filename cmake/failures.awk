# failures.awk: of what a GoogleTest program prints, the tests that failed, crashed or did not end, and what stands outside of tests.
function show(    at) {
    for (at = 1; at <= count; ++at) print held[at]
    inside = 0
}
{ sub(/\r$/, "") }
/^\[ RUN      \] / { inside = 1; count = crashed = 0 }
inside { held[++count] = $0 }
inside && /Unhandled exception:/ { crashed = 1 }
inside && /\[  FAILED  \] / { show(); next }
# Wine's debugger may tell of another process that crashed meanwhile.
inside && /\[       OK \] / { if (crashed) show(); inside = 0; next }
inside && /\[  SKIPPED \] / { show(); next }
inside || /^\[----------\]/ || /^$/ { next }
{ print }
END { if (inside) show() }
