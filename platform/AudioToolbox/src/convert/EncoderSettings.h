// EncoderSettings: what an encoder is told about bit rates, checked against its tables.
#ifndef AUDIOTOOLBOX_CONVERT_ENCODERSETTINGS_H
#define AUDIOTOOLBOX_CONVERT_ENCODERSETTINGS_H

#include "tables/EncoderBitRates.h"

namespace audiotoolbox
{

class EncoderSettings
{
public:
    /// The encoder's own: its average mode where it has one, else its first, at the default rate.
    EncoderSettings(const EncoderRow& inRow, const StreamShape& inShape);

    /// False: the format has no bit rates, and nothing below applies.
    bool HasBitRates() const { return mRow->mModes != 0; }
    bool HasQuality() const { return !mRow->mQualities.empty(); }

    UInt32 Mode() const { return mMode; }
    UInt32 BitRate() const { return mBitRate; }
    Float32 Quality() const { return mQuality; }

    /// -50 for a mode that the encoder has not. The bit rate becomes the mode's default.
    OSStatus SetMode(UInt32 inMode);
    /// -50 for a rate that is not listed for the mode, and in the variable mode.
    OSStatus SetBitRate(UInt32 inBitRate);
    /// -50 outside 0 to 127.
    OSStatus SetQuality(Float32 inQuality);

    /// Single rates, ascending. In the variable mode, what an average could be.
    std::vector<AudioValueRange> ApplicableBitRates() const;
    /// At any rate that the encoder takes.
    std::vector<AudioValueRange> AvailableBitRates() const;

private:
    const EncoderRow* mRow;
    StreamShape mShape;
    UInt32 mMode = 0;
    UInt32 mBitRate = 0;
    Float32 mQuality = 64.0f;
};

}  // namespace audiotoolbox

#endif
