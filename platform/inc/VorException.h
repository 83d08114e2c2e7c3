#pragma once

#include <cstdarg>
#include <exception>
#include <string>

namespace Vor {

/// A failed platform operation: a printf-formatted text and the operation's result code.
class VorException : public std::exception {
  public:
    static constexpr int defaultRetCode = -1;

    explicit VorException(const char* format, ...) __attribute__((format(printf, 2, 3)));
    VorException(int retCode, const char* format, ...) __attribute__((format(printf, 3, 4)));

    const char* what() const noexcept override;
    int retCode() const noexcept { return _retCode; }

  private:
    std::string _text;
    int _retCode;
};

/// The text that `vprintf` would print.
std::string formatText(const char* format, std::va_list arguments) __attribute__((format(printf, 1, 0)));

}  // namespace Vor
