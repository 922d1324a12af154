// OtherReaders: readers that are not ours, as judges of written files.
#ifndef TESTS_PLATFORM_AUDIOTOOLBOX_WRITE_CHUNKED_OTHERREADERS_H
#define TESTS_PLATFORM_AUDIOTOOLBOX_WRITE_CHUNKED_OTHERREADERS_H

#include "../../file/ByteBuilder.h"

#include <sndfile.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

namespace other_readers
{

using testing_support::Bytes;

struct MemoryFile
{
    const Bytes* mBytes;
    sf_count_t mPosition = 0;

    static sf_count_t Size(void* inFile)
    {
        return static_cast<sf_count_t>(static_cast<MemoryFile*>(inFile)->mBytes->size());
    }
    static sf_count_t Seek(sf_count_t inOffset, int inWhence, void* inFile)
    {
        auto* file = static_cast<MemoryFile*>(inFile);
        const sf_count_t from = inWhence == SEEK_SET   ? 0
                                : inWhence == SEEK_CUR ? file->mPosition
                                                       : Size(inFile);
        return file->mPosition = from + inOffset;
    }
    static sf_count_t Read(void* outBytes, sf_count_t inCount, void* inFile)
    {
        auto* file = static_cast<MemoryFile*>(inFile);
        const auto count = std::clamp<sf_count_t>(Size(inFile) - file->mPosition, 0, inCount);
        if (count > 0)
            std::memcpy(outBytes, file->mBytes->data() + file->mPosition,
                        static_cast<std::size_t>(count));
        file->mPosition += count;
        return count;
    }
    static sf_count_t Write(const void*, sf_count_t, void*) { return 0; }
    static sf_count_t Tell(void* inFile) { return static_cast<MemoryFile*>(inFile)->mPosition; }
};

/// What libsndfile reads: everything as doubles, integers scaled to 32 bits, floats as they are.
struct SndFile
{
    bool mIsOpen = false;
    std::string mError;
    SF_INFO mInfo = {};
    std::vector<double> mSamples;
};

inline SndFile ReadWithSndFile(const Bytes& inBytes, bool inIsFloat = false)
{
    SndFile result;
    MemoryFile file{&inBytes};
    SF_VIRTUAL_IO io = {&MemoryFile::Size, &MemoryFile::Seek, &MemoryFile::Read, &MemoryFile::Write,
                        &MemoryFile::Tell};
    SNDFILE* handle = sf_open_virtual(&io, SFM_READ, &result.mInfo, &file);
    result.mError = sf_strerror(handle);
    if (handle == nullptr)
        return result;
    result.mIsOpen = true;
    const auto count = static_cast<std::size_t>(result.mInfo.frames * result.mInfo.channels);
    result.mSamples.resize(count);
    if (inIsFloat)
        (void)sf_read_double(handle, result.mSamples.data(), static_cast<sf_count_t>(count));
    else
    {
        std::vector<int> integers(count);
        (void)sf_read_int(handle, integers.data(), static_cast<sf_count_t>(count));
        std::copy(integers.begin(), integers.end(), result.mSamples.begin());
    }
    (void)sf_close(handle);
    return result;
}

/// A file under a name of its own, gone with the object.
class StoredFile
{
public:
    StoredFile(const Bytes& inBytes, const std::string& inExtension)
    {
        char name[] = "chunked-XXXXXX";
        std::string path = (std::filesystem::temp_directory_path() / name).string();
        mFolder = ::mkdtemp(path.data());
        mPath = mFolder + "/file." + inExtension;
        std::ofstream(mPath, std::ios::binary)
            .write(reinterpret_cast<const char*>(inBytes.data()),
                   static_cast<std::streamsize>(inBytes.size()));
    }
    ~StoredFile()
    {
        std::error_code ignored;  // what is left over harms no test
        std::filesystem::remove_all(mFolder, ignored);
    }
    StoredFile(const StoredFile&) = delete;
    StoredFile& operator=(const StoredFile&) = delete;

    const std::string& Path() const { return mPath; }

private:
    std::string mFolder;
    std::string mPath;
};

/// Standard output of a shell command.
inline Bytes OutputOf(const std::string& inCommand)
{
    Bytes output;
    FILE* pipe = ::popen(inCommand.c_str(), "r");
    if (pipe == nullptr)
        return output;
    UInt8 buffer[4096];
    for (std::size_t got = 0; (got = std::fread(buffer, 1, sizeof(buffer), pipe)) > 0;)
        output.insert(output.end(), buffer, buffer + got);
    (void)::pclose(pipe);
    return output;
}

inline std::string TextOf(const std::string& inCommand)
{
    const Bytes output = OutputOf(inCommand);
    return std::string(output.begin(), output.end());
}

}  // namespace other_readers

#endif
