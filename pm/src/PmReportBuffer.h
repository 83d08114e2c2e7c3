#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string_view>
#include <type_traits>

#include "PmReportNumbers.h"

namespace VorPm {

template <class T>
concept Number = std::is_arithmetic_v<T>;

/// A number between two texts, kept in place and copied in one step whatever its length.
struct ShortText {
    ShortText() = default;
    template <std::size_t before, std::size_t behind>
    ShortText(const char (&textBefore)[before], std::uint32_t number, const char (&textBehind)[behind]) {
        constexpr std::size_t longest = 10;
        static_assert(before - 1 + longest + behind - 1 <= sizeof text);
        std::memcpy(text.data(), textBefore, before - 1);
        char* const end = printNumber(text.data() + before - 1, number);
        std::memcpy(end, textBehind, behind - 1);
        size = static_cast<std::size_t>(end - text.data()) + behind - 1;
    }

    std::array<char, 32> text{};
    std::size_t size = 0;
};

/// Collects text until a stream takes it in one piece. One per thread that writes reports, used by one report
/// at a time. Pieces are texts, as they are, and numbers in base 10; what is appended has to fit.
class PmReportBuffer {
  public:
    /// On the heap, where a lack of memory is an exception; storage of the thread would end the process.
    static PmReportBuffer& ofThisThread() {
        thread_local std::unique_ptr<PmReportBuffer> buffer;
        if (buffer == nullptr) {
            buffer = std::make_unique<PmReportBuffer>();
        }
        return *buffer;
    }

    std::size_t room() const { return _text.size() - _size; }
    std::string_view text() const { return {_text.data(), _size}; }
    void clear() { _size = 0; }

    /// The room that a piece may take.
    template <std::size_t size>
    static constexpr std::size_t roomFor(const char (&/*literal*/)[size]) {
        return size - 1;
    }
    static constexpr std::size_t roomFor(std::string_view text) { return text.size(); }
    static constexpr std::size_t roomFor(const ShortText& text) { return text.text.size(); }
    static constexpr std::size_t roomFor(Number auto /*number*/) { return longestNumber; }

    /// One piece after the other.
    template <class... PiecesT>
    void append(const PiecesT&... pieces) {
        char* to = _text.data() + _size;
        ((to = put(to, pieces)), ...);
        _size = static_cast<std::size_t>(to - _text.data());
    }

  private:
    template <std::size_t size>
    static char* put(char* to, const char (&literal)[size]) {
        std::memcpy(to, literal, size - 1);
        return to + (size - 1);
    }
    static char* put(char* to, std::string_view text) {
        std::memcpy(to, text.data(), text.size());
        return to + text.size();
    }
    static char* put(char* to, const ShortText& text) {
        std::memcpy(to, text.text.data(), text.text.size());
        return to + text.size;
    }
    static char* put(char* to, Number auto number) { return printNumber(to, number); }

    std::array<char, 65'536> _text;
    std::size_t _size = 0;
};

}  // namespace VorPm
