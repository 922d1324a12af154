// AUFile: AU, a header of six big-endian words and the samples behind it.

#include "file/ConstantPackets.h"
#include "file/Endian.h"
#include "file/FactArithmetic.h"

#include <algorithm>
#include <utility>

namespace audiotoolbox
{
namespace
{

constexpr UInt32 kHeaderBytes = 24;
constexpr UInt32 kUnknownSize = 0xFFFFFFFF;
constexpr AudioFormatFlags kInteger = kAudioFormatFlagIsSignedInteger | kAudioFormatFlagIsBigEndian;
constexpr AudioFormatFlags kFloat = kAudioFormatFlagIsFloat | kAudioFormatFlagIsBigEndian;

struct EncodingRow
{
    UInt32 mEncoding;
    AudioFormatID mFormat;
    AudioFormatFlags mFlags;
    UInt32 mBits;
};

constexpr EncodingRow kEncodings[] = {
    {1, kAudioFormatULaw, 0, 0},
    {2, kAudioFormatLinearPCM, kInteger, 8},
    {3, kAudioFormatLinearPCM, kInteger, 16},
    {4, kAudioFormatLinearPCM, kInteger, 24},
    {5, kAudioFormatLinearPCM, kInteger, 32},
    {6, kAudioFormatLinearPCM, kFloat, 32},
    {7, kAudioFormatLinearPCM, kFloat, 64},
    {27, kAudioFormatALaw, 0, 0},
};

OSStatus DescribeAU(const UInt8* inHeader, FileFacts& ioFacts)
{
    const UInt32 encoding = ReadBE32(inHeader + 12);
    const double rate = ReadBE32(inHeader + 16);
    const UInt32 channels = ReadBE32(inHeader + 20);
    if (!IsSaneRate(rate) || !IsSaneChannelCount(channels))
        return kAudioFileInvalidFileError;
    const auto* row =
        std::find_if(std::begin(kEncodings), std::end(kEncodings),
                     [=](const EncodingRow& inRow) { return inRow.mEncoding == encoding; });
    if (row == std::end(kEncodings))
        return kAudioFileUnsupportedDataFormatError;
    ioFacts.mDataFormat = row->mFormat == kAudioFormatLinearPCM
                              ? DescribePCM(rate, channels, row->mBits, row->mBits / 8, row->mFlags)
                              : DescribeLaw(row->mFormat, rate, channels);
    return noErr;
}

}  // namespace

OSStatus OpenAU(AudioFileTypeID, ByteSourcePtr& ioSource, PacketReaderPtr& outReader)
{
    UInt8 header[kHeaderBytes];
    UInt32 got = 0;
    if (const OSStatus status = ioSource->ReadAt(0, sizeof(header), header, &got); status != noErr)
        return status;
    if (got < 4 || ReadBE32(header) != CA_FOUR_CHAR_CODE('.', 's', 'n', 'd'))
        return kAudioFileUnsupportedFileTypeError;
    if (got < kHeaderBytes || ReadBE32(header + 4) < kHeaderBytes)
        return kAudioFileInvalidFileError;

    FileFacts facts;
    facts.mFileType = kAudioFileNextType;
    if (const OSStatus status = DescribeAU(header, facts); status != noErr)
        return status;
    // Nothing follows the samples, so a size that was never filled in means all that is there.
    const UInt32 size = ReadBE32(header + 8);
    const bool isUnknown = size == kUnknownSize || size == 0;
    SetDataRange(*ioSource, ReadBE32(header + 4), isUnknown ? -1 : SInt64{size}, facts);
    CountConstantPackets(facts);
    CompleteFacts(facts);
    outReader = std::make_unique<ConstantPackets>(std::move(ioSource), std::move(facts));
    return noErr;
}

}  // namespace audiotoolbox
