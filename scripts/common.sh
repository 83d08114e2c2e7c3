# What the scripts share. To be sourced with the project as the working folder.

build_packages=(g++ cmake ninja-build libpoco-dev libcli11-dev nlohmann-json3-dev)
test_packages=(libgtest-dev libgmock-dev binutils)
check_packages=(clang clang-format clang-tidy python3)
bench_packages=(libgtest-dev libbenchmark-dev libxml2-dev gzip python3)
rest_packages=(collectd-core python3)
fuzz_packages=(clang libclang-rt-dev)

# Installs what is missing of the named packages.
install_packages() {
    local missing=() package
    for package in "$@"; do
        dpkg-query --show --showformat='${db:Status-Status}\n' "$package" 2>/dev/null | grep -qx installed ||
            missing+=("$package")
    done
    if [ ${#missing[@]} -eq 0 ]; then
        return
    fi
    echo "Installing: ${missing[*]}"
    local as_root=()
    if [ "$(id -u)" -ne 0 ]; then
        as_root=(sudo)
    fi
    "${as_root[@]}" apt-get update -qq
    "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
}

# build FOLDER CMAKE-OPTION...: configures and builds in the folder.
build() {
    local folder=$1
    shift
    cmake -S . -B "$folder" -G Ninja -DCMAKE_COMPILE_WARNING_AS_ERROR=ON "$@" >/dev/null
    cmake --build "$folder"
}
