// HostFormatDescription: the last step of a format's description on its way to the host.
#ifndef TARVO_PLUGINS_TARVOAT_PRIVATE_HOSTFORMATDESCRIPTION_H
#define TARVO_PLUGINS_TARVOAT_PRIVATE_HOSTFORMATDESCRIPTION_H

#include <kelpcore/Strings.h>

namespace tarvo
{

/// The text, or the plug-in's name in the user's language for an empty one: a host never gets an
/// empty description.
UTF16String GetFormatDescription(const UTF16String& inText);

}  // namespace tarvo

#endif
