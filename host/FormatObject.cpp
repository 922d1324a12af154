#include "host/FormatObject.h"

#include "host/Extensions.h"

namespace host
{

void FormatObject::SetChannelCount(std::int32_t inCount)
{
    mLabels.resize(inCount > 0 ? static_cast<std::size_t>(inCount) : 0);
}

tarvo::AudioChannelLabel FormatObject::GetChannelLabel(std::int64_t inChannel) const
{
    const std::uint32_t label =
        HasChannel(inChannel) ? mLabels[static_cast<std::size_t>(inChannel)] : 0;
    return static_cast<tarvo::AudioChannelLabel>(label);
}

void FormatObject::SetChannelLabel(std::int64_t inChannel, tarvo::AudioChannelLabel inLabel)
{
    if (HasChannel(inChannel))
        mLabels[static_cast<std::size_t>(inChannel)] = static_cast<std::uint32_t>(inLabel);
}

void FormatObject::SetFileExtensions(TarvoExtensionList* inExtensions)
{
    mExtensions = CopyExtensions(*inExtensions);
}

}  // namespace host
