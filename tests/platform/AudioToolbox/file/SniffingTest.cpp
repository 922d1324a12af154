// Which row of the file type table a beginning fits.

#include "Opened.h"
#include "platform/AudioToolbox/src/tables/FileTypes.h"

#include <gtest/gtest.h>
#include <string>

using namespace testing_support;

namespace
{

AudioFileTypeID TypeOf(const Bytes& inHead)
{
    for (const auto& row : audiotoolbox::FileTypes())
        if (row.mSniff(inHead))
            return row.mType;
    return 0;
}

Bytes Brands(std::string_view inMain, std::string_view inCompatible)
{
    ByteBuilder head;
    head.Big(16 + inCompatible.size(), 4).Text("ftyp").Text(inMain).Big(0, 4).Text(inCompatible);
    return head.Text("M4A M4A M4A ").Get();  // belongs to the next box
}

struct SniffRow
{
    const char* mWhat;
    Bytes mHead;
    AudioFileTypeID mType;
};

Bytes Text(std::string_view inText)
{
    return ByteBuilder().Text(inText).Get();
}

TEST(Sniffing, TellsEveryTypeByItsBeginning)
{
    const SniffRow rows[] = {
        {"WAVE", Text("RIFF\1\2\3\4WAVE"), kAudioFileWAVEType},
        {"RF64", Text("RF64\1\2\3\4WAVE"), kAudioFileRF64Type},
        {"BW64", Text("BW64\1\2\3\4WAVE"), kAudioFileBW64Type},
        {"W64",
         {'r', 'i', 'f', 'f', 0x2E, 0x91, 0xCF, 0x11, 0xA5, 0xD6, 0x28, 0xDB, 4, 0xC1, 0, 0},
         kAudioFileWave64Type},
        {"AIFF", Text("FORM\1\2\3\4AIFF"), kAudioFileAIFFType},
        {"AIFF-C", Text("FORM\1\2\3\4AIFC"), kAudioFileAIFCType},
        {"CAF", Text("caff"), kAudioFileCAFType},
        {"AU", Text(".snd"), kAudioFileNextType},
        {"M4A", Brands("M4A ", "mp42"), kAudioFileM4AType},
        {"M4P", Brands("M4P ", ""), kAudioFileM4AType},
        {"M4B", Brands("M4B ", "M4A "), kAudioFileM4BType},
        {"3GP", Brands("3gp6", ""), kAudioFile3GPType},
        {"3G2", Brands("3g2a", ""), kAudioFile3GP2Type},
        {"MP4", Brands("isom", "iso2mp41"), kAudioFileMPEG4Type},
        {"MP4 that is audio", Brands("mp42", "isomM4A "), kAudioFileM4AType},
        {"FLAC", Text("fLaC"), kAudioFileFLACType},
        {"AMR", Text("#!AMR\n"), kAudioFileAMRType},
        {"AMR-WB", Text("#!AMR-WB\n"), kAudioFileAMRType},
        {"AC-3", {0x0B, 0x77, 0, 0, 0x1E, 0x40}, kAudioFileAC3Type},
        {"E-AC-3", {0x0B, 0x77, 0, 0, 0x1E, 0x80}, kAudioFileEAC3Type},
        {"ADTS", {0xFF, 0xF1, 0x50, 0x80}, kAudioFileAAC_ADTSType},
        {"ADTS of MPEG-2", {0xFF, 0xF9, 0x50, 0x80}, kAudioFileAAC_ADTSType},
        {"LOAS", {0x56, 0xE0, 0x20}, kAudioFileLATMInLOASType},
        {"layer 3", {0xFF, 0xFB, 0x90, 0x00}, kAudioFileMP3Type},
        {"layer 3 of version 2.5", {0xFF, 0xE3, 0x90, 0x00}, kAudioFileMP3Type},
        {"layer 2", {0xFF, 0xFD, 0x90, 0x00}, kAudioFileMP2Type},
        {"layer 1", {0xFF, 0xFF, 0x90, 0x00}, kAudioFileMP1Type},
    };
    for (const SniffRow& row : rows)
    {
        EXPECT_EQ(TypeOf(row.mHead), row.mType) << row.mWhat;
        Bytes shorter = row.mHead;
        while (!shorter.empty())  // never reads what is not there
        {
            shorter.pop_back();
            (void)TypeOf(Bytes(shorter));
        }
    }
}

TEST(Sniffing, KnowsNothingElse)
{
    const Bytes heads[] = {
        {},
        Text("RIFF\1\2\3\4AVI "),
        Text("OggS"),
        Text("#EXTM3U\n"),
        {0xFF, 0xFB, 0xF0, 0x00},  // a bit rate that does not exist
        {0xFF, 0xFB, 0x9C, 0x00},  // a sample rate that does not exist
        {0xFF, 0xEB, 0x90, 0x00},  // a version that does not exist
        {0xFF, 0xF1, 0x74, 0x80},  // ADTS with a rate that does not exist
        {0x0B, 0x77, 0, 0, 0x1E, 0x88},
        Bytes(64),
    };
    for (const Bytes& head : heads)
        EXPECT_EQ(TypeOf(head), 0u);
}

TEST(Opening, RefusesASyncWordWithoutAStream)
{
    Bytes head = {0x56, 0xE0, 0x20};  // LOAS
    head.resize(4096);
    EXPECT_EQ(Open(head).mStatus, kAudioFileInvalidFileError);
}

TEST(Opening, FindsAStreamBehindATagAndUncountedPadding)
{
    // Layer 3, 128000 bits per second at 44100 Hz: frames of 417 bytes.
    ByteBuilder frames;
    for (int i = 0; i < 4; ++i)
        frames.Raw({0xFF, 0xFB, 0x90, 0x00}).Raw(Bytes(413));
    const Bytes tag = ByteBuilder().Text("ID3").Raw({4, 0, 0, 0, 0, 0, 5}).Raw(Bytes(5)).Get();
    for (const Bytes& before :
         {Bytes(), tag, Bytes(300), ByteBuilder().Raw(tag).Raw(Bytes(300)).Get()})
    {
        const Opened file = Open(ByteBuilder().Raw(before).Raw(frames.Get()).Get());
        ASSERT_EQ(file.mStatus, noErr) << before.size();
        EXPECT_EQ(file.Facts().mFileType, kAudioFileMP3Type);
        EXPECT_EQ(file.Facts().mDataOffset, static_cast<SInt64>(before.size()));
        EXPECT_EQ(Drain(*file.mReader).mPackets.size(), 4u);
    }
    EXPECT_EQ(Open(Bytes(10000)).mStatus, kAudioFileUnsupportedFileTypeError);
}

TEST(FileTypes, EveryRowIsWhole)
{
    for (const auto& row : audiotoolbox::FileTypes())
    {
        EXPECT_EQ(audiotoolbox::FindFileType(row.mType), &row) << row.mName;
        EXPECT_GT(std::string(row.mName).size(), 1u);
        EXPECT_FALSE(row.mExtensions.empty()) << row.mName;
        EXPECT_FALSE(row.mMIMETypes.empty()) << row.mName;
        EXPECT_FALSE(row.mFormats.empty()) << row.mName;
    }
    EXPECT_EQ(audiotoolbox::FileTypes().size(), 22u);
    EXPECT_EQ(audiotoolbox::FindFileType(kAudioFileSoundDesigner2Type), nullptr);
}

}  // namespace
