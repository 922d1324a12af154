#include "file/write/Writers.h"

#include <array>

namespace audiotoolbox
{
namespace
{

struct WriterRow
{
    AudioFileTypeID mType;
    MakePacketWriter mMake;
};

constexpr std::array<WriterRow, 0> kWriters = {};

}  // namespace

OSStatus MakeWriter(const WriteRequest& inRequest, PacketWriterPtr& outWriter)
{
    for (const WriterRow& row : kWriters)
        if (row.mType == inRequest.mType)
            return row.mMake(inRequest, outWriter);
    return kAudioFileUnsupportedFileTypeError;
}

}  // namespace audiotoolbox
