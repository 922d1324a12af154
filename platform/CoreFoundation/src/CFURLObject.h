// CFURLObject: a file URL is the absolute path of its file, byte for byte.
#ifndef COREFOUNDATION_CFURLOBJECT_H
#define COREFOUNDATION_CFURLOBJECT_H

#include "CFObject.h"

#include <string>

struct __CFURL : cf::Object
{
    explicit __CFURL(std::string&& inPath) : Object(cf::kURLType), mPath(std::move(inPath)) {}

    const std::string mPath;
};

#endif
