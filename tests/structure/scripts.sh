#!/bin/bash
# Fails when the scripts do not say, in a line, why they cannot begin, or when a copied build tree could not start. Arguments: the project's folder, the node.
set -eu
project=$1 node=$2
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
mkdir "$folder/tools" "$folder/copy"
cp -r "$project/scripts" "$folder/copy"
cd "$folder/copy"
for tool in bash cat dirname env grep sed; do
    ln -s "$(command -v $tool)" "$folder/tools"
done
failed=0

# A tool that prints the text and ends with the status.
pretend() { printf '#!/bin/bash\necho "%s"\nexit %d\n' "$2" "$3" >"$folder/tools/$1" && chmod +x "$folder/tools/$1"; }

# expect WHAT TEXT: the run script fails, and the text is in the one line that it writes to standard error.
expect() {
    local said status=0
    said=$(PATH=$folder/tools scripts/run 2>&1 >/dev/null) || status=$?
    if [ $status -eq 0 ] || [ "$(grep -c '' <<<"$said")" -ne 1 ] || ! grep -qF -- "$2" <<<"$said"; then
        printf '%s: status %d, and not a line with "%s":\n%s\n' "$1" $status "$2" "$said"
        failed=1
    fi
}

expect "another distribution" "packages of Debian 12 hold; install them first: g++ cmake"
pretend dpkg-query "" 1
pretend apt-get "E: Unable to locate package cmake" 100
pretend id 1000 0
expect "neither root nor sudo" "Run as root: apt-get install g++ cmake"
pretend id 0 0
expect "no network" "E: Unable to locate package cmake. Check the network, then run as root: apt-get install g++ cmake"
pretend dpkg-query installed 0
mkdir -p build/release
printf 'CMAKE_CACHEFILE_DIR:INTERNAL=/elsewhere\nCMAKE_HOME_DIRECTORY:INTERNAL=%s\n' "$PWD" >build/release/CMakeCache.txt
expect "a copied build tree" "built elsewhere (/elsewhere) and cannot be used here. Remove it, and run again: rm -r build/release"

if readelf -d "$node" | grep RUNPATH | grep -E '(\[|:)/'; then
    echo "a build tree that was copied elsewhere does not use its own libraries"
    failed=1
fi

# The help needs no build, and names options that exist.
"$node" run --help >options
for option in $(PATH=$folder/tools scripts/run --reports 1 --help | grep -o '^  --[a-z]*'); do
    grep -q -- "$option" options || { echo "help names $option, which the node does not have" && failed=1; }
done
scripts/run --help | grep -q -- '--root FOLDER' || { echo "no help without a build" && failed=1; }
exit $failed
