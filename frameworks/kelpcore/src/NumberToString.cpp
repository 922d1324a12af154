// NumberToString: rounds the decimal digits that a person would write for the number, not its
// binary value, so that 1.005 is a half and not a little less.
#include "kelpcore/utility/NumberText.h"

#include "kelpcore/utility/StringConversion.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <string>
#include <string_view>

namespace kelpcore::utility
{
namespace
{

// 0.DIGITS times ten to the power of mExponent; without leading zeros, and empty for zero.
struct Decimal
{
    std::string mDigits;
    int mExponent = 0;
};

// The fewest digits that read back as the same number. Independent of the locale.
Decimal ShortestDecimal(double inMagnitude)
{
    char text[32];
    const auto result =
        std::to_chars(text, text + sizeof text, inMagnitude, std::chars_format::scientific);
    const std::string_view view(text, static_cast<std::size_t>(result.ptr - text));
    const std::size_t mark = view.find('e');

    Decimal decimal;
    for (const char character : view.substr(0, mark))
        if (character != '.')
            decimal.mDigits += character;
    if (decimal.mDigits == "0")
        return {};
    const std::string_view exponent = view.substr(mark + (view[mark + 1] == '+' ? 2 : 1));
    std::from_chars(exponent.data(), exponent.data() + exponent.size(), decimal.mExponent);
    ++decimal.mExponent;
    return decimal;
}

void DropZerosAtEnd(std::string& ioDigits)
{
    ioDigits.erase(ioDigits.find_last_not_of('0') + 1);
}

// Keeps inFractionDigits digits behind the point; a half goes away from zero.
void Round(Decimal& ioDecimal, int inFractionDigits)
{
    const long long kept = static_cast<long long>(ioDecimal.mExponent) + inFractionDigits;
    if (kept >= static_cast<long long>(ioDecimal.mDigits.size()))
        return;
    if (kept < 0)
    {
        ioDecimal = {};
        return;
    }
    const bool up = ioDecimal.mDigits[static_cast<std::size_t>(kept)] >= '5';
    ioDecimal.mDigits.resize(static_cast<std::size_t>(kept));
    if (up)
    {
        // A carry runs through the nines at the end.
        ioDecimal.mDigits.erase(ioDecimal.mDigits.find_last_not_of('9') + 1);
        if (ioDecimal.mDigits.empty())
        {
            ioDecimal.mDigits.push_back('0');
            ++ioDecimal.mExponent;
        }
        ++ioDecimal.mDigits.back();
    }
    DropZerosAtEnd(ioDecimal.mDigits);
    if (ioDecimal.mDigits.empty())
        ioDecimal = {};
}

std::string IntegerText(const Decimal& inDecimal, std::size_t inMinDigits)
{
    const std::size_t places = static_cast<std::size_t>(std::max(inDecimal.mExponent, 0));
    std::string text = inDecimal.mDigits.substr(0, std::min(places, inDecimal.mDigits.size()));
    text.append(places - text.size(), '0');
    if (text.size() < inMinDigits)
        text.insert(0, inMinDigits - text.size(), '0');
    return text;
}

std::string FractionText(const Decimal& inDecimal)
{
    if (inDecimal.mDigits.empty())
        return {};
    if (inDecimal.mExponent < 0)
        return std::string(static_cast<std::size_t>(-inDecimal.mExponent), '0') + inDecimal.mDigits;
    const std::size_t places = static_cast<std::size_t>(inDecimal.mExponent);
    return places < inDecimal.mDigits.size() ? inDecimal.mDigits.substr(places) : std::string();
}

std::string PlainText(double inNumber, std::size_t inMinIntegerDigits, int inMaxFractionDigits)
{
    if (std::isnan(inNumber))
        return "nan";
    if (std::isinf(inNumber))
        return inNumber < 0 ? "-inf" : "inf";

    Decimal decimal = ShortestDecimal(std::fabs(inNumber));
    Round(decimal, inMaxFractionDigits);
    const std::string fraction = FractionText(decimal);
    std::string text = IntegerText(decimal, inMinIntegerDigits);
    if (text.empty() && fraction.empty())
        text.push_back('0');
    if (!fraction.empty())
    {
        text.push_back('.');
        text.append(fraction);
    }
    // What rounds to zero has no sign.
    if (inNumber < 0 && !decimal.mDigits.empty())
        text.insert(text.begin(), '-');
    return text;
}

}  // namespace

UTF16String NumberToString(double inNumber, int inMinIntegerDigits, int inMaxFractionDigits,
                           unsigned int, int inMaxLength)
{
    const int maxLength = std::max(inMaxLength, 0);
    const int minDigits = std::clamp(inMinIntegerDigits, 0, maxLength);
    std::string text =
        PlainText(inNumber, static_cast<std::size_t>(minDigits), std::max(inMaxFractionDigits, 0));
    if (text.size() > static_cast<std::size_t>(maxLength))
    {
        text.resize(static_cast<std::size_t>(maxLength));
        if (text.ends_with('.'))
            text.pop_back();
    }
    return AsciiToUTF16(text);
}

}  // namespace kelpcore::utility
