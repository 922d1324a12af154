// NonOptionalDynamicCast: a cast to a derived class that has to succeed.
#ifndef KELPCORE_UTILITY_NONOPTIONALDYNAMICCAST_H
#define KELPCORE_UTILITY_NONOPTIONALDYNAMICCAST_H

#include "kelpcore/Export.h"
#include "kelpcore/Strings.h"

#include <stdexcept>

namespace kelpcore::utility
{

/// Its text is the localised "Invalid type conversion."; what() gives it in UTF-8.
class KELPCORE_EXPORT InvalidTypeConversion : public std::runtime_error
{
public:
    InvalidTypeConversion();
    ~InvalidTypeConversion() override;
};

/// Throws InvalidTypeConversion for null and for an object of another class.
template <typename Derived, typename Base>
Derived& NonOptionalDynamicCast(Base* inObject)
{
    Derived* const derived = dynamic_cast<Derived*>(inObject);
    if (!derived)
        throw InvalidTypeConversion();
    return *derived;
}

}  // namespace kelpcore::utility

#endif
