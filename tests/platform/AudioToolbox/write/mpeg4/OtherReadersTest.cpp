// What other readers make of our files.
#include "../ScratchFolder.h"
#include "WriterUse.h"
#include "tables/Encoders.h"

namespace
{

using namespace writer_use;

class OtherReaders : public testing::Test
{
protected:
    std::string Store(const Bytes& inBytes, const std::string& inName) const
    {
        const std::string path = mFolder.File(inName);
        std::ofstream(path, std::ios::binary)
            .write(reinterpret_cast<const char*>(inBytes.data()),
                   static_cast<std::streamsize>(inBytes.size()));
        return path;
    }

    /// What a tool prints into a file of its own; its complaints belong to it.
    Bytes OutputOf(const std::string& inCommand, bool inFoldsErrors = true) const
    {
        const std::string path = mFolder.File("output");
        const std::string all = inCommand + " > " + path + (inFoldsErrors ? " 2>&1" : "");
        EXPECT_EQ(std::system(all.c_str()), 0) << inCommand;
        return write_test::BytesOfFile(path);
    }

    std::string TextOf(const std::string& inCommand) const
    {
        const Bytes output = OutputOf(inCommand);
        return {output.begin(), output.end()};
    }

    std::vector<float> DecodedByFFmpeg(const std::string& inPath) const
    {
        const std::string samples = mFolder.File("samples");
        EXPECT_EQ(TextOf("ffmpeg -v warning -nostdin -y -i " + inPath + " -f f32le " + samples),
                  "");
        return converter_use::As<float>(write_test::BytesOfFile(samples));
    }

    write_test::ScratchFolder mFolder;
};

bool IsLossless(AudioFormatID inFormat)
{
    return DepthFlags(inFormat) != 0;
}

// Tones are shaped by what a lossy format keeps of them; a wrong order or place leaves below 0 dB.
double LeastDecibels(AudioFormatID inFormat)
{
    if (IsLossless(inFormat))
        return 130.0;
    return inFormat == kAudioFormatOpus ? 5.0 : 15.0;
}

TEST_F(OtherReaders, FFmpegDecodesEveryPairAlignedAndUnderTheRightChannel)
{
    for (const Pair& pair : kPairs)
        for (const UInt32 channels : {1u, 2u, 6u, 8u})
        {
            const auto* row = audiotoolbox::FindEncoder(pair.mFormat);
            if (!audiotoolbox::TakesChannels(*row, channels))
                continue;
            SCOPED_TRACE(Name(pair) + ", channels " + std::to_string(channels));
            const Audio audio = MakeAudio(pair.mFormat, channels, 30011);
            const Stream stream = Encode(audio);
            const std::string path = Store(Written(pair.mType, stream, audio.Frames()), "file.mp4");
            const std::vector<float> decoded = DecodedByFFmpeg(path);
            // It cuts at the front by the edit list, at the back by whole packets only.
            const SInt64 frames = static_cast<SInt64>(decoded.size() / channels);
            const SInt64 surplus = IsLossless(pair.mFormat) ? 1 : stream.mFormat.mFramesPerPacket;
            EXPECT_GE(frames, audio.Frames());
            EXPECT_LT(frames, audio.Frames() + surplus);
            EXPECT_GT(encoder_use::SignalToNoise(audio.mSamples, decoded),
                      LeastDecibels(pair.mFormat));
        }
}

TEST_F(OtherReaders, FFprobeTellsTheSameFacts)
{
    struct
    {
        AudioFileTypeID mType;
        AudioFormatID mFormat;
        double mRate;
        UInt32 mChannels;
        const char* mText;  // codec, rate, channels, time base, start, length
    } const rows[] = {
        {kAudioFileM4AType, kAudioFormatMPEG4AAC, 44100, 2, "aac,44100,2,1/44100,0,30011,M4A "},
        {kAudioFileM4AType, kAudioFormatMPEG4AAC, 96000, 1, "aac,96000,1,1/96000,0,30011,M4A "},
        {kAudioFileM4BType, kAudioFormatAppleLossless, 192000, 2,
         "alac,192000,2,1/192000,0,30011,M4B "},
        {kAudioFileM4BType, kAudioFormatAppleLossless, 96000, 8,
         "alac,96000,8,1/96000,0,30011,M4B "},
        {kAudioFileMPEG4Type, kAudioFormatFLAC, 96000, 2, "flac,96000,2,1/96000,0,30011,mp42"},
        {kAudioFileMPEG4Type, kAudioFormatFLAC, 384000, 2, "flac,384000,2,1/384000,0,30011,mp42"},
        {kAudioFileMPEG4Type, kAudioFormatMPEGLayer3, 22050, 2, "mp3,22050,2,1/22050,0,30011,mp42"},
        {kAudioFileMPEG4Type, kAudioFormatEnhancedAC3, 48000, 6,
         "eac3,48000,6,1/48000,0,30011,mp42"},
        {kAudioFileMPEG4Type, kAudioFormatOpus, 48000, 2, "opus,48000,2,1/48000,0,30011,mp42"},
        {kAudioFile3GPType, kAudioFormatMPEG4AAC, 8000, 1, "aac,8000,1,1/8000,0,30011,3gp6"},
        {kAudioFile3GP2Type, kAudioFormatMPEG4AAC, 48000, 2, "aac,48000,2,1/48000,0,30011,3g2a"},
    };
    for (const auto& row : rows)
    {
        SCOPED_TRACE(row.mText);
        Audio audio = MakeAudio(row.mFormat, row.mChannels, 30011);
        audio.mRate = row.mRate;
        const std::string path =
            Store(Written(row.mType, Encode(audio), audio.Frames()), "file.mp4");
        std::string text = TextOf(
            "ffprobe -v warning -of csv=p=0 -show_entries "
            "stream=codec_name,sample_rate,channels,time_base,start_pts,duration_ts:"
            "format_tags=major_brand " +
            path);
        std::erase(text, '\r');
        std::replace(text.begin(), text.end(), '\n', ',');
        // What some codecs tell besides leaves fields that are empty.
        text.erase(
            std::unique(text.begin(), text.end(),
                        [](char inLeft, char inRight) { return inLeft == ',' && inRight == ','; }),
            text.end());
        EXPECT_EQ(text.substr(0, std::strlen(row.mText)), row.mText);
    }
}

TEST_F(OtherReaders, FFmpegFindsEveryPacketAsItWas)
{
    const Audio audio = MakeAudio(kAudioFormatMPEG4AAC, 2, 200000);
    const Stream stream = Encode(audio);
    const std::string path = Store(Written(kAudioFileM4AType, stream, audio.Frames()), "file.m4a");
    const Bytes copied =
        OutputOf("ffmpeg -v error -nostdin -i " + path + " -map 0 -c copy -f data -", false);
    Bytes wanted;
    for (const Bytes& packet : stream.mPackets)
        wanted.insert(wanted.end(), packet.begin(), packet.end());
    EXPECT_TRUE(copied == wanted);
}

TEST_F(OtherReaders, FFprobeOpensAFileWithoutPackets)
{
    for (const Pair& pair : kPairs)
    {
        SCOPED_TRACE(Name(pair));
        Stream stream = Encode(MakeAudio(pair.mFormat, 2, 5000));
        stream.mPackets.clear();
        stream.mFrames.clear();
        const std::string path = Store(Written(pair.mType, stream, 0), "file.mp4");
        const std::string text = TextOf(
            "ffprobe -v error -count_packets -of csv=p=0 "
            "-show_entries stream=codec_type,channels,nb_read_packets " +
            path);
        EXPECT_EQ(text.substr(0, 11), "audio,2,N/A");
    }
}

TEST_F(OtherReaders, FFmpegDecodesLosslessLengthsAroundAFrameExactly)
{
    for (const AudioFormatID format : {kAudioFormatAppleLossless, kAudioFormatFLAC})
    {
        const std::size_t frame = Encode(MakeAudio(format, 2, 5000)).mFormat.mFramesPerPacket;
        for (const std::size_t frames : {std::size_t{1}, frame - 1, frame, frame + 1})
        {
            const Audio audio = MakeAudio(format, 2, frames);
            const std::string path =
                Store(Written(kAudioFileMPEG4Type, Encode(audio), audio.Frames()), "file.mp4");
            EXPECT_EQ(DecodedByFFmpeg(path).size(), frames * 2) << CodeText(format);
        }
    }
}

// It plays without the first packet, which is the encoder's delay here.
TEST_F(OtherReaders, FaadDecodesAACAligned)
{
    for (const AudioFileTypeID type : {kAudioFileM4AType, kAudioFileM4BType, kAudioFileMPEG4Type,
                                       kAudioFile3GPType, kAudioFile3GP2Type})
    {
        SCOPED_TRACE(CodeText(type));
        const Audio audio = MakeAudio(kAudioFormatMPEG4AAC, 2, 30011);
        const Stream stream = Encode(audio);
        const std::string path = Store(Written(type, stream, audio.Frames()), "file.m4a");
        const std::string samples = mFolder.File("samples");
        (void)TextOf("faad -q -b 4 -f 2 -o " + samples + " " + path);
        const auto decoded = converter_use::As<float>(write_test::BytesOfFile(samples));
        EXPECT_EQ(decoded.size() / 2, 1024 * (stream.mPackets.size() - 1));
        EXPECT_GT(encoder_use::SignalToNoise(audio.mSamples, decoded), 15.0);
    }
}

TEST_F(OtherReaders, FaadShowsTheTextOfLengths)
{
    const Audio audio = MakeAudio(kAudioFormatMPEG4AAC, 2, 30011);
    const std::string path =
        Store(Written(kAudioFileM4AType, Encode(audio), audio.Frames()), "file.m4a");
    // 1024 frames of priming and 30011 valid ones of 31 packets.
    EXPECT_NE(TextOf("faad -i " + path).find(" 00000000 00000400 000002C5 000000000000753B"),
              std::string::npos);
}

}  // namespace
