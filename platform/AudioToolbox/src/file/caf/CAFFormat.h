// CAFFormat: the description chunk and the cookies of Core Audio Format files.
//
// Source: the public specification of the Core Audio Format, version 1.
#ifndef AUDIOTOOLBOX_FILE_CAF_CAFFORMAT_H
#define AUDIOTOOLBOX_FILE_CAF_CAFFORMAT_H

#include "file/PacketReader.h"

#include <span>

namespace audiotoolbox
{

constexpr UInt32 kCAFDescriptionBytes = 32;

/// Fills mDataFormat from the body of a `desc` chunk.
/// 'dta?' for a description that cannot be true, 'fmt?' for a codec that no row names.
OSStatus DescribeCAF(std::span<const UInt8> inDescription, FileFacts& ioFacts);

/// Takes the cookie over in the form that decoders want, and lets it correct what it knows better
/// than the description: the layers of AAC, the source depth of a lossless codec and the order in
/// which a decoder delivers channels. 'dta?' for AAC without a usable configuration.
OSStatus ApplyCAFCookie(std::span<const UInt8> inCookie, FileFacts& ioFacts);

}  // namespace audiotoolbox

#endif
