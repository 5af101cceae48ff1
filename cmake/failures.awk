# failures.awk: of what a GoogleTest program prints, the tests that failed, crashed or did not end, and what stands outside of tests.
function show() {
    printf "%s", held
    inside = 0
}
{ sub(/\r$/, "") }
/^\[ RUN      \] / { inside = 1; held = "" }
inside { held = held $0 "\n" }
inside && /\[  FAILED  \] / { show(); next }
# Wine's debugger may tell of another process that crashed meanwhile.
inside && /\[       OK \] / { if (held ~ /Unhandled exception:/) show(); inside = 0; next }
inside && /\[  SKIPPED \] / { show(); next }
inside || /^\[----------\]/ || /^$/ { next }
{ print }
END { if (inside) show() }
