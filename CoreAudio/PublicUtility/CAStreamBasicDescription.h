// CAStreamBasicDescription: an audio stream format as a value.
//
// The platform's record with constructors, comparison in three strengths, an order, a plausibility
// test and texts. It adds no field, so that it can be handed to the platform as it is. A field of
// 0 is unspecified and matches anything wherever wildcards are interpreted. Nothing here allocates.
#ifndef CASTREAMBASICDESCRIPTION_H
#define CASTREAMBASICDESCRIPTION_H

#include <CoreAudio/CoreAudioTypes.h>

#include <cstddef>

class CAStreamBasicDescription : public AudioStreamBasicDescription
{
public:
    /// Options of IsEquivalent.
    enum : UInt32
    {
        kCompareUsingWildcards = 1,
        kCompareKeepingNonMixable = 2,
        kCompareDefault = kCompareUsingWildcards | kCompareKeepingNonMixable
    };

    /// All fields 0.
    static const AudioStreamBasicDescription sEmpty;
    /// The grammar of FromText in short.
    static const char* const sTextParsingUsageString;

    CAStreamBasicDescription() : AudioStreamBasicDescription{} {}
    CAStreamBasicDescription(const AudioStreamBasicDescription& inFormat)
        : AudioStreamBasicDescription(inFormat)
    {
    }
    /// Mind the order: the flags come last.
    CAStreamBasicDescription(double inSampleRate, UInt32 inFormatID, UInt32 inBytesPerPacket,
                             UInt32 inFramesPerPacket, UInt32 inBytesPerFrame,
                             UInt32 inChannelsPerFrame, UInt32 inBitsPerChannel,
                             UInt32 inFormatFlags);

    // Whole records.

    /// Makes a mixable linear PCM format interleaved 32-bit float of the same rate and channels;
    /// any other format stays. Without inNativeEndian the samples are big-endian.
    static void NormalizeLinearPCMFormat(AudioStreamBasicDescription& ioFormat);
    static void NormalizeLinearPCMFormat(bool inNativeEndian,
                                         AudioStreamBasicDescription& ioFormat);
    /// The same by another name.
    static void VirtualizeLinearPCMFormat(AudioStreamBasicDescription& ioFormat);
    static void VirtualizeLinearPCMFormat(bool inNativeEndian,
                                          AudioStreamBasicDescription& ioFormat);
    static void ResetFormat(AudioStreamBasicDescription& outFormat);
    /// Fills what is unspecified in ioFormat from inSource.
    static void FillOutFormat(AudioStreamBasicDescription& ioFormat,
                              const AudioStreamBasicDescription& inSource);

    // Comparison.

    static bool EquivalentFormatFlags(const AudioStreamBasicDescription& inX,
                                      const AudioStreamBasicDescription& inY, bool inKeepNonMixable,
                                      bool inInterpretingWildcards);
    /// Every byte but those of mReserved.
    static bool IsExactlyEqual(const AudioStreamBasicDescription& inX,
                               const AudioStreamBasicDescription& inY);
    static bool IsEquivalent(const AudioStreamBasicDescription& inX,
                             const AudioStreamBasicDescription& inY, UInt32 inOptions);
    /// Equivalent with wildcards, or else exactly equal.
    bool IsEqual(const AudioStreamBasicDescription& inOther, bool inInterpretingWildcards) const;
    bool IsEqual(const AudioStreamBasicDescription& inOther) const;

    /// The flags in a form in which two linear PCM formats that mean the same agree; the plain
    /// flags of any other format.
    UInt32 GetRegularizedFormatFlags(bool inKeepNonMixable) const;

    // Facts about the sample layout.

    bool IsPCM() const { return mFormatID == kAudioFormatLinearPCM; }
    bool IsInterleaved() const { return (mFormatFlags & kAudioFormatFlagIsNonInterleaved) == 0; }
    /// Bytes in one sample word, 0 where the record does not tell.
    UInt32 SampleWordSize() const
    {
        if (!IsInterleaved())
            return mBytesPerFrame;
        return mChannelsPerFrame == 0 ? 0 : mBytesPerFrame / mChannelsPerFrame;
    }
    bool PackednessIsSignificant() const { return SampleWordSize() * 8 != mBitsPerChannel; }
    bool AlignmentIsSignificant() const
    {
        return PackednessIsSignificant() || mBitsPerChannel % 8 != 0;
    }

    // Texts. Each is cut to inSize bytes and NUL-terminated.

    /// A line for diagnostics. inBrief shortens common linear PCM formats to a name.
    /// Returns outText.
    char* AsString(char* outText, std::size_t inSize, bool inBrief) const;

    /// A short name for lists. For formats other than linear PCM outText needs 8 bytes behind the
    /// rate, whatever inSize says. A linear PCM format that is not packed needs channels.
    static void GetSimpleName(const AudioStreamBasicDescription& inFormat, char* outText,
                              UInt32 inSize, bool inAbbreviate, bool inIncludeSampleRate);

    /// Reads the notation of sTextParsingUsageString. False for text of another form, with what
    /// was read up to there in outFormat; most failures also print a line to standard error.
    static bool FromText(const char* inText, AudioStreamBasicDescription& outFormat);
};

static_assert(sizeof(CAStreamBasicDescription) == sizeof(AudioStreamBasicDescription));
static_assert(sizeof(AudioStreamBasicDescription) == 40);

/// Equivalent, with wildcards.
bool operator==(const AudioStreamBasicDescription& inX, const AudioStreamBasicDescription& inY);

/// Linear PCM first, mixable and integer first within it, then by depth, rate and channels. Fields
/// of 0 decide nothing, so this orders no set in which some formats have wildcards.
bool operator<(const AudioStreamBasicDescription& inX, const AudioStreamBasicDescription& inY);

/// Whether a record from outside is plausible: a real rate, 1 to 1024 channels, a format code, and
/// one frame a packet for linear PCM.
bool SanityCheck(const AudioStreamBasicDescription& inFormat);

#endif
