#pragma once

#include <cctype>
#include <cerrno>
#include <cstdlib>
#include <exception>
#include <limits>
#include <string>
#include <type_traits>

namespace Vor {

class ValueRangeException : public std::exception {
  public:
    const char* what() const noexcept override { return "Value range exception"; }
};

class InvalidStringException : public std::exception {
  public:
    const char* what() const noexcept override { return "Invalid string exception"; }
};

class UnsignedIntExpectedException : public std::exception {
  public:
    const char* what() const noexcept override { return "UnsignedInt Expected Exception"; }
};

/// Converts the decimal number at the start of `text`. Returns true, or throws one of the exceptions above.
/// When only what follows the number is at fault, `out` holds the number although an `InvalidStringException`
/// is thrown.
template <class IntT>
bool toInt(const std::string& text, IntT& out) {
    errno = 0;
    if (text.empty() || std::isspace(static_cast<unsigned char>(text.front())) != 0) {
        throw InvalidStringException();
    }
    char* end = nullptr;
    const auto convert = [&text, &end] {
        if constexpr (std::is_unsigned_v<IntT>) {
            return std::strtoull(text.c_str(), &end, 10);
        } else {
            return std::strtoll(text.c_str(), &end, 10);
        }
    };
    if (std::is_unsigned_v<IntT> && text.front() == '-') {
        throw UnsignedIntExpectedException();
    }
    const auto number = convert();
    if (errno == ERANGE || number < std::numeric_limits<IntT>::min() ||
        number > std::numeric_limits<IntT>::max()) {
        throw ValueRangeException();
    }
    out = static_cast<IntT>(number);
    if (end != text.c_str() + text.size()) {
        throw InvalidStringException();
    }
    return true;
}

}  // namespace Vor
