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

/// The numbers below it have eight digits.
constexpr std::uint64_t tenTo8 = 100'000'000;

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

/// How many of eight digits there are without the zeros behind them.
constexpr int withoutTrailingZeros(std::uint64_t digits) {
    return 8 - std::countl_zero(digits) / 8;
}

/// The most digits of a double that are printed.
constexpr int significantDigits = 15;

/// A number of 15 digits, and the power of ten that the first one stands for.
struct Decimal {
    std::uint64_t digits;
    int exponent;
};

/// The decimal nearest to a number from 10^-4 to 10^9; of two that are equally near, the even one.
inline Decimal nearestDecimal(double number) {
    // Doubles have all of these exactly.
    static constexpr double powersOfTen[] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,  1e8,  1e9,
                                             1e10, 1e11, 1e12, 1e13, 1e14, 1e15, 1e16, 1e17, 1e18, 1e19};
    constexpr std::uint64_t limit = 1'000'000'000'000'000;
    constexpr double half = 0.5;
    constexpr int lastPlace = significantDigits - 1;
    // That of the power of two below the number, whose logarithm is 1233 / 4096 for each place, or one more.
    int exponent = std::ilogb(number) * 1233 >> 12;
    exponent += number * powersOfTen[lastPlace - exponent] >= limit ? 1 : 0;
    const double scale = powersOfTen[lastPlace - exponent];
    auto digits = static_cast<std::uint64_t>(number * scale);
    // The product is rounded, and may be an integer only thereby, which is the nearest one then. On which
    // side of the middle between two integers it is tells a distance whose sign is that of the exact one.
    const double distance = std::fma(number, scale, -(static_cast<double>(digits) + half));
    digits += distance > 0 || (distance == 0 && digits % 2 != 0) ? 1 : 0;
    return digits < limit ? Decimal{digits, exponent} : Decimal{digits / 10, exponent + 1};
}

/// Prints a number from 10^-4 to 10^9; returns the end.
inline char* printDecimal(char* to, double number) {
    constexpr std::size_t mostDecimals = 16;
    const auto [digits, exponent] = nearestDecimal(number);
    // Of these 16 digits the first is a zero, to be skipped.
    const std::uint64_t upper = eightDigits(digits / tenTo8);
    const std::uint64_t lower = eightDigits(digits % tenTo8);
    const int count = (lower != 0 ? 8 + withoutTrailingZeros(lower) : withoutTrailingZeros(upper)) - 1;
    if (exponent < 0) {
        std::memcpy(to, "0.000", 5);
        to += 1 - exponent;
        printDigits(printDigits(to, upper, 1), lower, 0);
        return to + count;
    }
    printDigits(printDigits(to, upper, 1), lower, 0);
    char* const point = to + exponent + 1;
    if (point >= to + count) {
        return point;
    }
    char decimals[mostDecimals];
    std::memcpy(decimals, point, mostDecimals);
    std::memcpy(point + 1, decimals, mostDecimals);
    *point = '.';
    return to + count + 1;
}

/// At most 15 significant digits, as `printf("%.15g")` prints the number in the "C" locale.
inline char* printNumber(char* to, double number) {
    constexpr double smallestDecimal = 1e-4;
    constexpr double decimalLimit = 1e9;
    const double magnitude = std::fabs(number);
    if (magnitude >= smallestDecimal && magnitude < decimalLimit) {
        *to = '-';
        return printDecimal(to + (number < 0 ? 1 : 0), magnitude);
    }
    return std::to_chars(to, to + longestNumber, number, std::chars_format::general, significantDigits).ptr;
}

}  // namespace VorPm
