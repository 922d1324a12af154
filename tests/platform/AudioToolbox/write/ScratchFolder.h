// ScratchFolder: an empty folder for the time of one test.
#ifndef TESTS_PLATFORM_AUDIOTOOLBOX_WRITE_SCRATCHFOLDER_H
#define TESTS_PLATFORM_AUDIOTOOLBOX_WRITE_SCRATCHFOLDER_H

#include <CoreAudio/CoreAudioTypes.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <vector>

namespace write_test
{

using ByteVector = std::vector<UInt8>;

class ScratchFolder
{
public:
    ScratchFolder()
        : mPath((std::filesystem::temp_directory_path() / "audio-write-XXXXXX").string())
    {
        if (::mkdtemp(mPath.data()) == nullptr)
            throw std::runtime_error("no scratch folder");
    }
    ScratchFolder(const ScratchFolder&) = delete;
    ScratchFolder& operator=(const ScratchFolder&) = delete;
    ~ScratchFolder()
    {
        std::error_code ignored;
        std::filesystem::remove_all(mPath, ignored);
    }

    std::string File(const std::string& inName) const { return mPath + "/" + inName; }
    const std::string& Path() const { return mPath; }

private:
    std::string mPath;
};

inline ByteVector BytesOfFile(const std::string& inPath)
{
    std::ifstream file(inPath, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

inline void MakeFile(const std::string& inPath, const std::string& inText)
{
    std::ofstream(inPath, std::ios::binary) << inText;
}

/// The descriptor that is open on inPath, found as a debugger would; -1: none.
inline int DescriptorOf(const std::string& inPath)
{
    for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd"))
    {
        std::error_code error;
        const auto target = std::filesystem::read_symlink(entry.path(), error);
        if (!error && target == std::filesystem::canonical(inPath))
            return std::stoi(entry.path().filename().string());
    }
    return -1;
}

}  // namespace write_test

#endif
