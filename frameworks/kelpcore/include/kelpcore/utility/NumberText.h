// NumberText: numbers to text and back, independent of the C locale.
#ifndef KELPCORE_UTILITY_NUMBERTEXT_H
#define KELPCORE_UTILITY_NUMBERTEXT_H

#include "kelpcore/Strings.h"

#include <cstdint>
#include <stdexcept>

namespace kelpcore::utility
{

/// What StringToNumber throws for text that is not wholly a number, and for one out of range.
class KELPCORE_EXPORT NumberFormatError : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

/// Plain decimal digits with ".", no grouping and no exponent: at least inMinIntegerDigits before
/// the point, at most inMaxFractionDigits behind it, rounded half away from zero, zeros at the end
/// dropped, at most inMaxLength characters (cut behind that). inFlags is 0; no flag is defined.
/// 128 gives "128", 1411.2 "1411.2", 44.099 "44.1", -1 "-1". NaN gives "nan", infinities "inf",
/// "-inf".
KELPCORE_EXPORT UTF16String NumberToString(double inNumber, int inMinIntegerDigits,
                                           int inMaxFractionDigits, unsigned int inFlags,
                                           int inMaxLength);

/// Reads a decimal number that makes up the whole text: digits, with a leading "-" for signed
/// targets. An empty text, any other character and a value out of range throw NumberFormatError and
/// leave outNumber as it was. inFlags is 0 or 1; both read decimal.
KELPCORE_EXPORT void StringToNumber(const UTF16String& inText, std::int32_t& outNumber,
                                    unsigned int inFlags = 1);
KELPCORE_EXPORT void StringToNumber(const UTF16String& inText, std::uint32_t& outNumber,
                                    unsigned int inFlags = 1);

}  // namespace kelpcore::utility

#endif
