// ConvertFixture: a folder of its own, and tarvo's commands that write.
#ifndef TESTS_ROADS_TARVO_CONVERTFIXTURE_H
#define TESTS_ROADS_TARVO_CONVERTFIXTURE_H

#include "tests/roads/tarvo/Program.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <string>
#include <vector>

namespace testing_support
{

class ConvertFixture : public testing::Test
{
protected:
    ConvertFixture()
    {
        std::string name = (std::filesystem::temp_directory_path() / "convert-XXXXXX").string();
        mFolder = mkdtemp(name.data());
        setenv("XDG_CONFIG_HOME", Path("config").c_str(), 1);
    }
    ~ConvertFixture() override
    {
        unsetenv("XDG_CONFIG_HOME");
        std::filesystem::remove_all(mFolder);
    }

    static std::string Made(const char* inName) { return std::string(TEST_AUDIO) + "/" + inName; }
    std::string Path(const std::string& inName) const { return (mFolder / inName).string(); }

    static ProgramRun Convert(std::vector<std::string> inArguments)
    {
        inArguments.insert(inArguments.begin(), "convert");
        return RunTarvo(std::move(inArguments));
    }

    static ProgramRun Settings(std::vector<std::string> inArguments)
    {
        inArguments.insert(inArguments.begin(), "settings");
        return RunTarvo(std::move(inArguments));
    }

    static std::vector<nlohmann::json> Lines(const std::string& inText)
    {
        std::istringstream stream(inText);
        std::vector<nlohmann::json> lines;
        for (std::string line; std::getline(stream, line);)
            lines.push_back(nlohmann::json::parse(line));
        return lines;
    }

    static nlohmann::json Info(const std::string& inPath)
    {
        const ProgramRun run = RunTarvo({"info", "--json", inPath});
        EXPECT_EQ(run.mExitCode, 0) << run.mErrors;
        return nlohmann::json::parse(run.mOutput);
    }

    /// Decoded samples, interleaved.
    std::string Samples(const std::string& inPath) const
    {
        const std::string raw = Path("samples.raw");
        const ProgramRun run = RunTarvo({"decode", "--force", "--raw", raw, inPath});
        EXPECT_EQ(run.mExitCode, 0) << run.mErrors;
        const std::string samples = Bytes(raw);
        std::filesystem::remove(raw);
        return samples;
    }

    static std::string Bytes(const std::string& inPath)
    {
        std::ifstream file(inPath, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }

    /// Names in the folder, hidden ones too.
    std::size_t FilesIn(const std::string& inFolder = "") const
    {
        const auto folder = inFolder.empty() ? mFolder : mFolder / inFolder;
        return static_cast<std::size_t>(std::distance(std::filesystem::directory_iterator(folder),
                                                      std::filesystem::directory_iterator()));
    }

    std::filesystem::path mFolder;
};

}  // namespace testing_support

#endif
