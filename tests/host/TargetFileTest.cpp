#include "host/TargetFile.h"

#include "host/Failure.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <sys/stat.h>

namespace
{

namespace fs = std::filesystem;
using host::TargetFile;

class TargetFileTest : public testing::Test
{
protected:
    TargetFileTest()
    {
        std::string name = (fs::temp_directory_path() / "target-test-XXXXXX").string();
        mFolder = mkdtemp(name.data());
    }
    ~TargetFileTest() override { fs::remove_all(mFolder); }

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
    static mode_t Mode(const std::string& inPath)
    {
        struct stat status = {};
        EXPECT_EQ(stat(inPath.c_str(), &status), 0);
        return status.st_mode & 07777;
    }
    static std::string Refusal(const std::string& inPath, bool inMayReplace,
                               const std::string& inSource)
    {
        try
        {
            TargetFile target(inPath, inMayReplace, inSource);
        }
        catch (const host::Failure& failure)
        {
            EXPECT_EQ(failure.mExitCode, host::kExitOutput);
            return failure.what();
        }
        return {};
    }

    fs::path mFolder;
};

TEST_F(TargetFileTest, AppearsOnlyAtCommit)
{
    TargetFile target(Path("out"), false, "");
    Put(target.TemporaryPath(), "data");
    EXPECT_FALSE(fs::exists(Path("out")));
    EXPECT_EQ(fs::path(target.TemporaryPath()).parent_path(), mFolder);
    target.Commit();
    EXPECT_EQ(Content(Path("out")), "data");
    EXPECT_EQ(FileCount(), 1);
}

TEST_F(TargetFileTest, AppearsAlthoughItsWriterMadeAFileOfItsOwn)
{
    TargetFile target(Path("out"), false, "");
    fs::remove(target.TemporaryPath());
    Put(target.TemporaryPath(), "data");
    target.Commit();
    EXPECT_EQ(Content(Path("out")), "data");
}

TEST_F(TargetFileTest, LeavesNothingWithoutCommit)
{
    Put(Path("old"), "old");
    {
        TargetFile target(Path("out"), false, "");
        TargetFile other(Path("old"), true, "");
        Put(target.TemporaryPath(), "data");
        Put(other.TemporaryPath(), "data");
    }
    EXPECT_EQ(FileCount(), 1);
    EXPECT_EQ(Content(Path("old")), "old");
}

TEST_F(TargetFileTest, FailsWhenItsFileIsGone)
{
    {
        TargetFile target(Path("out"), false, "");
        fs::remove(target.TemporaryPath());
        EXPECT_THROW(target.Commit(), host::Failure);
    }
    EXPECT_EQ(FileCount(), 0);
}

TEST_F(TargetFileTest, AsksBeforeItReplaces)
{
    Put(Path("out"), "old");
    EXPECT_EQ(Refusal(Path("out"), false, ""),
              Path("out") + ": is there already (--force replaces it)");
    TargetFile target(Path("out"), true, "");
    Put(target.TemporaryPath(), "new");
    EXPECT_EQ(Content(Path("out")), "old");
    target.Commit();
    EXPECT_EQ(Content(Path("out")), "new");
}

TEST_F(TargetFileTest, RefusesItsSourceByAnyName)
{
    Put(Path("in"), "data");
    fs::create_hard_link(Path("in"), Path("hard"));
    fs::create_symlink(Path("in"), Path("soft"));
    for (const char* name : {"in", "hard", "soft"})
        EXPECT_EQ(Refusal(Path(name), true, Path("in")),
                  Path(name) + ": is the file that is being read");
    EXPECT_EQ(Refusal(Path("in"), true, Path("soft")),
              Path("in") + ": is the file that is being read");
    EXPECT_EQ(Content(Path("in")), "data");
    EXPECT_EQ(FileCount(), 3);
}

TEST_F(TargetFileTest, RefusesWhatIsNoRegularFile)
{
    ASSERT_EQ(mkfifo(Path("pipe").c_str(), 0600), 0);
    EXPECT_EQ(Refusal(Path("pipe"), true, ""), Path("pipe") + ": is no regular file");
    EXPECT_EQ(Refusal("/dev/null", true, ""), "/dev/null: is no regular file");
    EXPECT_EQ(Refusal(mFolder.string(), true, ""),
              mFolder.string() + ": cannot write: Is a directory");
}

TEST_F(TargetFileTest, RefusesFoldersThatAreMissingOrNone)
{
    Put(Path("file"), "");
    EXPECT_EQ(Refusal(Path("missing/out"), true, ""),
              Path("missing/out") + ": cannot write: No such file or directory");
    EXPECT_EQ(Refusal(Path("file/out"), true, ""),
              Path("file/out") + ": cannot write: Not a directory");
    EXPECT_EQ(Refusal("", true, ""), ": cannot write: No such file or directory");
}

TEST_F(TargetFileTest, RefusesANameThatIsTooLongBeforeTheWork)
{
    const std::string name = Path(std::string(300, 'x').c_str());
    EXPECT_EQ(Refusal(name, true, ""), name + ": cannot write: File name too long");
}

TEST_F(TargetFileTest, ReplacesTheFileThatALinkLeadsTo)
{
    fs::create_directory(mFolder / "deep");
    Put(Path("deep/target"), "old");
    fs::create_symlink("deep/target", Path("link"));
    TargetFile target(Path("link"), true, "");
    Put(target.TemporaryPath(), "new");
    target.Commit();
    EXPECT_TRUE(fs::is_symlink(Path("link")));
    EXPECT_EQ(Content(Path("deep/target")), "new");
}

TEST_F(TargetFileTest, RefusesALinkThatLeadsNowhere)
{
    fs::create_symlink("nowhere", Path("link"));
    EXPECT_EQ(Refusal(Path("link"), true, ""),
              Path("link") + ": cannot write: No such file or directory");
    EXPECT_TRUE(fs::is_symlink(Path("link")));
}

TEST_F(TargetFileTest, GivesANewFileWhatTheMaskLeaves)
{
    const mode_t mask = umask(027);
    TargetFile target(Path("out"), false, "");
    umask(mask);
    EXPECT_EQ(Mode(target.TemporaryPath()), 0600u);
    target.Commit();
    EXPECT_EQ(Mode(Path("out")), 0640u);
}

TEST_F(TargetFileTest, KeepsThePermissionsOfAFileThatItReplaces)
{
    Put(Path("out"), "old");
    ASSERT_EQ(chmod(Path("out").c_str(), 0444), 0);
    TargetFile target(Path("out"), true, "");
    Put(target.TemporaryPath(), "new");
    target.Commit();
    EXPECT_EQ(Mode(Path("out")), 0444u);
    EXPECT_EQ(Content(Path("out")), "new");
}

}  // namespace
