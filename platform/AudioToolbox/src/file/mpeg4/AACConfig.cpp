#include "file/AACConfig.h"

#include "file/mpeg4/BitReader.h"
#include "file/mpeg4/DecoderLayouts.h"
#include "file/mpeg4/ESDescriptor.h"

#include <algorithm>

namespace audiotoolbox
{
namespace
{

using mpeg4::BitReader;

constexpr UInt32 kRates[] = {96000, 88200, 64000, 48000, 44100, 32000, 24000,
                             22050, 16000, 12000, 11025, 8000,  7350};
constexpr UInt32 kExplicitRate = 15;
constexpr UInt32 kChannelCounts[] = {0, 1, 2, 3, 4, 5, 6, 8, 0, 0, 0, 7, 8, 24, 8};

constexpr UInt32 kLowComplexity = 2;
constexpr UInt32 kSBR = 5;
constexpr UInt32 kScalable = 6;
constexpr UInt32 kERScalable = 20;
constexpr UInt32 kERBSAC = 22;
constexpr UInt32 kERLowDelay = 23;
constexpr UInt32 kPS = 29;
constexpr UInt32 kERFirst = 17;
constexpr UInt32 kERELD = 39;

constexpr UInt32 kSBRSync = 0x2B7;
constexpr UInt32 kPSSync = 0x548;

// The types whose configuration is the general one of AAC's family.
constexpr UInt32 kGeneralTypes[] = {1, 2, 3, 4, 6, 17, 19, 20, 22, 23};

bool IsGeneralType(UInt32 inType)
{
    return std::find(std::begin(kGeneralTypes), std::end(kGeneralTypes), inType) !=
           std::end(kGeneralTypes);
}

UInt32 ReadObjectType(BitReader& ioBits)
{
    const UInt32 type = ioBits.Read(5);
    return type == 31 ? 32 + ioBits.Read(6) : type;
}

// Hz; 0 for a reserved index.
UInt32 ReadRate(BitReader& ioBits)
{
    const UInt32 index = ioBits.Read(4);
    if (index == kExplicitRate)
        return ioBits.Read(24);
    return index < std::size(kRates) ? kRates[index] : 0;
}

UInt32 ChannelCountOfConfiguration(UInt32 inConfiguration)
{
    return inConfiguration < std::size(kChannelCounts) ? kChannelCounts[inConfiguration] : 0;
}

// One list of elements: each is single or, where a flag says so, a pair.
UInt32 CountElements(BitReader& ioBits, UInt32 inElements)
{
    UInt32 channels = 0;
    for (; inElements > 0; --inElements)
    {
        channels += ioBits.ReadFlag() ? 2 : 1;
        ioBits.Skip(4);
    }
    return channels;
}

// Answers the channels of a program config element and stops behind it.
UInt32 ReadProgramConfig(BitReader& ioBits)
{
    ioBits.Skip(4 + 2 + 4);  // instance, object type, rate index
    const UInt32 front = ioBits.Read(4);
    const UInt32 side = ioBits.Read(4);
    const UInt32 back = ioBits.Read(4);
    const UInt32 lfe = ioBits.Read(2);
    const UInt32 data = ioBits.Read(3);
    const UInt32 coupling = ioBits.Read(4);
    for (const unsigned mixdownBits : {4u, 4u, 3u})
        if (ioBits.ReadFlag())
            ioBits.Skip(mixdownBits);

    const UInt32 channels = CountElements(ioBits, front + side + back) + lfe;
    ioBits.Skip(lfe * 4 + data * 4 + coupling * 5);
    ioBits.AlignToByte();
    const UInt32 commentBytes = ioBits.Read(8);
    ioBits.Skip(std::size_t{commentBytes} * 8);
    return channels;
}

UInt32 CoreFrames(UInt32 inType, bool inIsShort)
{
    if (inType == kERLowDelay || inType == kERELD)
        return inIsShort ? 480 : 512;
    return inIsShort ? 960 : 1024;
}

void ReadGeneralConfig(BitReader& ioBits, AACConfig& ioConfig)
{
    ioConfig.mFramesPerPacket = CoreFrames(ioConfig.mObjectType, ioBits.ReadFlag());
    if (ioBits.ReadFlag())
        ioBits.Skip(14);  // delay of a core coder
    const bool isExtended = ioBits.ReadFlag();
    if (ioConfig.mChannelConfig == 0)
        ioConfig.mChannelCount = ReadProgramConfig(ioBits);
    if (ioConfig.mObjectType == kScalable || ioConfig.mObjectType == kERScalable)
        ioBits.Skip(3);
    if (!isExtended)
        return;
    if (ioConfig.mObjectType == kERBSAC)
        ioBits.Skip(5 + 11);
    else if (ioConfig.mObjectType >= kERFirst)
        ioBits.Skip(3);
    ioBits.Skip(1);
}

// The extension that older decoders overlook, behind the core's configuration.
void ReadSyncExtension(BitReader& ioBits, AACConfig& ioConfig)
{
    if (ioBits.BitsLeft() < 16 || ioBits.Read(11) != kSBRSync || ReadObjectType(ioBits) != kSBR)
        return;
    if (!ioBits.ReadFlag())
        return;
    const UInt32 rate = ReadRate(ioBits);
    if (ioBits.IsPastEnd() || rate == 0)
        return;
    ioConfig.mHasSBR = true;
    ioConfig.mExtendedRate = rate;
    if (ioBits.BitsLeft() >= 12 && ioBits.Read(11) == kPSSync)
        ioConfig.mHasPS = ioBits.ReadFlag();
}

// The core's object type, rate and channels, behind an announcement of SBR and PS if there is one.
bool ReadTypeAndRates(BitReader& ioBits, AACConfig& outConfig)
{
    outConfig = AACConfig();
    outConfig.mObjectType = ReadObjectType(ioBits);
    outConfig.mSampleRate = ReadRate(ioBits);
    outConfig.mChannelConfig = ioBits.Read(4);
    outConfig.mChannelCount = ChannelCountOfConfiguration(outConfig.mChannelConfig);
    if (outConfig.mObjectType == kSBR || outConfig.mObjectType == kPS)
    {
        outConfig.mHasSBR = true;
        outConfig.mHasPS = outConfig.mObjectType == kPS;
        outConfig.mExtendedRate = ReadRate(ioBits);
        outConfig.mObjectType = ReadObjectType(ioBits);
        if (outConfig.mExtendedRate == 0)
            return false;
    }
    return outConfig.mSampleRate != 0 && !ioBits.IsPastEnd();
}

// Everything but the extension behind the core.
bool ReadConfig(BitReader& ioBits, AACConfig& outConfig)
{
    if (!ReadTypeAndRates(ioBits, outConfig))
        return false;
    if (outConfig.mObjectType == kERELD)
    {
        outConfig.mFramesPerPacket = CoreFrames(kERELD, ioBits.ReadFlag());
        return !ioBits.IsPastEnd();
    }
    if (!IsGeneralType(outConfig.mObjectType))
        return false;
    ReadGeneralConfig(ioBits, outConfig);
    return !ioBits.IsPastEnd();
}

AudioFormatListItem MakeItem(AudioFormatID inFormat, double inRate, UInt32 inFrames,
                             UInt32 inChannels, AudioChannelLayoutTag inTag)
{
    AudioFormatListItem item = {};
    item.mASBD.mFormatID = inFormat;
    item.mASBD.mSampleRate = inRate;
    item.mASBD.mFramesPerPacket = inFrames;
    item.mASBD.mChannelsPerFrame = inChannels;
    item.mChannelLayoutTag = inTag;
    return item;
}

// SBR doubles the rate; with an extended rate that says anything else the core alone is told.
bool HasLayers(const AACConfig& inConfig)
{
    return inConfig.mObjectType == kLowComplexity && inConfig.mHasSBR &&
           inConfig.mExtendedRate == 2 * inConfig.mSampleRate;
}

}  // namespace

bool ParseAudioSpecificConfig(std::span<const UInt8> inBytes, AACConfig& outConfig)
{
    BitReader bits(inBytes);
    if (!ReadConfig(bits, outConfig))
        return false;
    if (!outConfig.mHasSBR && outConfig.mObjectType == kLowComplexity)
        ReadSyncExtension(bits, outConfig);
    return true;
}

bool ParseCoreConfig(std::span<const UInt8> inBytes, AACConfig& outConfig, std::size_t& outBits)
{
    BitReader bits(inBytes);
    const bool isRead = ReadConfig(bits, outConfig) && outConfig.mObjectType != kERELD;
    outBits = bits.Position();
    return isRead;
}

std::vector<UInt8> AudioSpecificConfigOfCookie(std::span<const UInt8> inCookie)
{
    constexpr UInt8 kDescriptorTag = 0x03;
    constexpr std::size_t kVersionAndFlags = 4;
    std::span<const UInt8> bytes = inCookie;
    // A configuration never begins with a zero byte: it would be of object type 0.
    if (bytes.size() > kVersionAndFlags && bytes[0] == 0 &&
        bytes[kVersionAndFlags] == kDescriptorTag)
        bytes = bytes.subspan(kVersionAndFlags);
    if (!bytes.empty() && bytes[0] == kDescriptorTag)
    {
        mpeg4::ESDescriptor descriptor;
        bytes = mpeg4::ParseESDescriptor(bytes, descriptor) ? descriptor.mDecoderInfo
                                                            : std::span<const UInt8>();
    }
    if (bytes.size() < 2 || bytes[0] == 0)
        return {};
    return {bytes.begin(), bytes.end()};
}

void DescribeAAC(const AACConfig& inConfig, FileFacts& ioFacts)
{
    const mpeg4::DecoderLayout core =
        mpeg4::LayoutOfAACConfiguration(inConfig.mChannelConfig, inConfig.mChannelCount);
    const double rate = inConfig.mSampleRate;
    const UInt32 frames = inConfig.mFramesPerPacket;
    ioFacts.mChannelLayout = core.mRecord;
    ioFacts.mFormats.clear();
    if (HasLayers(inConfig))
    {
        if (inConfig.mHasPS && inConfig.mChannelCount == 1)
        {
            // The best layer's channels are the ones that the layout has to name.
            const mpeg4::DecoderLayout stereo = mpeg4::LayoutOfCount(2);
            ioFacts.mChannelLayout = stereo.mRecord;
            ioFacts.mFormats.push_back(
                MakeItem(kAudioFormatMPEG4AAC_HE_V2, rate * 2, frames * 2, 2, stereo.mTag));
        }
        ioFacts.mFormats.push_back(MakeItem(kAudioFormatMPEG4AAC_HE, rate * 2, frames * 2,
                                            inConfig.mChannelCount, core.mTag));
    }
    ioFacts.mFormats.push_back(
        MakeItem(kAudioFormatMPEG4AAC, rate, frames, inConfig.mChannelCount, core.mTag));
    ioFacts.mDataFormat = ioFacts.mFormats.back().mASBD;
}

}  // namespace audiotoolbox
