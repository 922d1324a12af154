#include "kelpcore/utility/NonOptionalDynamicCast.h"

#include "kelpcore/config/Localizer.h"
#include "kelpcore/utility/StringConversion.h"

namespace kelpcore::utility
{
namespace
{

constexpr char kInvalidTypeConversion[] =
    "$$$/kelpcore/utility/Error/InvalidTypeConversion=Invalid type conversion.";

}  // namespace

InvalidTypeConversion::InvalidTypeConversion()
    : std::runtime_error(
          UTF16to8(config::Localizer::Get().Translate(kInvalidTypeConversion)).c_str())
{
}

InvalidTypeConversion::~InvalidTypeConversion() = default;

}  // namespace kelpcore::utility
