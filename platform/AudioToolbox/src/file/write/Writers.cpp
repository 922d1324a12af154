#include "file/write/Writers.h"

namespace audiotoolbox
{
namespace
{

struct WriterRow
{
    AudioFileTypeID mType;
    MakePacketWriter mMake;
};

// clang-format off
constexpr WriterRow kWriters[] = {
    {kAudioFile3GP2Type,       &MakeMPEG4Writer},
    {kAudioFile3GPType,        &MakeMPEG4Writer},
    {kAudioFileAIFCType,       &MakeAIFFWriter},
    {kAudioFileAIFFType,       &MakeAIFFWriter},
    {kAudioFileBW64Type,       &MakeRIFFWriter},
    {kAudioFileMP2Type,        &MakeBareStreamWriter},
    {kAudioFileMP3Type,        &MakeMP3Writer},
    {kAudioFileNextType,       &MakeAUWriter},
    {kAudioFileRF64Type,       &MakeRIFFWriter},
    {kAudioFileWave64Type,     &MakeWave64Writer},
    {kAudioFileWAVEType,       &MakeRIFFWriter},
    {kAudioFileAC3Type,        &MakeBareStreamWriter},
    {kAudioFileAAC_ADTSType,   &MakeADTSWriter},
    {kAudioFileCAFType,        &MakeCAFWriter},
    {kAudioFileEAC3Type,       &MakeBareStreamWriter},
    {kAudioFileFLACType,       &MakeFLACWriter},
    {kAudioFileLATMInLOASType, &MakeLOASWriter},
    {kAudioFileM4AType,        &MakeMPEG4Writer},
    {kAudioFileM4BType,        &MakeMPEG4Writer},
    {kAudioFileMPEG4Type,      &MakeMPEG4Writer},
};
// clang-format on

}  // namespace

OSStatus MakeWriter(const WriteRequest& inRequest, PacketWriterPtr& outWriter)
{
    for (const WriterRow& row : kWriters)
        if (row.mType == inRequest.mType)
            return row.mMake(inRequest, outWriter);
    return kAudioFileUnsupportedFileTypeError;
}

}  // namespace audiotoolbox
