// BoxBuilder: boxes of an MPEG-4 file, nested and big endian, built up in memory.
#ifndef AUDIOTOOLBOX_FILE_WRITE_MPEG4_BOXBUILDER_H
#define AUDIOTOOLBOX_FILE_WRITE_MPEG4_BOXBUILDER_H

#include <CoreAudio/CoreAudioTypes.h>

#include <cstddef>
#include <span>
#include <vector>

namespace audiotoolbox::mpeg4writer
{

class BoxBuilder
{
public:
    /// Opens a box inside the one that is open; what is put in from here on stands in it.
    void Begin(UInt32 inType);

    /// The same for a box that begins with its version and flags.
    void BeginFull(UInt32 inType, UInt8 inVersion, UInt32 inFlags = 0);

    /// Closes the innermost open box.
    /// inBytesBehind  what will follow in the file and belongs to the box, too
    void End(std::size_t inBytesBehind = 0);

    void PutU8(UInt8 inValue) { mBytes.push_back(inValue); }
    void PutU16(UInt16 inValue) { PutBig(inValue, 2); }
    void PutU32(UInt32 inValue) { PutBig(inValue, 4); }
    void PutU64(UInt64 inValue) { PutBig(inValue, 8); }
    void PutBytes(std::span<const UInt8> inBytes);
    void PutZeros(std::size_t inCount) { mBytes.resize(mBytes.size() + inCount); }

    /// A field of 64 bits in boxes of version 1, of 32 in those of version 0.
    void PutWide(bool inIsWide, UInt64 inValue) { PutBig(inValue, inIsWide ? 8 : 4); }

    const std::vector<UInt8>& Bytes() const { return mBytes; }

private:
    void PutBig(UInt64 inValue, std::size_t inBytes);

    std::vector<UInt8> mBytes;
    std::vector<std::size_t> mOpen;  // where the open boxes begin, the innermost last
};

}  // namespace audiotoolbox::mpeg4writer

#endif
