// LOASHeader: the heads of AAC that is carried in AudioMuxElements behind sync words.
//
// Source: ISO/IEC 14496-3, AudioSyncStream, AudioMuxElement, StreamMuxConfig. One program of one
// layer, and one packet an element, are understood; that is what encoders and broadcasters make.
#ifndef AUDIOTOOLBOX_FILE_STREAMS_LOASHEADER_H
#define AUDIOTOOLBOX_FILE_STREAMS_LOASHEADER_H

#include "file/AACConfig.h"

#include <cstddef>
#include <span>
#include <vector>

namespace audiotoolbox::streams
{

constexpr UInt32 kLOASSync = 0x2B7;             // 11 bits
constexpr UInt32 kLargestLOASElement = 0x1FFF;  // bytes behind the head: 13 bits

struct LOASHeader
{
    UInt32 mByteCount = 0;   // head included
    UInt32 mFrameCount = 0;  // the configuration tells
    UInt32 mBitRate = 0;     // never stated
};

struct LOASSyntax
{
    using Header = LOASHeader;
    static constexpr std::size_t kHeaderBytes = 3;
    static constexpr int kSyncByte = 0x56;

    static bool Parse(const UInt8* inBytes, LOASHeader& outHeader);
    static bool AreAlike(const LOASHeader&, const LOASHeader&) { return true; }
    static bool Follows(const LOASHeader&, const LOASHeader&) { return true; }
};

/// What one element carries.
struct LOASElement
{
    bool mHasConfig = false;
    bool mIsUnderstood = false;        // false: a form of the multiplex that is not read
    std::size_t mPayloadPosition = 0;  // bits, within the element
    std::size_t mPayloadBytes = 0;
};

/// The decoder's configuration as it stands in an element.
struct LOASConfig
{
    std::vector<UInt8> mCookie;  // an AudioSpecificConfig
    AACConfig mAAC;
};

/// inElement  the bytes behind the head
/// outConfig  null, or where to put the configuration; filled when the element has one that is
///            understood. Without it nothing is allocated.
/// False for a damaged element: what it states reaches beyond its end, or no AAC is configured.
bool ParseLOASElement(std::span<const UInt8> inElement, LOASElement& outElement,
                      LOASConfig* outConfig);

/// Copies a payload, which begins at any bit, to mPayloadBytes whole bytes.
void CopyLOASPayload(std::span<const UInt8> inElement, const LOASElement& inParsed,
                     UInt8* outBytes);

}  // namespace audiotoolbox::streams

#endif
