// CFStringObject: a string is its UTF-16 code units, whatever it was made from.
#ifndef COREFOUNDATION_CFSTRINGOBJECT_H
#define COREFOUNDATION_CFSTRINGOBJECT_H

#include "CFObject.h"

#include <string>

struct __CFString : cf::Object
{
    explicit __CFString(std::u16string&& inUnits)
        : Object(cf::kStringType), mUnits(std::move(inUnits))
    {
    }

    const std::u16string mUnits;
};

#endif
