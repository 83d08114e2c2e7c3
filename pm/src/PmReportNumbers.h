// The texts of numbers in a report; independent of every locale.
#pragma once

#include <charconv>
#include <cmath>
#include <concepts>
#include <cstddef>
#include <cstdint>

namespace VorPm {

/// Room for the longest text: sign, 15 digits, point, exponent "e-308"; or sign and 19 digits; and more,
/// which may be written to, but does not count.
constexpr std::size_t longestNumber = 32;

/// Prints the number in base 10, "-" when negative, where there is room for the longest; returns the end.
char* printNumber(char* to, std::integral auto number) {
    return std::to_chars(to, to + longestNumber, number).ptr;
}

/// The same for a number with up to six decimals that has at most 15 digits; null for any other. A decimal of
/// 15 digits survives the way to the nearest double and back, so the number is that decimal exactly when
/// dividing gives it again.
inline char* printShortDecimal(char* to, double number) {
    constexpr double smallest = 1e-4;
    constexpr double limit = 1e9;
    constexpr std::int64_t scale = 1'000'000;
    const double magnitude = std::fabs(number);
    if (!(magnitude >= smallest && magnitude < limit)) {
        return nullptr;
    }
    const auto scaled = static_cast<std::int64_t>(magnitude * scale + 0.5);
    if (static_cast<double>(scaled) / scale != magnitude) {
        return nullptr;
    }
    *to = '-';
    to = printNumber(to + (number < 0 ? 1 : 0), scaled / scale);
    std::int64_t decimals = scaled % scale;
    if (decimals == 0) {
        return to;
    }
    *to++ = '.';
    for (std::int64_t unit = scale / 10; decimals != 0; unit /= 10) {
        *to++ = static_cast<char>('0' + decimals / unit);
        decimals %= unit;
    }
    return to;
}

/// At most 15 significant digits, as `printf("%.15g")` prints the number in the "C" locale.
inline char* printNumber(char* to, double number) {
    constexpr int significantDigits = 15;
    char* const end = printShortDecimal(to, number);
    return end != nullptr
               ? end
               : std::to_chars(to, to + longestNumber, number, std::chars_format::general, significantDigits)
                     .ptr;
}

}  // namespace VorPm
