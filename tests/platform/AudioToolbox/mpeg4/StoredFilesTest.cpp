// Files that encoders wrote: their facts against what went into them, their packets against what
// an independent reader finds.
#include "platform/AudioToolbox/mpeg4/OpenedFile.h"

#include <cstdio>
#include <memory>
#include <sstream>

namespace audiotoolbox
{
namespace
{

using namespace std::string_literals;
using opened_file::AllPackets;
using opened_file::Bytes;
using opened_file::LayoutTag;
using opened_file::OpenedStored;

constexpr UInt32 kStereo = kAudioChannelLayoutTag_Stereo;
constexpr UInt32 k51 = kAudioChannelLayoutTag_MPEG_5_1_A;

struct FileRow
{
    const char* mName;
    AudioFormatID mFormat;
    double mRate;
    UInt32 mChannels;
    UInt32 mFlags;
    UInt32 mFrames;  // in a packet
    UInt64 mPackets;
    SInt32 mPriming;
    SInt64 mValid;
    SInt32 mRemainder;
    UInt32 mLayout;
    std::size_t mCookieBytes;
};

// The sources: 11025 frames at 44100 Hz, 12000 or 9600 or 4800 at 48000 Hz, 800 at 8000 Hz.
// AC-3's tables do not tell that its last packet is padded, so its valid frames reach to its end.
constexpr FileRow kFiles[] = {
    {"mpeg4/aac-stereo.m4a", kAudioFormatMPEG4AAC, 44100, 2, 0, 1024, 12, 1024, 11025, 239, kStereo,
     5},
    {"mpeg4/aac-stereo-fine-timescale.m4a", kAudioFormatMPEG4AAC, 44100, 2, 0, 1024, 12, 1024,
     11025, 239, kStereo, 5},
    {"mpeg4/aac-faststart.m4a", kAudioFormatMPEG4AAC, 44100, 2, 0, 1024, 12, 1024, 11025, 239,
     kStereo, 5},
    {"mpeg4/aac.m4b", kAudioFormatMPEG4AAC, 44100, 2, 0, 1024, 12, 1024, 11025, 239, kStereo, 5},
    {"mpeg4/aac.3gp", kAudioFormatMPEG4AAC, 44100, 2, 0, 1024, 12, 1024, 11025, 239, kStereo, 5},
    {"mpeg4/aac.3g2", kAudioFormatMPEG4AAC, 44100, 2, 0, 1024, 12, 1024, 11025, 239, kStereo, 5},
    {"mpeg4/video-and-audio.mp4", kAudioFormatMPEG4AAC, 44100, 2, 0, 1024, 12, 1024, 11025, 239,
     kStereo, 5},
    {"mpeg4/aac-fragments-delay-moov.mp4", kAudioFormatMPEG4AAC, 44100, 2, 0, 1024, 12, 1024, 11025,
     239, kStereo, 5},
    {"mpeg4/aac-fragments-base-moof.mp4", kAudioFormatMPEG4AAC, 44100, 2, 0, 1024, 12, 1024, 11025,
     239, kStereo, 5},
    // Written without an edit list: only the shortened last packet tells, so priming is unknown.
    {"mpeg4/aac-fragments-empty-moov.mp4", kAudioFormatMPEG4AAC, 44100, 2, 0, 1024, 12, 0, 12049,
     239, kStereo, 5},
    {"mpeg4/aac-5.1.m4a", kAudioFormatMPEG4AAC, 48000, 6, 0, 1024, 11, 1024, 9600, 640, k51, 5},
    {"mpeg4/alac-16.m4a", kAudioFormatAppleLossless, 44100, 2, 1, 4096, 1, 0, 2205, 1891, kStereo,
     36},
    {"mpeg4/alac-24.m4a", kAudioFormatAppleLossless, 44100, 2, 3, 4096, 1, 0, 2205, 1891, kStereo,
     36},
    {"mpeg4/ac3.mp4", kAudioFormatAC3, 48000, 2, 0, 1536, 8, 256, 12032, 0, kStereo, 0},
    {"mpeg4/ac3-5.1.mp4", kAudioFormatAC3, 48000, 6, 0, 1536, 4, 256, 5888, 0, k51, 0},
    {"mpeg4/eac3-5.1.mp4", kAudioFormatEnhancedAC3, 48000, 6, 0, 1536, 4, 256, 5888, 0, k51, 0},
    {"mpeg4/mp3.mp4", kAudioFormatMPEGLayer3, 44100, 2, 0, 1152, 11, 1105, 11025, 542, kStereo, 0},
    {"mpeg4/mp3-low-rate.mp4", kAudioFormatMPEGLayer3, 22050, 2, 0, 576, 12, 1105, 5513, 294,
     kStereo, 0},
    {"mpeg4/opus.mp4", kAudioFormatOpus, 48000, 2, 0, 960, 13, 312, 12000, 168, kStereo, 19},
    {"mpeg4/opus-10ms.mp4", kAudioFormatOpus, 48000, 2, 0, 480, 26, 312, 12000, 168, kStereo, 19},
    {"mpeg4/flac.mp4", kAudioFormatFLAC, 8000, 2, 3, 256, 4, 0, 800, 224, kStereo, 34},
    {"mpeg4/flac-24.mp4", kAudioFormatFLAC, 44100, 2, 3, 4608, 1, 0, 2205, 2403, kStereo, 34},
    {"he-aac/he5.m4a", kAudioFormatMPEG4AAC, 22050, 2, 0, 1024, 46, 2048, 44100, 956, kStereo, 5},
    {"he-aac/he29.m4a", kAudioFormatMPEG4AAC, 22050, 1, 0, 1024, 47, 3072, 44100, 956, kStereo, 7},
    {"he-aac/sbr_compat.m4a", kAudioFormatMPEG4AAC, 22050, 2, 0, 1024, 217, 1024, 220500, 684,
     kStereo, 5},
    {"he-aac/sbr_explicit.m4a", kAudioFormatMPEG4AAC, 22050, 2, 0, 1024, 217, 1024, 220500, 684,
     kStereo, 5},
};

TEST(StoredFiles, FormatsAreWhatWentIn)
{
    for (const FileRow& row : kFiles)
    {
        const PacketReaderPtr reader = OpenedStored(row.mName);
        ASSERT_NE(reader, nullptr) << row.mName;
        const AudioStreamBasicDescription& format = reader->Facts().mDataFormat;
        EXPECT_EQ(format.mFormatID, row.mFormat) << row.mName;
        EXPECT_EQ(format.mSampleRate, row.mRate) << row.mName;
        EXPECT_EQ(format.mChannelsPerFrame, row.mChannels) << row.mName;
        EXPECT_EQ(format.mFormatFlags, row.mFlags) << row.mName;
        EXPECT_EQ(format.mFramesPerPacket, row.mFrames) << row.mName;
        EXPECT_EQ(format.mBytesPerPacket, 0u) << row.mName;
        EXPECT_EQ(format.mBytesPerFrame, 0u) << row.mName;
        EXPECT_EQ(format.mBitsPerChannel, 0u) << row.mName;
        EXPECT_EQ(LayoutTag(reader->Facts()), row.mLayout) << row.mName;
        EXPECT_EQ(reader->Facts().mCookie.size(), row.mCookieBytes) << row.mName;
        EXPECT_EQ(reader->Facts().mFileType, kAudioFileM4AType) << row.mName;
    }
}

TEST(StoredFiles, PacketTablesGiveTheSourcesLength)
{
    for (const FileRow& row : kFiles)
    {
        const PacketReaderPtr reader = OpenedStored(row.mName);
        ASSERT_NE(reader, nullptr) << row.mName;
        const FileFacts& facts = reader->Facts();
        EXPECT_EQ(facts.mPacketCount, row.mPackets) << row.mName;
        ASSERT_TRUE(facts.mPacketTable.has_value()) << row.mName;
        EXPECT_EQ(facts.mPacketTable->mPrimingFrames, row.mPriming) << row.mName;
        EXPECT_EQ(facts.mPacketTable->mNumberValidFrames, row.mValid) << row.mName;
        EXPECT_EQ(facts.mPacketTable->mRemainderFrames, row.mRemainder) << row.mName;
        EXPECT_EQ(static_cast<SInt64>(facts.mEstimatedDuration * row.mRate), row.mValid)
            << row.mName;
    }
}

struct FoundPacket
{
    SInt64 mOffset;
    SInt64 mSize;
};

struct CloseCommand
{
    void operator()(std::FILE* inPipe) const { (void)pclose(inPipe); }
};

// What the packets are by another reader; empty when it is not installed.
std::vector<FoundPacket> PacketsByProbe(const std::string& inName)
{
    const std::string command =
        "ffprobe -v error -select_streams a:0 -show_entries packet=pos,size -of compact=p=0 '" +
        opened_file::StoredPath(inName) + "' 2>/dev/null";
    const std::unique_ptr<std::FILE, CloseCommand> pipe(popen(command.c_str(), "r"));
    std::vector<FoundPacket> packets;
    char line[256];
    while (pipe && std::fgets(line, sizeof(line), pipe.get()) != nullptr)
    {
        const std::string text = line;
        const std::size_t size = text.find("size=");
        const std::size_t offset = text.find("pos=");
        if (size != std::string::npos && offset != std::string::npos)
            packets.push_back(
                {std::atoll(text.c_str() + offset + 4), std::atoll(text.c_str() + size + 5)});
    }
    return packets;
}

TEST(StoredFiles, PacketsAreThoseThatAnotherReaderFinds)
{
    if (PacketsByProbe("mpeg4/aac-stereo.m4a").empty())
        GTEST_SKIP() << "ffprobe is not installed";
    for (const FileRow& row : kFiles)
    {
        const std::vector<FoundPacket> expected = PacketsByProbe(row.mName);
        const Bytes file = opened_file::StoredBytes(row.mName);
        const PacketReaderPtr reader = OpenedStored(row.mName);
        ASSERT_NE(reader, nullptr) << row.mName;
        const std::vector<Bytes> packets = AllPackets(*reader);
        ASSERT_EQ(packets.size(), expected.size()) << row.mName;
        for (std::size_t index = 0; index < packets.size(); ++index)
        {
            const auto begin = file.begin() + expected[index].mOffset;
            EXPECT_EQ(packets[index], Bytes(begin, begin + expected[index].mSize))
                << row.mName << " packet " << index;
        }
    }
}

TEST(StoredFiles, SizesAndBitRatesFollowFromThePackets)
{
    for (const FileRow& row : kFiles)
    {
        const PacketReaderPtr reader = OpenedStored(row.mName);
        ASSERT_NE(reader, nullptr) << row.mName;
        const std::vector<Bytes> packets = AllPackets(*reader);
        std::size_t total = 0;
        std::size_t largest = 0;
        for (const Bytes& packet : packets)
        {
            total += packet.size();
            largest = std::max(largest, packet.size());
        }
        const FileFacts& facts = reader->Facts();
        EXPECT_EQ(packets.size(), row.mPackets) << row.mName;
        EXPECT_EQ(facts.mDataByteCount, static_cast<SInt64>(total)) << row.mName;
        EXPECT_EQ(facts.mPacketSizeUpperBound, largest) << row.mName;
        EXPECT_NEAR(facts.mBitRate, static_cast<double>(total) * 8 * row.mRate / row.mValid, 1.0)
            << row.mName;
    }
}

TEST(StoredFiles, PacketsComeOutTheSameInReadsOfAnySize)
{
    for (const FileRow& row : kFiles)
    {
        const PacketReaderPtr reader = OpenedStored(row.mName);
        ASSERT_NE(reader, nullptr) << row.mName;
        const std::vector<Bytes> whole = AllPackets(*reader, 1u << 20);
        EXPECT_EQ(AllPackets(*reader, reader->Facts().mPacketSizeUpperBound), whole) << row.mName;
    }
}

TEST(StoredFiles, LayeredFilesListTheBestLayerFirst)
{
    const PacketReaderPtr first = OpenedStored("he-aac/he5.m4a");
    ASSERT_NE(first, nullptr);
    ASSERT_EQ(first->Facts().mFormats.size(), 2u);
    EXPECT_EQ(first->Facts().mFormats[0].mASBD.mFormatID, kAudioFormatMPEG4AAC_HE);
    EXPECT_EQ(first->Facts().mFormats[0].mASBD.mSampleRate, 44100.0);

    const PacketReaderPtr second = OpenedStored("he-aac/he29.m4a");
    ASSERT_NE(second, nullptr);
    ASSERT_EQ(second->Facts().mFormats.size(), 3u);
    EXPECT_EQ(second->Facts().mFormats[0].mASBD.mFormatID, kAudioFormatMPEG4AAC_HE_V2);
    EXPECT_EQ(second->Facts().mFormats[0].mASBD.mChannelsPerFrame, 2u);
    EXPECT_EQ(second->Facts().mFormats[0].mASBD.mFramesPerPacket, 2048u);
}

TEST(StoredFiles, CookiesAreWhatDecodersWant)
{
    const PacketReaderPtr aac = OpenedStored("mpeg4/aac-stereo.m4a");
    ASSERT_NE(aac, nullptr);
    EXPECT_EQ(aac->Facts().mCookie, (Bytes{0x12, 0x10, 0x56, 0xE5, 0x00}));

    const PacketReaderPtr alac = OpenedStored("mpeg4/alac-24.m4a");
    ASSERT_NE(alac, nullptr);
    const Bytes& lossless = alac->Facts().mCookie;
    EXPECT_EQ(Bytes(lossless.begin(), lossless.begin() + 18),
              (Bytes{0, 0, 0, 36, 'a', 'l', 'a', 'c', 0, 0, 0, 0, 0, 0, 0x10, 0, 0, 24}));

    const PacketReaderPtr opus = OpenedStored("mpeg4/opus.mp4");
    ASSERT_NE(opus, nullptr);
    EXPECT_EQ(opus->Facts().mCookie, (Bytes{'O', 'p', 'u', 's', 'H', 'e', 'a', 'd', 1, 2, 0x38,
                                            0x01, 0x80, 0xBB, 0, 0, 0, 0, 0}));
}

}  // namespace
}  // namespace audiotoolbox
