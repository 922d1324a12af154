// EncoderChoices: what an encoder leaves to choose, and how that is told to people.
//
// Lists come from the platform and the catalogue; empty where nothing is known. Rates in Hz, bit
// rates in bits per second.
#ifndef HOST_EXPORT_ENCODERCHOICES_H
#define HOST_EXPORT_ENCODERCHOICES_H

#include "CoreAudio/PublicUtility/CAStreamBasicDescription.h"
#include "host/export/ExportWish.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace host
{

/// A file type's format.
struct EncoderKey
{
    std::uint32_t mFileType = 0;
    std::uint32_t mFormat = 0;
};

/// Linear PCM of the catalogue as far as samples can be handed over so wide, FLAC and Apple
/// Lossless by what they take; empty: any depth will do, since the format has none.
std::vector<SampleDepth> EncodableDepths(EncoderKey inEncoder);

/// Channel counts, ascending; empty: any.
std::vector<std::uint32_t> EncodableChannelCounts(const CAStreamBasicDescription& inFormat);

/// inNearTo   the rate and channel count of the audio
/// The listed rate in this mode that is nearest to inWanted, the larger of two; nothing for a mode
/// without rates.
std::optional<std::uint32_t> NearestBitrate(EncoderKey inEncoder, std::uint32_t inMode,
                                            const CAStreamBasicDescription& inAudio,
                                            std::uint32_t inWanted);

/// The file of this type can hold the depth, or any.
bool IsDepthIn(const std::vector<SampleDepth>& inDepths, const SampleDepth& inDepth);

// For people, one line each: "44100, 48000", "64k, 96k", "16, 24, 32f", "cbr, vbr", "1, 2".
std::string RatesText(std::uint32_t inFormat);
std::string ChannelsText(const CAStreamBasicDescription& inFormat);
std::string BitratesText(EncoderKey inEncoder, std::uint32_t inMode,
                         const CAStreamBasicDescription& inAudio);
std::string DepthText(const SampleDepth& inDepth);
std::string DepthsText(const std::vector<SampleDepth>& inDepths);
std::string ModesText(const std::vector<std::uint32_t>& inModes);

/// "192 kbit/s", "11025 bit/s".
std::string BitrateForPeople(std::uint32_t inBitsPerSecond);

}  // namespace host

#endif
