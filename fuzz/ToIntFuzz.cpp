// The input is the text of a number. An independent reading of it has to agree.
#include <charconv>
#include <limits>

#include "FuzzSupport.h"
#include "ToInt.h"

namespace {

enum class Outcome { Number, Invalid, OutOfRange, Negative };

template <class IntT>
Outcome convert(const std::string& text, IntT& number) {
    try {
        VorFuzz::expect(Vor::toInt(text, number), "a conversion answers true or throws");
        return Outcome::Number;
    } catch (const Vor::InvalidStringException&) {
        return Outcome::Invalid;
    } catch (const Vor::ValueRangeException&) {
        return Outcome::OutOfRange;
    } catch (const Vor::UnsignedIntExpectedException&) {
        return Outcome::Negative;
    }
}

template <class IntT>
Outcome expected(const std::string& text, IntT& number) {
    if (text.empty() || std::string(" \t\n\v\f\r").find(text.front()) != std::string::npos) {
        return Outcome::Invalid;
    }
    if (std::is_unsigned_v<IntT> && text.front() == '-') {
        return Outcome::Negative;
    }
    const bool plus = text.size() > 1 && text[0] == '+' && text[1] != '-';
    const char* const end = text.data() + text.size();
    IntT read{};
    const auto [stop, fault] = std::from_chars(text.data() + (plus ? 1 : 0), end, read);
    if (fault == std::errc::result_out_of_range) {
        return Outcome::OutOfRange;
    }
    // Without digits the number is 0.
    number = read;
    return fault == std::errc() && stop == end ? Outcome::Number : Outcome::Invalid;
}

template <class IntT>
void compare(const std::string& text) {
    constexpr IntT before = 42;
    IntT number = before;
    IntT right = before;
    VorFuzz::expect(convert(text, number) == expected(text, right), "the outcome is as expected");
    VorFuzz::expect(number == right, "the number is as expected");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text = VorFuzz::textOf(data, size);
    compare<unsigned short>(text);
    compare<int>(text);
    return 0;
}
