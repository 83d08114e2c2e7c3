#include "VorException.h"

#include <cstdio>

namespace Vor {

std::string formatText(const char* format, std::va_list arguments) {
    std::va_list again;
    va_copy(again, arguments);
    const int length = std::vsnprintf(nullptr, 0, format, arguments);
    std::string text(length > 0 ? static_cast<std::size_t>(length) : 0, '\0');
    if (length > 0) {
        std::vsnprintf(text.data(), text.size() + 1, format, again);
    }
    va_end(again);
    return text;
}

VorException::VorException(const char* format, ...) : _retCode(defaultRetCode) {
    std::va_list arguments;
    va_start(arguments, format);
    _text = formatText(format, arguments);
    va_end(arguments);
}

VorException::VorException(int retCode, const char* format, ...) : _retCode(retCode) {
    std::va_list arguments;
    va_start(arguments, format);
    _text = formatText(format, arguments);
    va_end(arguments);
}

const char* VorException::what() const noexcept {
    return _text.c_str();
}

}  // namespace Vor
