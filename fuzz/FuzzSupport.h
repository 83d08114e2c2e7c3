// What the fuzz targets share.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

#include <sys/mman.h>
#include <unistd.h>

namespace VorFuzz {

/// Ends the run, so that the input is kept, when what always has to hold does not.
inline void expect(bool holds, const char* what) {
    if (!holds) {
        std::fprintf(stderr, "Does not hold: %s\n", what);
        std::abort();
    }
}

inline std::string textOf(const std::uint8_t* data, std::size_t size) {
    return {reinterpret_cast<const char*>(data), size};
}

/// A file in memory, for readers that take paths.
class InputFile {
  public:
    explicit InputFile(const std::string& text) : _descriptor(::memfd_create("input", MFD_CLOEXEC)) {
        expect(::write(_descriptor, text.data(), text.size()) == static_cast<ssize_t>(text.size()),
               "an input can be written to memory");
    }
    ~InputFile() { ::close(_descriptor); }
    InputFile(const InputFile&) = delete;
    InputFile& operator=(const InputFile&) = delete;

    std::string path() const { return "/proc/self/fd/" + std::to_string(_descriptor); }

  private:
    int _descriptor;
};

}  // namespace VorFuzz
