// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "base/AtomicFile.h"

#include <gmock/gmock.h>

#include <csignal>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string>

#include <sys/resource.h>
#include <sys/stat.h>

namespace OrvHost {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;
using testing::StartsWith;

class AtomicFileTest : public testing::Test {
protected:
    AtomicFileTest() {
        std::string name = (fs::temp_directory_path() / "orv-file-XXXXXX").string();
        mDirectory = mkdtemp(name.data());
    }
    ~AtomicFileTest() override { fs::remove_all(mDirectory); }

    fs::path path(const std::string& name) const { return mDirectory / name; }

    fs::path existing(const std::string& name) const {
        std::ofstream(path(name)) << "old";
        return path(name);
    }

    static std::string textOf(const fs::path& file) {
        std::ifstream in(file);
        return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
    }

    std::size_t files() const {
        return static_cast<std::size_t>(
            std::distance(fs::directory_iterator(mDirectory), fs::directory_iterator()));
    }

    static std::string errorOf(const fs::path& file) {
        try {
            const AtomicFile unused(file);
        } catch (const FileError& error) {
            return error.what();
        }
        return "";
    }

    fs::path mDirectory;
};

TEST_F(AtomicFileTest, Replace_NewFile_HoldsTheText) {
    AtomicFile file(path("a"));
    file.out() << "new";
    EXPECT_FALSE(fs::exists(path("a")));
    file.replace();
    EXPECT_EQ(textOf(path("a")), "new");
    EXPECT_EQ(files(), 1U);
}

TEST_F(AtomicFileTest, Replace_OldFile_IsThereUntilThenAndGivesItsPermissions) {
    existing("a");
    chmod(path("a").c_str(), 0640);
    AtomicFile file(path("a"));
    file.out() << "new" << std::flush;
    EXPECT_EQ(textOf(path("a")), "old");
    file.replace();
    EXPECT_EQ(textOf(path("a")), "new");
    EXPECT_EQ(fs::status(path("a")).permissions(), fs::perms(0640));
}

TEST_F(AtomicFileTest, Destructor_WithoutReplace_LeavesTheOldFileAndNothingElse) {
    existing("a");
    {
        AtomicFile file(path("a"));
        file.out() << "new" << std::flush;
        EXPECT_EQ(files(), 2U);
    }
    EXPECT_EQ(textOf(path("a")), "old");
    EXPECT_EQ(files(), 1U);
}

TEST_F(AtomicFileTest, Replace_Link_ReplacesTheFileThatItLeadsTo) {
    existing("a");
    fs::create_symlink("a", path("link"));
    AtomicFile file(path("link"));
    file.out() << "new";
    file.replace();
    EXPECT_TRUE(fs::is_symlink(path("link")));
    EXPECT_EQ(textOf(path("a")), "new");
}

TEST_F(AtomicFileTest, Replace_LinkToNothing_MakesTheFileThatItLeadsTo) {
    fs::create_symlink("b", path("link"));
    fs::create_symlink(path("link"), path("further"));
    AtomicFile file(path("further"));
    file.out() << "new";
    file.replace();
    EXPECT_TRUE(fs::is_symlink(path("link")));
    EXPECT_EQ(textOf(path("b")), "new");
}

TEST_F(AtomicFileTest, Constructor_LinksInACircle_AreRefusedAndStay) {
    fs::create_symlink("b", path("a"));
    fs::create_symlink("a", path("b"));
    EXPECT_THAT(errorOf(path("a")), HasSubstr("the link leads to no file; a new file"));
    EXPECT_TRUE(fs::is_symlink(path("a")));
    EXPECT_EQ(files(), 2U);
}

TEST_F(AtomicFileTest, TwoAtOnce_LastReplaceCounts) {
    AtomicFile first(path("a"));
    AtomicFile second(path("a"));
    first.out() << "first";
    second.out() << "second";
    second.replace();
    first.replace();
    EXPECT_EQ(textOf(path("a")), "first");
    EXPECT_EQ(files(), 1U);
}

// A limit on the size of files fails in the same calls as a full disk.
TEST_F(AtomicFileTest, Replace_NoMoreSpace_FailsAndLeavesTheOldFile) {
    existing("a");
    rlimit before{};
    getrlimit(RLIMIT_FSIZE, &before);
    const auto handler = std::signal(SIGXFSZ, SIG_IGN);
    const rlimit small{64 * 1024, before.rlim_max};
    setrlimit(RLIMIT_FSIZE, &small);
    std::string error;
    {
        AtomicFile file(path("a"));
        file.out() << std::string(1024 * 1024, 'x');
        try {
            file.replace();
        } catch (const FileError& failure) {
            error = failure.what();
        }
    }
    setrlimit(RLIMIT_FSIZE, &before);
    std::signal(SIGXFSZ, handler);
    EXPECT_THAT(error, StartsWith(path("a").string() + ": cannot be written to its end"));
    EXPECT_EQ(textOf(path("a")), "old");
    EXPECT_EQ(files(), 1U);
}

TEST_F(AtomicFileTest, WriteWhole_FileOrDevice_IsWrittenOrSaysWhy) {
    existing("a");
    writeWholeFile(path("a"), "new");
    EXPECT_EQ(textOf(path("a")), "new");
    EXPECT_EQ(files(), 1U);
    EXPECT_NO_THROW(writeWholeFile("/dev/null", "text"));
    try {
        writeWholeFile("/dev/full", "text");
        ADD_FAILURE() << "/dev/full was written";
    } catch (const FileError& failure) {
        EXPECT_STREQ(failure.what(), "/dev/full: cannot be written: No space left on device");
    }
}

TEST_F(AtomicFileTest, Constructor_PlaceThatCannotBeWritten_SaysWhy) {
    EXPECT_THAT(errorOf(path("none") / "a"),
                StartsWith((path("none") / "a").string() + ": no file can be made in this"));
    EXPECT_THAT(errorOf(mDirectory), HasSubstr("is not a file that can be replaced"));
    EXPECT_THAT(errorOf("/dev/null"), HasSubstr("is not a file that can be replaced"));
    EXPECT_THAT(errorOf(""), HasSubstr("is not the name of a file"));
    EXPECT_EQ(files(), 0U);
}

}
}
