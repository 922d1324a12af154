#include "convert/FormatNames.h"

#include "tables/DataFormats.h"

namespace audiotoolbox
{

namespace
{

std::string SampleName(const AudioStreamBasicDescription& inFormat)
{
    const UInt32 flags = inFormat.mFormatFlags;
    const char* order =
        (flags & kAudioFormatFlagIsBigEndian) != 0 ? "big-endian " : "little-endian ";
    const char* kind = (flags & kAudioFormatFlagIsFloat) != 0           ? "floating point"
                       : (flags & kAudioFormatFlagIsSignedInteger) != 0 ? "signed integer"
                                                                        : "unsigned integer";
    return std::to_string(inFormat.mBitsPerChannel) + " bit " +
           (inFormat.mBitsPerChannel > 8 ? order : "") + kind;
}

}  // namespace

std::string FormatName(const AudioStreamBasicDescription& inFormat)
{
    const DataFormat* format = FindDataFormat(inFormat.mFormatID);
    if (format == nullptr)
        return {};
    std::string name = format->mName;
    if (inFormat.mFormatID == kAudioFormatLinearPCM && inFormat.mBitsPerChannel != 0)
        name += ", " + SampleName(inFormat);
    return name;
}

}  // namespace audiotoolbox
