#!/usr/bin/env bash
# wine.sh PROGRAM.exe [ARGUMENT...]: Wine, with its memory at addresses that stay the same. Where the
# kernel chooses them by chance, the heap of Wine's own program lies on the page that every Windows
# program shares with the system once in some 6,000 starts, and that start fails with exit code 1.
set -u
wine=$(command -v wine64 || echo /usr/lib/wine/wine64)

# Some containers forbid it; then chance must do.
if setarch -R true 2>/dev/null; then
    exec setarch -R "$wine" "$@"
fi
exec "$wine" "$@"
