#include "kelpcore/ZString.h"

#include "kelpcore/config/Localizer.h"
#include "kelpcore/utility/ReplaceInString.h"

namespace kelpcore
{

UTF16String ZString(const char* inLiteral, const UTF16String& inParameter0,
                    const UTF16String& inParameter1, const UTF16String& inParameter2,
                    const UTF16String& inParameter3, const UTF16String& inParameter4,
                    const UTF16String& inParameter5, const UTF16String& inParameter6,
                    const UTF16String& inParameter7, const UTF16String& inParameter8,
                    const UTF16String& inParameter9)
{
    UTF16String text = config::Localizer::Get().Translate(inLiteral);
    // Before the parameters, so that what a user names "#{endl}" keeps its name.
    utility::ReplaceAllStringInString(text, u"#{endl}", u"\n");
    return utility::ReplaceInString(text, inParameter0, inParameter1, inParameter2, inParameter3,
                                    inParameter4, inParameter5, inParameter6, inParameter7,
                                    inParameter8, inParameter9);
}

}  // namespace kelpcore
