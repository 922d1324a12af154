// Endian: numbers out of bytes, in the order that a container states.
//
// Every function reads exactly the bytes of its width at the place and needs no alignment.
#ifndef AUDIOTOOLBOX_FILE_ENDIAN_H
#define AUDIOTOOLBOX_FILE_ENDIAN_H

#include <CoreAudio/CoreAudioTypes.h>

#include <bit>

namespace audiotoolbox
{

inline UInt16 ReadBE16(const UInt8* inBytes)
{
    return static_cast<UInt16>((inBytes[0] << 8) | inBytes[1]);
}

inline UInt32 ReadBE32(const UInt8* inBytes)
{
    return (UInt32{ReadBE16(inBytes)} << 16) | ReadBE16(inBytes + 2);
}

inline UInt64 ReadBE64(const UInt8* inBytes)
{
    return (UInt64{ReadBE32(inBytes)} << 32) | ReadBE32(inBytes + 4);
}

inline UInt16 ReadLE16(const UInt8* inBytes)
{
    return static_cast<UInt16>((inBytes[1] << 8) | inBytes[0]);
}

inline UInt32 ReadLE32(const UInt8* inBytes)
{
    return (UInt32{ReadLE16(inBytes + 2)} << 16) | ReadLE16(inBytes);
}

inline UInt64 ReadLE64(const UInt8* inBytes)
{
    return (UInt64{ReadLE32(inBytes + 4)} << 32) | ReadLE32(inBytes);
}

inline Float64 ReadBEFloat64(const UInt8* inBytes)
{
    return std::bit_cast<Float64>(ReadBE64(inBytes));
}

}  // namespace audiotoolbox

#endif
