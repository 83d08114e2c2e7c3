# What the scripts share. To be sourced with the project as the working folder.

build_packages=(g++ cmake ninja-build libpoco-dev libcli11-dev nlohmann-json3-dev)
test_packages=(libgtest-dev libgmock-dev binutils)
check_packages=(clang clang-format clang-tidy python3)
bench_packages=(libgtest-dev libbenchmark-dev libxml2-dev gzip python3)
rest_packages=(collectd-core python3)
fuzz_packages=(clang libclang-rt-dev)

# Installs what is missing of the named packages; ends the script with a line that says what to do when it cannot.
install_packages() {
    if ! command -v apt-get >/dev/null || ! command -v dpkg-query >/dev/null; then
        expect_installed "$@"
        return
    fi
    local missing=() package
    for package in "$@"; do
        dpkg-query --show --showformat='${db:Status-Status}\n' "$package" 2>/dev/null | grep -qx installed ||
            missing+=("$package")
    done
    if [ ${#missing[@]} -eq 0 ]; then
        return
    fi
    local by_hand="apt-get install ${missing[*]}" as_root=() said
    if [ "$(id -u)" -ne 0 ]; then
        command -v sudo >/dev/null || give_up "Packages are missing, and there is no sudo. Run as root: $by_hand"
        as_root=(sudo)
    fi
    echo "Installing: ${missing[*]}"
    # Stale lists do when they name what is missing.
    "${as_root[@]}" apt-get update -qq >/dev/null 2>&1 || true
    said=$("${as_root[@]}" env DEBIAN_FRONTEND=noninteractive \
        apt-get install -y -qq --no-install-recommends "${missing[@]}" 2>&1) ||
        give_up "Could not install them: $(grep -m 1 '^E:' <<<"$said"). Check the network, then run as root: $by_hand"
}

# On a distribution without Debian's packages: says what is needed, and goes on with the tools that are there.
expect_installed() {
    echo "No apt-get here. This needs what these packages of Debian 12 hold; install them first: $*" >&2
    local tool
    for tool in c++ cmake ninja; do
        command -v "$tool" >/dev/null || exit 1
    done
}

give_up() {
    echo "$*" >&2
    exit 1
}

# build FOLDER CMAKE-OPTION...: configures and builds in the folder.
build() {
    local folder=$1
    shift
    refuse_copied_tree "$folder"
    cmake -S . -B "$folder" -G Ninja -DCMAKE_COMPILE_WARNING_AS_ERROR=ON "$@" >/dev/null
    cmake --build "$folder"
}

# CMake goes on only in the folder, and with the sources, that it began with.
refuse_copied_tree() {
    local folder=$1 entry place
    [ -f "$folder/CMakeCache.txt" ] || return 0
    for entry in "CMAKE_CACHEFILE_DIR:INTERNAL=$folder" "CMAKE_HOME_DIRECTORY:INTERNAL=."; do
        place=$(sed -n "s,^${entry%%=*}=,,p" "$folder/CMakeCache.txt")
        [ "$place" -ef "${entry#*=}" ] ||
            give_up "$folder was built elsewhere ($place) and cannot be used here. Remove it, and run again: rm -r $folder"
    done
}
