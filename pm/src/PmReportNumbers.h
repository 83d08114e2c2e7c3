// The texts of numbers in a report; independent of every locale.
#pragma once

#include <array>
#include <charconv>
#include <concepts>
#include <cstdint>
#include <string_view>

namespace VorPm {

/// The text of one number, held in place.
class NumberText {
  public:
    /// Base 10, "-" when negative.
    explicit NumberText(std::integral auto number) {
        _end = std::to_chars(_text.data(), _text.data() + _text.size(), number).ptr;
    }

    /// At most 15 significant digits, as `printf("%.15g")` prints it in the "C" locale.
    explicit NumberText(double number) {
        _end = std::to_chars(_text.data(), _text.data() + _text.size(), number, std::chars_format::general,
                             significantDigits)
                   .ptr;
    }

    NumberText(const NumberText&) = delete;
    NumberText& operator=(const NumberText&) = delete;

    std::string_view view() const { return {_text.data(), static_cast<std::size_t>(_end - _text.data())}; }

  private:
    static constexpr int significantDigits = 15;

    /// Room for the longest of both: sign, 15 digits, point, exponent "e-308"; or sign and 19 digits.
    std::array<char, 32> _text;
    char* _end;
};

}  // namespace VorPm
