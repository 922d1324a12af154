// AACDecoderConfig: configurations that make the decoder give exactly one layer of a stream.
#ifndef AUDIOTOOLBOX_CONVERT_AACDECODERCONFIG_H
#define AUDIOTOOLBOX_CONVERT_AACDECODERCONFIG_H

#include "file/AACConfig.h"

namespace audiotoolbox
{

/// An AudioSpecificConfig with the layers said in so many words, so that the decoder does not go by
/// what it finds in the packets: none for 'aac ', SBR for 'aach', SBR and PS for 'aacp'.
///
/// inConfig  what the stream's own configuration says
/// inBytes   the stream's own configuration; the answer where it cannot be made from inConfig
std::vector<UInt8> MakeAACDecoderConfig(const AACConfig& inConfig, std::span<const UInt8> inBytes,
                                        AudioFormatID inLayer);

/// The head of one ADTS frame. False for bytes that are none; the outputs are then unspecified.
bool ReadADTSHead(std::span<const UInt8> inFrame, AACConfig& outConfig, UInt32& outHeadBytes);

}  // namespace audiotoolbox

#endif
