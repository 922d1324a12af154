#include "file/write/mpeg4/DolbyBoxes.h"

#include "file/streams/AC3Header.h"

#include <algorithm>

namespace audiotoolbox::mpeg4writer
{
namespace
{

struct StreamFields
{
    UInt32 mRateCode = 0;  // fscod
    UInt32 mStream = 0;    // bsid
    UInt32 mService = 0;   // bsmod: 0, the complete main programme
    UInt32 mMode = 0;      // acmod
    bool mHasLFE = false;
    UInt32 mSizeCode = 0;  // frmsizecod halved: the bit rate's row; AC-3 only
};

struct ModeRow
{
    UInt32 mChannels;
    UInt32 mMode;
    bool mHasLFE;
};

// What encoders make of a count of channels.
constexpr ModeRow kModes[] = {
    {1, 1, false}, {2, 2, false}, {3, 3, false}, {4, 5, false}, {5, 7, false}, {6, 7, true},
};

UInt32 RateCode(double inRate)
{
    constexpr UInt32 kRates[] = {48000, 44100, 32000};
    UInt32 code = 0;
    while (code < std::size(kRates) && kRates[code] != inRate)
        ++code;
    return code;
}

StreamFields FieldsOfFormat(const AudioStreamBasicDescription& inFormat)
{
    StreamFields fields;
    fields.mRateCode = RateCode(inFormat.mSampleRate);
    fields.mStream = inFormat.mFormatID == kAudioFormatAC3 ? 8 : 16;
    for (const ModeRow& row : kModes)
        if (row.mChannels == inFormat.mChannelsPerFrame)
        {
            fields.mMode = row.mMode;
            fields.mHasLFE = row.mHasLFE;
        }
    return fields;
}

StreamFields FieldsOf(const EntryFacts& inFacts)
{
    StreamFields fields = FieldsOfFormat(inFacts.mFormat);
    const UInt8* head = inFacts.mPacketHead.data();
    streams::AC3Header header;
    static_assert(kPacketHeadBytes >= streams::AC3Syntax::kHeaderBytes);
    if (!streams::AC3Syntax::Parse(head, header))
        return fields;
    fields.mMode = header.mMode;
    fields.mHasLFE = header.mHasLFE;
    fields.mStream = head[5] >> 3;
    fields.mRateCode = head[4] >> 6;
    if (header.mIsEnhanced)
        return fields;
    fields.mService = head[5] & 7u;
    fields.mSizeCode = (head[4] & 0x3Fu) >> 1;
    return fields;
}

// Takes fields from the highest bit down.
class BitFields
{
public:
    void Put(UInt32 inBits, UInt32 inValue)
    {
        mValue = mValue << inBits | (inValue & ((1u << inBits) - 1));
        mBits += inBits;
    }

    /// All of them, which are whole bytes.
    void WriteTo(BoxBuilder& ioBoxes) const
    {
        for (UInt32 shift = mBits; shift > 0; shift -= 8)
            ioBoxes.PutU8(static_cast<UInt8>(mValue >> (shift - 8)));
    }

private:
    UInt64 mValue = 0;
    UInt32 mBits = 0;
};

}  // namespace

void PutAC3(const EntryFacts& inFacts, BoxBuilder& ioBoxes)
{
    const StreamFields fields = FieldsOf(inFacts);
    BitFields bits;
    bits.Put(2, fields.mRateCode);
    bits.Put(5, fields.mStream);
    bits.Put(3, fields.mService);
    bits.Put(3, fields.mMode);
    bits.Put(1, fields.mHasLFE ? 1 : 0);
    bits.Put(5, fields.mSizeCode);
    bits.Put(5, 0);
    ioBoxes.Begin(CA_FOUR_CHAR_CODE('d', 'a', 'c', '3'));
    bits.WriteTo(ioBoxes);
    ioBoxes.End();
}

void PutEAC3(const EntryFacts& inFacts, BoxBuilder& ioBoxes)
{
    constexpr UInt32 kMostThousands = 0x1FFF;
    const StreamFields fields = FieldsOf(inFacts);
    BitFields bits;
    bits.Put(13, std::min((inFacts.mPeakBitRate + 500) / 1000, kMostThousands));
    bits.Put(3, 0);  // one independent substream, counted from 0
    bits.Put(2, fields.mRateCode);
    bits.Put(5, fields.mStream);
    bits.Put(1 + 1, 0);
    bits.Put(3, fields.mService);
    bits.Put(3, fields.mMode);
    bits.Put(1, fields.mHasLFE ? 1 : 0);
    bits.Put(3, 0);
    bits.Put(4 + 1, 0);  // no dependent substream
    ioBoxes.Begin(CA_FOUR_CHAR_CODE('d', 'e', 'c', '3'));
    bits.WriteTo(ioBoxes);
    ioBoxes.End();
}

}  // namespace audiotoolbox::mpeg4writer
