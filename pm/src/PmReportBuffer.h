#pragma once

#include <array>
#include <cstddef>
#include <cstring>
#include <string_view>

#include "PmReportNumbers.h"

namespace VorPm {

/// Collects text until a stream takes it in one piece. One per thread that writes reports, used by one report
/// at a time: it is empty whenever no GP is being written.
class PmReportBuffer {
  public:
    static PmReportBuffer& ofThisThread() {
        thread_local PmReportBuffer buffer;
        return buffer;
    }

    std::size_t room() const { return _text.size() - _size; }
    std::string_view text() const { return {_text.data(), _size}; }
    void clear() { _size = 0; }

    /// There is room for the text, or the longest number.
    void append(std::string_view text) {
        std::memcpy(_text.data() + _size, text.data(), text.size());
        _size += text.size();
    }
    template <class NumberT>
    void appendNumber(NumberT number) {
        _size = static_cast<std::size_t>(printNumber(_text.data() + _size, number) - _text.data());
    }

  private:
    std::array<char, 65'536> _text;
    std::size_t _size = 0;
};

}  // namespace VorPm
