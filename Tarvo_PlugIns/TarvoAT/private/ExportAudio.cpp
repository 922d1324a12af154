#include "Tarvo_PlugIns/TarvoAT/private/ExportAudio.h"

#include <kelpcore/utility/NumberText.h>

namespace tarvo
{
namespace
{

struct SampleTypeBits
{
    AudioSampleType mSampleType;
    UInt32 mBits;
};

constexpr SampleTypeBits kSampleTypes[] = {
    {kTarvoSampleType8, 8},
    {kTarvoSampleType16, 16},
    {kTarvoSampleType24, 24},
    {kTarvoSampleType32, 32},
};

}  // namespace

UInt32 BitsPerChannelOfSampleType(std::int32_t inSampleType)
{
    for (const SampleTypeBits& row : kSampleTypes)
        if (row.mSampleType == inSampleType)
            return row.mBits;
    return 0;
}

UInt32 QueryFilterFileType(const TarvoFormatInterface& inFormat)
{
    const UTF16String filterId = inFormat.GetFilterId();
    std::uint32_t fileType = 0;
    if (!filterId.empty())
        kelpcore::utility::StringToNumber(filterId, fileType, 1);
    return fileType;
}

}  // namespace tarvo
