#include "ProbedPackets.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <memory>
#include <unistd.h>

namespace stream_testing
{
namespace
{

struct ClosePipe
{
    void operator()(std::FILE* inPipe) const { (void)pclose(inPipe); }
};

Bytes LoadFile(const std::string& inPath)
{
    std::ifstream file(inPath, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

}  // namespace

std::vector<Bytes> ProbedPackets(const std::string& inPath)
{
    const std::string command =
        "ffprobe -v error -select_streams a -show_entries "
        "packet=size,pos -of csv=p=0 '" +
        inPath + "'";
    const std::unique_ptr<std::FILE, ClosePipe> pipe(popen(command.c_str(), "r"));
    const Bytes file = LoadFile(inPath);
    std::vector<Bytes> packets;
    char line[256];
    while (pipe != nullptr && std::fgets(line, sizeof(line), pipe.get()) != nullptr)
    {
        std::size_t size = 0;
        std::size_t position = 0;
        if (std::sscanf(line, "%zu,%zu", &size, &position) != 2 || position > file.size() ||
            size > file.size() - position)
            continue;
        const auto from = file.begin() + static_cast<std::ptrdiff_t>(position);
        packets.emplace_back(from, from + static_cast<std::ptrdiff_t>(size));
    }
    return packets;
}

std::vector<Bytes> ProbedPacketsOf(const Bytes& inBytes, const std::string& inSuffix)
{
    std::string path = testing::TempDir() + "/streamXXXXXX" + inSuffix;
    const int file = mkstemps(path.data(), static_cast<int>(inSuffix.size()));
    if (file < 0)
        return {};
    const bool isWritten =
        write(file, inBytes.data(), inBytes.size()) == static_cast<ssize_t>(inBytes.size());
    (void)close(file);
    const std::vector<Bytes> packets = isWritten ? ProbedPackets(path) : std::vector<Bytes>{};
    (void)unlink(path.c_str());
    return packets;
}

}  // namespace stream_testing
