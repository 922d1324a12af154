#include "kelpcore/utility/ReplaceInString.h"

namespace kelpcore::utility
{

UTF16String ReplaceInString(const UTF16String& inText, const UTF16String& inParameter0,
                            const UTF16String& inParameter1, const UTF16String& inParameter2,
                            const UTF16String& inParameter3, const UTF16String& inParameter4,
                            const UTF16String& inParameter5, const UTF16String& inParameter6,
                            const UTF16String& inParameter7, const UTF16String& inParameter8,
                            const UTF16String& inParameter9)
{
    const UTF16String* const parameters[] = {
        &inParameter0, &inParameter1, &inParameter2, &inParameter3, &inParameter4,
        &inParameter5, &inParameter6, &inParameter7, &inParameter8, &inParameter9};

    UTF16String result;
    result.reserve(inText.size());
    for (std::size_t at = 0; at < inText.size(); ++at)
    {
        const char16_t next = at + 1 < inText.size() ? inText[at + 1] : u'\0';
        if (inText[at] == u'@' && next >= u'0' && next <= u'9')
        {
            result += *parameters[next - u'0'];
            ++at;
        }
        else
        {
            result += inText[at];
        }
    }
    return result;
}

void ReplaceAllStringInString(UTF16String& ioText, const UTF16String& inOld,
                              const UTF16String& inNew)
{
    if (inOld.empty() || ioText.find(inOld) == UTF16String::npos)
        return;
    UTF16String result;
    std::size_t from = 0;
    for (std::size_t at = ioText.find(inOld); at != UTF16String::npos;
         at = ioText.find(inOld, from))
    {
        result.append(ioText, from, at - from).append(inNew);
        from = at + inOld.size();
    }
    result.append(ioText, from, UTF16String::npos);
    ioText.swap(result);
}

}  // namespace kelpcore::utility
