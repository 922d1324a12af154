// TarvoATPrivateSettings: everything that a user can choose for one export.
//
// The host keeps the record as a text between sessions, and a file that is read travels with its
// own. A plain value; nothing here judges whether an encoder takes the settings.
// Units: rates in Hz, bit rates in bits per second, quality 0 to 127.
#ifndef TARVO_PLUGINS_TARVOAT_PRIVATE_TARVOATPRIVATESETTINGS_H
#define TARVO_PLUGINS_TARVOAT_PRIVATE_TARVOATPRIVATESETTINGS_H

#include "CoreAudio/PublicUtility/CAStreamBasicDescription.h"

#include <kelpcore/Strings.h>

namespace tarvo
{

class TarvoATPrivateSettings
{
public:
    /// 16-bit stereo of 44100 Hz in a Core Audio file, constant bit rate of 64000, quality 96.
    TarvoATPrivateSettings();
    /// The same encoder settings with another file type and format.
    TarvoATPrivateSettings(UInt32 inFileTypeID, CAStreamBasicDescription inDescription);

    /// Back to the defaults. Only mReserved of the stream format stays.
    void SetDefaults();

    UInt32 GetAudioFileTypeID() const { return mAudioFileTypeID; }
    void SetAudioFileTypeID(UInt32 inType) { mAudioFileTypeID = inType; }
    CAStreamBasicDescription GetStreamBasicDescription() const { return mStreamBasicDescription; }
    void SetStreamBasicDescription(CAStreamBasicDescription inFormat)
    {
        mStreamBasicDescription = inFormat;
    }
    double GetSampleRate() const { return mStreamBasicDescription.mSampleRate; }
    void SetSampleRate(double inRate) { mStreamBasicDescription.mSampleRate = inRate; }
    UInt32 GetFormatID() const { return mStreamBasicDescription.mFormatID; }
    void SetFormatID(UInt32 inFormatID) { mStreamBasicDescription.mFormatID = inFormatID; }
    UInt32 GetChannelsPerFrame() const { return mStreamBasicDescription.mChannelsPerFrame; }
    void SetChannelsPerFrame(UInt32 inCount)
    {
        mStreamBasicDescription.mChannelsPerFrame = inCount;
    }
    UInt32 GetBytesPerPacket() const { return mStreamBasicDescription.mBytesPerPacket; }
    void SetBytesPerPacket(UInt32 inBytes) { mStreamBasicDescription.mBytesPerPacket = inBytes; }
    UInt32 GetFramesPerPacket() const { return mStreamBasicDescription.mFramesPerPacket; }
    void SetFramesPerPacket(UInt32 inFrames)
    {
        mStreamBasicDescription.mFramesPerPacket = inFrames;
    }
    UInt32 GetBytesPerFrame() const { return mStreamBasicDescription.mBytesPerFrame; }
    void SetBytesPerFrame(UInt32 inBytes) { mStreamBasicDescription.mBytesPerFrame = inBytes; }
    UInt32 GetBitsPerChannel() const { return mStreamBasicDescription.mBitsPerChannel; }
    void SetBitsPerChannel(UInt32 inBits) { mStreamBasicDescription.mBitsPerChannel = inBits; }
    UInt32 GetFormatFlags() const { return mStreamBasicDescription.mFormatFlags; }
    void SetFormatFlags(UInt32 inFlags) { mStreamBasicDescription.mFormatFlags = inFlags; }
    UInt32 GetBitrateMode() const { return mBitrateMode; }
    void SetBitrateMode(UInt32 inMode) { mBitrateMode = inMode; }
    UInt32 GetBitrate() const { return mBitrate; }
    void SetBitrate(UInt32 inBitsPerSecond) { mBitrate = inBitsPerSecond; }
    UInt32 GetVBRQuality() const { return mVBRQuality; }
    void SetVBRQuality(UInt32 inQuality) { mVBRQuality = inQuality; }

    /// The record as the host's settings text. mReserved is not part of it.
    UTF16String GetSerialized() const;

    /// The defaults, and over them what the text has. Any text does. False, with what was read in
    /// place, for a stream format that is not plausible.
    bool InitializeFromSerialized(const UTF16String& inText);

    // Wishes of the user, or of the audio to be saved. Each reshapes the record as far as the
    // platform's encoders go and answers false for a refusal. The format comes first, as the rest
    // is asked about the format that the record has; the bit depth brings rate and channels along.

    /// Stores the rate; the platform's list of rates refuses none in the end. A list of no bytes
    /// leaves the stored rate. False, with nothing changed, for less than 1 Hz and for NaN.
    bool TrySampleRate(double inRate);
    /// The format with its platform details, in the record's rate and channels as far as the
    /// encoder takes them. False, with nothing changed, where the platform has no details, and for
    /// linear PCM in a file type that is not known for it.
    bool TryFormatID(UInt32 inFormatID);
    /// Stores the count, moved into the encoder's smallest to largest. The byte counts stay. False,
    /// with nothing changed, where the platform does not tell.
    bool TryChannelsPerFrame(UInt32 inCount);
    /// For linear PCM, the first variant of the file type with that depth, in the record's channels
    /// and whole-hertz rate; without such a variant the byte counts alone become those of inBits.
    /// For other formats, and file types without variants, true with nothing changed. After false
    /// the variant may be in place, and the byte counts are not.
    bool TryBitsPerChannel(UInt32 inBits);
    /// Whether the record as it stands can be encoded.
    bool IsValidForEncode() const;

    /// All but linear PCM and Apple Lossless.
    bool IsFormatLossy() const;

    /// File type and format for the user, in lines.
    UTF16String GetFormatDescription() const;
    /// The same with the encoder's bit rate settings.
    UTF16String GetExtendedFormatDescription() const;

private:
    UInt32 mAudioFileTypeID;
    CAStreamBasicDescription mStreamBasicDescription;
    UInt32 mBitrateMode;  // the platform's control mode: 0 constant, 1 average, 2 and 3 variable
    UInt32 mBitrate;
    UInt32 mVBRQuality;
};

}  // namespace tarvo

#endif
