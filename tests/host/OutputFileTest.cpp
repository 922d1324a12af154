#include "host/OutputFile.h"

#include "host/Failure.h"

#include <gtest/gtest.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sys/resource.h>
#include <sys/stat.h>

namespace
{

namespace fs = std::filesystem;
using host::OutputFile;

class OutputFileTest : public testing::Test
{
protected:
    OutputFileTest()
    {
        std::string name = (fs::temp_directory_path() / "output-test-XXXXXX").string();
        mFolder = mkdtemp(name.data());
    }
    ~OutputFileTest() override { fs::remove_all(mFolder); }

    std::string Path(const char* inName) const { return (mFolder / inName).string(); }
    static std::string Content(const std::string& inPath)
    {
        std::ifstream file(inPath);
        return {std::istreambuf_iterator<char>(file), {}};
    }
    static void Put(const std::string& inPath, const char* inText)
    {
        std::ofstream(inPath) << inText;
    }
    std::ptrdiff_t FileCount() const
    {
        return std::distance(fs::directory_iterator(mFolder), fs::directory_iterator());
    }

    fs::path mFolder;
};

TEST_F(OutputFileTest, AppearsOnlyAtCommit)
{
    OutputFile file(Path("out"), false, "");
    file.Write("data", 4);
    EXPECT_FALSE(fs::exists(Path("out")));
    file.Commit();
    EXPECT_EQ(Content(Path("out")), "data");
    EXPECT_EQ(FileCount(), 1);
}

TEST_F(OutputFileTest, LeavesNothingWithoutCommit)
{
    {
        OutputFile file(Path("out"), false, "");
        file.Write("data", 4);
    }
    EXPECT_EQ(FileCount(), 0);
}

TEST_F(OutputFileTest, ReplacesOnlyWhenAllowedAndKeepsTheOldFileUntilThen)
{
    Put(Path("out"), "old");
    EXPECT_THROW(OutputFile(Path("out"), false, ""), host::Failure);
    EXPECT_EQ(Content(Path("out")), "old");

    OutputFile file(Path("out"), true, "");
    file.Write("new", 3);
    EXPECT_EQ(Content(Path("out")), "old");
    file.Commit();
    EXPECT_EQ(Content(Path("out")), "new");
}

TEST_F(OutputFileTest, RefusesTheFileThatIsRead)
{
    Put(Path("in"), "data");
    fs::create_hard_link(Path("in"), Path("other-name"));
    EXPECT_THROW(OutputFile(Path("other-name"), true, Path("in")), host::Failure);
    EXPECT_EQ(Content(Path("in")), "data");
}

TEST_F(OutputFileTest, WritesThroughALink)
{
    Put(Path("target"), "old");
    fs::create_symlink(Path("target"), Path("link"));
    OutputFile file(Path("link"), true, "");
    file.Write("new", 3);
    file.Commit();
    EXPECT_TRUE(fs::is_symlink(Path("link")));
    EXPECT_EQ(Content(Path("target")), "new");
}

TEST_F(OutputFileTest, RefusesAFolderAndAMissingOne)
{
    EXPECT_THROW(OutputFile(mFolder.string(), true, ""), host::Failure);
    EXPECT_THROW(OutputFile(Path("missing/out"), true, ""), host::Failure);
}

TEST_F(OutputFileTest, RefusesAnEmptyName)
{
    EXPECT_THROW(OutputFile("", false, ""), host::Failure);
}

TEST_F(OutputFileTest, TellsOfAFullDevice)
{
    OutputFile file("/dev/full", false, "");
    EXPECT_THROW(file.Write("data", 4), host::Failure);
}

TEST_F(OutputFileTest, TellsOfASizeLimitAndLeavesNothing)
{
    signal(SIGXFSZ, SIG_IGN);
    rlimit old = {};
    getrlimit(RLIMIT_FSIZE, &old);
    const rlimit small = {1000, old.rlim_max};
    setrlimit(RLIMIT_FSIZE, &small);
    try
    {
        OutputFile file(Path("out"), false, "");
        const std::string data(5000, 'x');
        EXPECT_THROW(file.Write(data.data(), data.size()), host::Failure);
    }
    catch (const host::Failure& failure)
    {
        ADD_FAILURE() << failure.what();
    }
    setrlimit(RLIMIT_FSIZE, &old);
    EXPECT_EQ(FileCount(), 0);
}

TEST_F(OutputFileTest, GivesANewFileTheUsualPermissions)
{
    const mode_t mask = umask(022);
    OutputFile file(Path("out"), false, "");
    file.Commit();
    umask(mask);
    struct stat status = {};
    ASSERT_EQ(stat(Path("out").c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0644u);
}

}  // namespace
