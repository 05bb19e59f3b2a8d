#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cstdlib>
#include <fstream>
#include <iterator>

#include "linux/doctor/UserEntryFiles.h"

namespace tarvix {
namespace {

namespace fs = std::filesystem;

class UserEntryFilesTest : public ::testing::Test {
protected:
    UserEntryFilesTest() {
        fs::create_directories(local);
        fs::create_directories(system);
    }
    ~UserEntryFilesTest() override { fs::remove_all(root_); }

    static void write(const fs::path& path, const std::string& text) {
        fs::create_directories(path.parent_path());
        std::ofstream(path) << text;
    }
    static std::string read(const fs::path& path) {
        std::ifstream file(path);
        return {std::istreambuf_iterator<char>(file), {}};
    }

    static fs::path freshFolder() {
        std::string pattern = (fs::temp_directory_path() / "tarvix-entries-XXXXXX").string();
        return mkdtemp(pattern.data());
    }

    const fs::path root_ = freshFolder();
    const fs::path user = root_ / "user/applications", local = root_ / "local", system = root_ / "system";
    UserEntryFiles files{{user, local, system}};
};

TEST_F(UserEntryFilesTest, TheSystemsIsTheFirstInItsFolders) {
    write(user / "a.desktop", "user's");
    write(local / "a.desktop", "local");
    write(system / "a.desktop", "system's");
    EXPECT_EQ(files.ofSystem("a"), (DesktopEntryFile{"a.desktop", "local"}));
    EXPECT_EQ(files.ofUser("a"), (DesktopEntryFile{"a.desktop", "user's"}));
    EXPECT_FALSE(files.ofSystem("b"));
    EXPECT_FALSE(files.ofSystem(""));
}

TEST_F(UserEntryFilesTest, AnIdNamesFoldersWithDashes) {
    write(system / "kde/tool.desktop", "below");
    EXPECT_EQ(files.ofSystem("kde-tool"), (DesktopEntryFile{"kde/tool.desktop", "below"}));
    write(user / "kde-tool.desktop", "mine");
    EXPECT_EQ(files.ofUser("kde-tool"), (DesktopEntryFile{"kde-tool.desktop", "mine"})) << "at another place";
}

TEST_F(UserEntryFilesTest, AFileIsMadeWithItsFoldersAndReadByEverybody) {
    ASSERT_TRUE(files.create({"kde/tool.desktop", "text\n"}));
    EXPECT_EQ(read(user / "kde/tool.desktop"), "text\n");
    struct stat about {};
    ASSERT_EQ(stat((user / "kde/tool.desktop").c_str(), &about), 0);
    EXPECT_EQ(about.st_mode & 0777U, 0644U);
    EXPECT_EQ(std::distance(fs::directory_iterator(user / "kde"), {}), 1) << "nothing else is left there";
}

TEST_F(UserEntryFilesTest, AFileThatIsThereIsNeverReplaced) {
    write(user / "a.desktop", "mine");
    const auto made = files.create({"a.desktop", "ours"});
    EXPECT_FALSE(made);
    EXPECT_EQ(read(user / "a.desktop"), "mine");
    fs::create_symlink("/nowhere", user / "b.desktop");
    EXPECT_FALSE(files.create({"b.desktop", "ours"})) << "nor a link that leads nowhere";
    EXPECT_TRUE(fs::is_symlink(user / "b.desktop"));
    EXPECT_EQ(std::distance(fs::directory_iterator(user), {}), 2);
}

TEST_F(UserEntryFilesTest, WhereNothingCanBeMadeThereIsAReason) {
    write(root_ / "user", "a file in the folder's place");
    auto made = files.create({"a.desktop", "ours"});
    ASSERT_FALSE(made);
    EXPECT_FALSE(made.reason().empty());
}

TEST_F(UserEntryFilesTest, OnlyWhatIsStillTheSameIsRemoved) {
    write(user / "a.desktop", "ours");
    EXPECT_FALSE(files.remove({"a.desktop", "another text"}));
    EXPECT_EQ(read(user / "a.desktop"), "ours");
    EXPECT_TRUE(files.remove({"a.desktop", "ours"}));
    EXPECT_FALSE(fs::exists(user / "a.desktop"));
    EXPECT_FALSE(files.remove({"a.desktop", "ours"})) << "it has gone";
}

TEST_F(UserEntryFilesTest, LinksAreNotAmongTheUsersOwn) {
    write(system / "s.desktop", "system's");
    write(user / "a.desktop", "mine");
    write(user / "sub/b.desktop", "mine too");
    write(user / "notes.txt", "no entry");
    fs::create_symlink(system / "s.desktop", user / "link.desktop");
    EXPECT_EQ(files.allOfUser(), (std::vector<DesktopEntryFile>{{"a.desktop", "mine"}, {"sub/b.desktop", "mine too"}}));
    EXPECT_TRUE(files.ofUser("link")) << "but the user's they are";
}

TEST_F(UserEntryFilesTest, AFileThatIsTooLongToBeReadWholeIsNone) {
    write(system / "long.desktop", std::string(2 * 1024 * 1024, 'x'));
    EXPECT_FALSE(files.ofSystem("long"));
}

}  // namespace
}  // namespace tarvix
