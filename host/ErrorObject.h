// ErrorObject: keeps the failure text of one entry call.
#ifndef HOST_ERROROBJECT_H
#define HOST_ERROROBJECT_H

#include "TarvoSDK/TarvoErrorInterface.h"
#include "host/HostText.h"

#include <string>

namespace host
{

class ErrorObject : public TarvoErrorInterface
{
public:
    void SetErrorText(const uint16* inText) override { mText = FromPlugIn(inText); }

    std::string mText;
};

}  // namespace host

#endif
