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

/// Splits each of the numbers into its upper part, given, and `numbers - upper * tens`, moved up by the bits.
constexpr std::uint64_t moveApart(std::uint64_t numbers, std::uint64_t upper, std::uint64_t tens, int bits) {
    // upper + (numbers - upper * tens << bits), with one multiplication
    return (numbers << bits) - upper * ((tens << bits) - 1);
}

/// Eight decimal digits of a number below 10^8, one in each byte, the first in the lowest: halves of four
/// digits, then pairs, then single ones are moved apart, all of a step at once.
constexpr std::uint64_t eightDigits(std::uint32_t number) {
    const std::uint64_t halves = moveApart(number, number / 10'000, 10'000, 32);
    const std::uint64_t pairs = moveApart(halves, halves * 10'486 >> 20 & 0x0000'007F'0000'007F, 100, 16);
    return moveApart(pairs, pairs * 103 >> 10 & 0x000F'000F'000F'000F, 10, 8);
}

/// Sixteen decimal digits of a number below 10^16.
struct SixteenDigits {
    constexpr explicit SixteenDigits(std::uint64_t number)
        : upper(eightDigits(static_cast<std::uint32_t>(number / tenTo8))),
          lower(eightDigits(static_cast<std::uint32_t>(number % tenTo8))) {}

    std::uint64_t upper, lower;
};

/// The bits of the leading zeros among eight digits, up to all 64.
constexpr unsigned leadingZeros(std::uint64_t digits) {
    // A bit that no digit has is found where there is none, without asking for that.
    constexpr std::uint64_t behind = std::uint64_t{1} << 63;
    return (static_cast<unsigned>(std::countr_zero(digits | behind)) + 1) & ~7U;
}

/// Prints eight digits but for the first ones, told in bits; returns the end.
inline char* printDigits(char* to, std::uint64_t digits, unsigned skipped) {
    constexpr std::uint64_t zeros = 0x3030'3030'3030'3030;
    // When all are skipped it does not matter what is there.
    std::uint64_t text = (digits | zeros) >> skipped % 64;
    if constexpr (std::endian::native == std::endian::big) {
        text = __builtin_bswap64(text);
    }
    std::memcpy(to, &text, sizeof text);
    return to + (64 - skipped) / 8;
}

/// Prints the number in base 10; returns the end. The lengths of counters cannot be foreseen, so no branch
/// depends on them, but for those of more than 16 digits: all places are made, and the leading zeros skipped.
inline char* printNumber(char* to, std::uint64_t number) {
    constexpr std::uint64_t tenTo16 = tenTo8 * tenTo8;
    constexpr std::uint64_t lastPlace = std::uint64_t{1} << 56;
    if (number >= tenTo16) {
        const std::uint64_t first = eightDigits(static_cast<std::uint32_t>(number / tenTo16));
        const SixteenDigits others(number % tenTo16);
        to = printDigits(to, first, leadingZeros(first));
        return printDigits(printDigits(to, others.upper, 0), others.lower, 0);
    }
    const auto [upper, lower] = SixteenDigits(number);
    to = printDigits(to, upper, leadingZeros(upper));
    // The zeros of the lower ones are leading only when there are no upper ones.
    return printDigits(to, lower, leadingZeros(lower | lastPlace | (upper != 0 ? 1U : 0U)));
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
    // 1233 / 4096 is just below the logarithm of 2, so the estimate is right or one too small.
    int exponent = std::ilogb(number) * 1233 >> 12;
    exponent += number * powersOfTen[lastPlace - exponent] >= limit ? 1 : 0;
    const double scale = powersOfTen[lastPlace - exponent];
    auto digits = static_cast<std::uint64_t>(number * scale);
    // The product is rounded. Where that made an integer of it, it is the nearest one; else the distance from
    // the middle between two tells, whose sign is exact.
    const double distance = std::fma(number, scale, -(static_cast<double>(digits) + half));
    digits += distance > 0 || (distance == 0 && digits % 2 != 0) ? 1U : 0U;
    return digits < limit ? Decimal{digits, exponent} : Decimal{digits / 10, exponent + 1};
}

/// Prints a number from 10^-4 to 10^9; returns the end.
inline char* printDecimal(char* to, double number) {
    static constexpr char leading[] = "0.000";
    constexpr std::size_t mostDecimals = 16;
    const auto [digits, exponent] = nearestDecimal(number);
    // The first of them is a zero, to be skipped.
    const auto [upper, lower] = SixteenDigits(digits);
    const int count = (lower != 0 ? 8 + withoutTrailingZeros(lower) : withoutTrailingZeros(upper)) - 1;
    if (exponent < 0) {
        std::memcpy(to, leading, sizeof leading);
        to += 1 - exponent;
        printDigits(printDigits(to, upper, 8), lower, 0);
        return to + count;
    }
    printDigits(printDigits(to, upper, 8), lower, 0);
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
