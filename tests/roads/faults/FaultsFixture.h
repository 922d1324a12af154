// FaultsFixture: a folder of its own, a short source, and conversions inside this process, by the
// built bundle and the host library as tarvo has it, on a system that fails as planned.
#ifndef TESTS_ROADS_FAULTS_FAULTSFIXTURE_H
#define TESTS_ROADS_FAULTS_FAULTSFIXTURE_H

#include "host/Failure.h"
#include "host/Registration.h"
#include "host/export/FileConverter.h"
#include "tests/roads/faults/FaultySystem.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>
#include <string>

namespace faults
{

namespace fs = std::filesystem;

constexpr std::uint32_t kManyFrames = 70000;  // more than a block of the host
constexpr std::uint32_t kFewFrames = 9000;    // for what takes long

/// A 16-bit WAVE file of 44100 Hz: noise, or silence that takes no room.
inline void MakeSource(const std::string& inPath, std::uint32_t inFrames, std::uint16_t inChannels,
                       bool inIsNoise, std::uint32_t inRate = 44100)
{
    const std::uint32_t bytes = inFrames * inChannels * 2;
    std::string head = "RIFF";
    const auto add = [&head](std::uint32_t inValue, int inBytes)
    {
        for (int i = 0; i < inBytes; ++i)
            head += static_cast<char>(inValue >> (8 * i));
    };
    add(bytes + 36, 4);
    head += "WAVEfmt ";
    add(16, 4);
    add(1, 2);
    add(inChannels, 2);
    add(inRate, 4);
    add(inRate * inChannels * 2, 4);
    add(inChannels * 2u, 2);
    add(16, 2);
    head += "data";
    add(bytes, 4);

    std::ofstream file(inPath, std::ios::binary);
    file << head;
    std::uint32_t state = 1;
    for (std::uint32_t i = 0; inIsNoise && i < bytes; i += 2)
    {
        state = state * 1664525 + 1013904223;
        file.put(static_cast<char>(state >> 16)).put(static_cast<char>(state >> 26));
    }
    file.close();
    fs::resize_file(inPath, head.size() + bytes);
}

class FaultsFixture : public testing::Test
{
protected:
    FaultsFixture()
    {
        std::string name = (fs::canonical(fs::temp_directory_path()) / "faults-XXXXXX").string();
        mFolder = mkdtemp(name.data());
        mOut = (mFolder / "out").string();
        fs::create_directory(mOut);
        mSource = (mFolder / "in.wav").string();
        MakeSource(mSource, kManyFrames, 2, true);
        mOptions.mProgress = host::ProgressForm::kNone;
    }
    ~FaultsFixture() override
    {
        faulty_system::Follow({});
        fs::remove_all(mFolder);
    }

    /// The plug-in, started; one for all tests.
    static const host::PlugIn& Bundle()
    {
        static const host::PlugIn sPlugIn = []
        {
            host::PlugIn plugIn("");
            (void)host::Register(plugIn);
            return plugIn;
        }();
        return sPlugIn;
    }

    std::string Out(const std::string& inName) const { return mOut + "/" + inName; }

    /// In the folder of the targets, hidden ones too.
    std::ptrdiff_t FilesLeft() const
    {
        return std::distance(fs::directory_iterator(mOut), fs::directory_iterator());
    }

    /// A conversion while the plan holds. Nothing: it succeeded.
    std::optional<host::Failure> Convert(
        const std::string& inName, const faulty_system::Plan& inPlan = {},
        const host::TellPlan& inTell = [](const auto&) {})
    {
        const host::FileConverter converter(Bundle(), mOptions);
        std::optional<host::Failure> failure;
        faulty_system::Follow(inPlan);
        try
        {
            converter.Convert(mSource, Out(inName), inTell);
        }
        catch (const host::Failure& caught)
        {
            failure.emplace(caught);
        }
        mTold = faulty_system::Told();
        faulty_system::Follow({});
        return failure;
    }

    static std::string Bytes(const std::string& inPath)
    {
        std::ifstream file(inPath, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }

    static std::ptrdiff_t OpenDescriptors()
    {
        return std::distance(fs::directory_iterator("/proc/self/fd"), fs::directory_iterator());
    }

    fs::path mFolder;
    std::string mOut;  // where targets lie, and what fails
    std::string mSource;
    host::ConvertOptions mOptions;
    faulty_system::Report mTold;  // of the last conversion
};

/// A type of each family of writers, by what its writing does: patch, append, hold tables.
struct TypeRow
{
    const char* mName;  // of the target
    const char* mType;  // "": by the name
    const char* mFormat;
    std::uint32_t mFrames;
};

// clang-format off
constexpr TypeRow kTypes[] = {
    {"wave.wav",  "WAVE", "",        kManyFrames},
    {"rf64.wav",  "RF64", "",        kManyFrames},
    {"bw64.wav",  "BW64", "",        kManyFrames},
    {"law.wav",   "WAVE", "mu-law",  kManyFrames},
    {"a.w64",     "",     "",        kManyFrames},
    {"a.aiff",    "",     "",        kManyFrames},
    {"a.aifc",    "",     "",        kManyFrames},
    {"ima4.aifc", "",     "ima4",    kManyFrames},
    {"a.au",      "",     "",        kManyFrames},
    {"a.caf",     "",     "",        kManyFrames},
    {"alac.caf",  "",     "alac",    kManyFrames},
    {"aac.caf",   "",     "aac",     kFewFrames},
    {"alac.m4a",  "",     "alac",    kManyFrames},
    {"aac.m4a",   "",     "aac",     kFewFrames},
    {"flac.mp4",  "",     "flac",    kManyFrames},
    {"a.flac",    "",     "",        kManyFrames},
    {"a.aac",     "",     "",        kFewFrames},
    {"a.loas",    "",     "",        kFewFrames},
    {"a.mp3",     "",     "",        kFewFrames},
    {"a.mp2",     "",     "",        kFewFrames},
    {"a.ac3",     "",     "",        kFewFrames},
    {"a.ec3",     "",     "",        kFewFrames},
};
// clang-format on

}  // namespace faults

#endif
