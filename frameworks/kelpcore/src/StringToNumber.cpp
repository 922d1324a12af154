// StringToNumber: whole texts of decimal digits, and nothing else.
#include "kelpcore/utility/NumberText.h"

#include <limits>
#include <string_view>

namespace kelpcore::utility
{
namespace
{

template <typename Number>
Number ParseWhole(std::u16string_view inText)
{
    const bool negative = std::numeric_limits<Number>::is_signed && inText.starts_with(u'-');
    const std::u16string_view digits = inText.substr(negative ? 1 : 0);
    if (digits.empty())
        throw NumberFormatError("a number needs a digit");

    std::int64_t value = 0;
    for (const char16_t digit : digits)
    {
        if (digit < u'0' || digit > u'9')
            throw NumberFormatError("not wholly a number");
        value = value * 10 + (negative ? u'0' - digit : digit - u'0');
        if (value < std::numeric_limits<Number>::min() ||
            value > std::numeric_limits<Number>::max())
            throw NumberFormatError("the number is out of range");
    }
    return static_cast<Number>(value);
}

}  // namespace

void StringToNumber(const UTF16String& inText, std::int32_t& outNumber, unsigned int)
{
    outNumber = ParseWhole<std::int32_t>(inText);
}

void StringToNumber(const UTF16String& inText, std::uint32_t& outNumber, unsigned int)
{
    outNumber = ParseWhole<std::uint32_t>(inText);
}

}  // namespace kelpcore::utility
