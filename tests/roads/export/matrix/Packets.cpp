#include "Packets.h"

#include <cstdio>
#include <memory>
#include <type_traits>

namespace export_matrix
{

namespace
{

struct Close
{
    void operator()(std::FILE* inPipe) const { (void)pclose(inPipe); }
    void operator()(OpaqueAudioFileID* inFile) const { (void)AudioFileClose(inFile); }
    void operator()(const void* inReference) const { CFRelease(inReference); }
};

std::unique_ptr<OpaqueAudioFileID, Close> Open(const std::string& inPath)
{
    const std::unique_ptr<std::remove_pointer_t<CFURLRef>, Close> url(
        CFURLCreateFromFileSystemRepresentation(nullptr,
                                                reinterpret_cast<const UInt8*>(inPath.data()),
                                                static_cast<CFIndex>(inPath.size()), false));
    AudioFileID file = nullptr;
    if (AudioFileOpenURL(url.get(), kAudioFileReadPermission, 0, &file) != noErr)
        return nullptr;
    return std::unique_ptr<OpaqueAudioFileID, Close>(file);
}

}  // namespace

std::vector<std::size_t> PacketSizes(const std::string& inPath)
{
    const std::string command =
        "ffprobe -v error -show_entries packet=size -of csv=p=0 '" + inPath + "' 2>/dev/null";
    const std::unique_ptr<std::FILE, Close> pipe(popen(command.c_str(), "r"));
    std::vector<std::size_t> sizes;
    char line[256];  // some containers have more than the size on it
    while (pipe && std::fgets(line, sizeof(line), pipe.get()))
        if (std::size_t size = 0; std::sscanf(line, "%zu", &size) == 1)
            sizes.push_back(size);
    return sizes;
}

std::optional<AudioFilePacketTableInfo> PacketTableOf(const std::string& inPath)
{
    const auto file = Open(inPath);
    AudioFilePacketTableInfo table = {};
    UInt32 size = sizeof(table);
    if (!file ||
        AudioFileGetProperty(file.get(), kAudioFilePropertyPacketTableInfo, &size, &table) != noErr)
        return {};
    return table;
}

}  // namespace export_matrix
