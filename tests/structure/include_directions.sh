#!/bin/sh
# Fails when a part of the project includes what it must not know. Argument: the project's folder.
set -eu
cd "$1"
failed=0

# refuse FOLDERS PATTERN WHY: no include line in the folders may name what matches.
refuse() {
    # shellcheck disable=SC2086
    found=$(grep -rnE "^ *#include +[<\"]([^>\"]*/)?($2)" $1 --include='*.h' --include='*.cpp' || true)
    report "$found" "$3"
}

# allow FOLDERS PATTERN WHY: every include line in the folders names what matches.
allow() {
    # shellcheck disable=SC2086
    found=$(grep -rnE '^ *#include' $1 --include='*.h' --include='*.cpp' | grep -vE "#include +[<\"]($2)[>\"]" || true)
    report "$found" "$3"
}

report() {
    if [ -n "$1" ]; then
        printf '%s:\n%s\n' "$2" "$1"
        failed=1
    fi
}

spi='(Vor|Kel)[A-Za-z]*Spi[A-Za-z]*\.h'
headers_of() { ls "$1" | grep '\.h$' | paste -s -d '|'; }
component=$(headers_of pm/src)
common=$(headers_of common/inc)
tests='(WallClock|LogCapture|TemporaryRoot|ReportCheck)\.h|g(test|mock)/'

allow platform/spi "std(int|def)\.h|$spi" "the services' interfaces include C standard headers only"
refuse platform/inc "$common|$component" "the platform's classes know nothing of what is built on them"
refuse "common platform" "$component" "the platform knows nothing of the component"
refuse "pm common platform" "(app|framework|services|model|counters)/|InputError" "the component knows nothing of the node"
refuse "node tests/system" "$component" "the node reaches the component through its entry points only"
refuse "pm common platform node" "$tests" "the product knows nothing of its tests"
exit $failed
