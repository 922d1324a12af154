// DialogRoadFixture: the built bundle, its dialog on a screen, and audio of several shapes.
#ifndef TESTS_ROADS_DIALOG_DIALOGROADFIXTURE_H
#define TESTS_ROADS_DIALOG_DIALOGROADFIXTURE_H

#include "host/Registration.h"
#include "host/export/SettingsChooser.h"
#include "tests/roads/dialog/DialogModel.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

namespace testing_support
{

struct AudioCase
{
    DialogAudio mAudio;
    const char* mEncoder;  // ffmpeg's, of the file that holds it
};

constexpr AudioCase kAudioCases[] = {
    {{44100, 2, 16}, "pcm_s16le"}, {{48000, 1, 24}, "pcm_s24le"}, {{48000, 6, 32}, "pcm_f32le"},
    {{96000, 2, 24}, "pcm_s24le"}, {{11025, 2, 16}, "pcm_s16le"},
};

/// "44100_2_16"
std::string NameOf(const DialogAudio& inAudio);

class DialogRoadFixture : public testing::Test
{
protected:
    DialogRoadFixture();
    ~DialogRoadFixture() override;

    std::string Path(const std::string& inName) const { return (mFolder / inName).string(); }

    /// A fifth of a second of tones, as a WAVE file.
    std::string MakeAudio(const AudioCase& inCase) const;

    static const host::PlugIn& ThePlugIn();
    static const host::Registration& TheRegistration();

    /// The dialog for a file, opened with the plan for the wish.
    static host::DialogRequest RequestFor(const std::string& inFile,
                                          const host::ExportWish& inWish);
    static DialogModel::Start StartOf(const std::string& inSettings);

    std::filesystem::path mFolder;
};

}  // namespace testing_support

#endif
