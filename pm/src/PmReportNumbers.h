// The texts of numbers in a report; independent of every locale.
#pragma once

#include <bit>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace VorPm {

/// Room for the longest text: sign, 15 digits, point, exponent "e-308"; or sign and 19 digits. What is behind
/// a text in this room may be written to, too.
constexpr std::size_t longestNumber = 32;

/// Eight decimal digits of a number below 10^8, one in each byte, the first in the lowest: halves of four
/// digits, then pairs, then single ones are moved apart, all of a step at once.
constexpr std::uint64_t eightDigits(std::uint64_t number) {
    std::uint64_t upper = number / 10'000;
    std::uint64_t digits = upper | (number - upper * 10'000) << 32;
    upper = digits * 10'486 >> 20 & 0x0000'007F'0000'007F;
    digits = upper | (digits - upper * 100) << 16;
    upper = digits * 103 >> 10 & 0x000F'000F'000F'000F;
    return upper | (digits - upper * 10) << 8;
}

/// How many of eight digits are leading zeros, as far as eight.
constexpr int leadingZeros(std::uint64_t digits) {
    // A bit that no digit has is found where there is none, without asking for that.
    constexpr std::uint64_t behind = std::uint64_t{1} << 63;
    return (std::countr_zero(digits | behind) + 1) / 8;
}

/// Prints eight digits but for the first ones; returns the end.
inline char* printDigits(char* to, std::uint64_t digits, int skipped) {
    constexpr std::uint64_t zeros = 0x3030'3030'3030'3030;
    // In two steps, for all 64 bits at once cannot be skipped.
    std::uint64_t text = (digits | zeros) >> 4 * skipped >> 4 * skipped;
    if constexpr (std::endian::native == std::endian::big) {
        text = __builtin_bswap64(text);
    }
    std::memcpy(to, &text, sizeof text);
    return to + (8 - skipped);
}

/// Prints the number in base 10; returns the end. The lengths of counters cannot be foreseen, so no branch
/// depends on them, but for those of more than 16 digits: all places are made, and the leading zeros skipped.
inline char* printNumber(char* to, std::uint64_t number) {
    constexpr std::uint64_t tenTo8 = 100'000'000;
    constexpr std::uint64_t tenTo16 = tenTo8 * tenTo8;
    constexpr std::uint64_t lastPlace = std::uint64_t{1} << 56;
    const bool isLong = number >= tenTo16;
    if (isLong) {
        const std::uint64_t first = eightDigits(number / tenTo16);
        to = printDigits(to, first, leadingZeros(first));
        number %= tenTo16;
    }
    const std::uint64_t upper = eightDigits(number / tenTo8);
    const std::uint64_t lower = eightDigits(number % tenTo8);
    const bool isShort = !isLong && upper == 0;
    to = printDigits(to, upper, leadingZeros(upper) * !isLong);
    return printDigits(to, lower, leadingZeros(lower | lastPlace) * isShort);
}

inline char* printNumber(char* to, std::int64_t number) {
    const std::uint64_t sign = number < 0;
    *to = '-';
    return printNumber(to + sign, (static_cast<std::uint64_t>(number) ^ (0 - sign)) + sign);
}

inline char* printNumber(char* to, std::uint32_t number) {
    constexpr std::size_t longest = 10;
    return std::to_chars(to, to + longest, number).ptr;
}

/// Prints a number with up to six decimals that has at most 15 digits; null for any other. A decimal of 15
/// digits survives the way to the nearest double and back, so the number is that decimal exactly when
/// dividing gives it again.
inline char* printShortDecimal(char* to, double number) {
    constexpr double smallest = 1e-4;
    constexpr double limit = 1e9;
    constexpr std::uint64_t scale = 1'000'000;
    constexpr double half = 0.5;
    const double magnitude = std::fabs(number);
    if (!(magnitude >= smallest && magnitude < limit)) {
        return nullptr;
    }
    const auto digits = static_cast<std::uint64_t>(magnitude * scale + half);
    if (static_cast<double>(digits) / scale != magnitude) {
        return nullptr;
    }
    *to = '-';
    to = printNumber(to + (number < 0 ? 1 : 0), digits / scale);
    const std::uint64_t decimals = eightDigits(digits % scale * 100);
    if (decimals == 0) {
        return to;
    }
    *to = '.';
    printDigits(to + 1, decimals, 0);
    return to + 1 + 8 - std::countl_zero(decimals) / 8;
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
