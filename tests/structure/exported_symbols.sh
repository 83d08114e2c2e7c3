#!/bin/sh
# Fails unless the library exports its two entry points and nothing else. Argument: the library.
set -eu
exported=$(nm --dynamic --defined-only --format=posix "$1" | cut -d ' ' -f 1 | sort | tr '\n' ' ')
if [ "$exported" != "kelLCMinit kelLCMterminate " ]; then
    echo "exported: $exported"
    exit 1
fi
