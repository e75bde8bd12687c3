#include <Tellurion/BFileReplacement.h>
#include <Tellurion/NewFilesOnly.h>

#include <gtest/gtest.h>

#include "TempFolder.h"

#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <sys/xattr.h>
#include <unistd.h>
#include <cerrno>
#include <functional>

namespace Tellurion {
namespace {

namespace fs = std::filesystem;

constexpr const char* kListName = "system.posix_acl_access";
/// The owner and user 7 may read and write, nobody else anything.
const std::string kList = [] {
    std::string list("\2\0\0\0", 4);
    for (const auto& [tag, rights, id] :
         {std::tuple{1, 6, -1}, {2, 6, 7}, {4, 0, -1}, {16, 6, -1}, {32, 0, -1}})
        for (const auto& [number, bytes] : {std::pair{tag, 2}, {rights, 2}, {id, 4}})
            list.append(reinterpret_cast<const char*>(&number), static_cast<std::size_t>(bytes));
    return list;
}();

struct stat StateOf(const std::string& path) {
    struct stat state {};
    EXPECT_EQ(stat(path.c_str(), &state), 0) << path;
    return state;
}

std::string AttributeOf(const std::string& path, const char* name) {
    char value[256];
    const ssize_t size = getxattr(path.c_str(), name, value, sizeof value);
    return size < 0 ? "" : std::string(value, static_cast<std::size_t>(size));
}

std::size_t CountOf(const TempFolder& folder) {
    return static_cast<std::size_t>(std::distance(fs::directory_iterator(folder / ""), {}));
}

TEST(BFileReplacement, TheNewFileHasAllThatBelongsToTheOldOne) {
    const TempFolder folder;
    const std::string file = folder.Write("map.tfw", "old");
    if (setxattr(file.c_str(), "user.note", "n", 1, 0) != 0) GTEST_SKIP() << "no extended attributes here";
    ASSERT_EQ(setxattr(file.c_str(), kListName, kList.data(), kList.size(), 0), 0);
    const bool gives_away = chown(file.c_str(), 12, 34) == 0;
    fs::create_symlink("map.tfw", folder / "link");
    fs::create_hard_link(file, folder / "other");
    BFileReplacement out{BString(folder / "link")};
    ASSERT_TRUE(out.Open());
    EXPECT_EQ(StateOf(out.GetTemporary().StdStr()).st_mode & 07777, 0600U);
    EXPECT_TRUE(out.Write("new, and longer"));
    EXPECT_EQ(TempFolder::Slurp(file), "old");
    ASSERT_TRUE(out.Commit()) << out.GetFailure().StdStr();
    EXPECT_TRUE(out.GetLosses().empty()) << out.GetLosses().front().StdStr();
    for (const char* name : {"map.tfw", "link", "other"})
        EXPECT_EQ(TempFolder::Slurp(folder / name), "new, and longer") << name;
    EXPECT_TRUE(fs::is_symlink(folder / "link"));
    const struct stat state = StateOf(file);
    EXPECT_EQ(state.st_ino, StateOf(folder / "other").st_ino);
    EXPECT_EQ(state.st_mode & 07777, 0660U);
    EXPECT_EQ(std::pair(state.st_uid, state.st_gid),
              gives_away ? std::pair(12U, 34U) : std::pair(geteuid(), getegid()));
    EXPECT_EQ(AttributeOf(file, "user.note"), "n");
    EXPECT_EQ(AttributeOf(file, kListName), kList);
    EXPECT_EQ(CountOf(folder), 3U);
}

/// Runs as a user who owns nothing; false where that cannot be.
bool RunsAsNobody(const std::function<bool()>& work) {
    if (geteuid() != 0) return true;
    const pid_t child = fork();
    if (child == 0) _exit(setgid(65534) == 0 && setuid(65534) == 0 && work() ? 0 : 1);
    int status = 0;
    return waitpid(child, &status, 0) == child && status == 0;
}

bool Replaces(const std::string& file, std::size_t losses, BFileReplacement::EReadOnly read_only = {}) {
    BFileReplacement out{BString(file)};
    return out.Open(read_only) && out.Write("new") && out.Commit() && out.GetLosses().size() == losses;
}

TEST(BFileReplacement, FoldersAndFilesOfOthers) {
    const struct {
        const char* name;
        mode_t folder;
        mode_t file;
        BFileReplacement::EReadOnly read_only;
        bool replaced;
        std::size_t losses;
        mode_t mode;
    } cases[] = {
        {"owner_and_group_are_lost", 0777, 0666, {}, true, 2, 0666},
        {"a_lost_group_takes_its_rights_along", 0777, 0662, {}, true, 2, 0622},
        {"no_new_file_in_the_folder", 0755, 0666, {}, true, 0, 0666},
        {"sticky_folder", 01777, 0666, {}, true, 0, 0666},
        {"read_only_file", 0777, 0644, {}, false, 0, 0644},
        {"read_only_file_replaced", 0777, 0644, BFileReplacement::EReadOnly::Replace, true, 2, 0644},
        {"all_read_only", 0755, 0644, BFileReplacement::EReadOnly::Replace, false, 0, 0644},
    };
    for (const auto& test : cases) {
        SCOPED_TRACE(test.name);
        if (geteuid() != 0) GTEST_SKIP() << "only root has files of others";
        const TempFolder folder;
        const std::string file = folder.Write("map.tfw", "the old content");
        ASSERT_EQ(chmod(file.c_str(), test.file) + chmod((folder / "").c_str(), test.folder), 0);
        EXPECT_EQ(RunsAsNobody([&] { return Replaces(file, test.losses, test.read_only); }), test.replaced);
        EXPECT_EQ(TempFolder::Slurp(file), test.replaced ? "new" : "the old content");
        EXPECT_EQ(StateOf(file).st_mode & 07777, test.mode);
        EXPECT_EQ(CountOf(folder), 1U);
    }
}

// A file that is mounted by itself has no name that could be replaced.
TEST(BFileReplacement, AMountedFileIsWrittenOver) {
    const TempFolder folder;
    const std::string file = folder.Write("map.tfw", "the old content");
    const std::string under = folder.Write("under", "");
    if (mount(file.c_str(), under.c_str(), nullptr, MS_BIND, nullptr) != 0) GTEST_SKIP() << "no mounts here";
    EXPECT_TRUE(Replaces(under, 0));
    umount2(under.c_str(), MNT_DETACH);
    EXPECT_EQ(TempFolder::Slurp(file), "new");
}

TEST(BFileReplacement, NewFilesSpecialFilesAndWhatCannotBe) {
    const TempFolder folder;
    const auto in = [&](const char* name) { return folder / name; };
    fs::create_symlink("new", in("dangling"));
    fs::create_symlink("circle", in("circle"));
    const struct {
        std::string target;
        int error;  ///< 0: written
        const char* failure;
    } cases[] = {
        {in("dangling"), 0, ""},
        {"/dev/null", 0, ""},
        {"/dev/full", ENOSPC, "No space left on device"},
        {in("none/map.tfw"), ENOENT, "cannot create a file in its folder: No such file or directory"},
        {in("."), EISDIR, "Is a directory"},
        {in("none/"), EISDIR, "Is a directory"},
        {in("circle"), ELOOP, "Too many levels of symbolic links"},
        {in("nul") + std::string("\0.tfw", 5), EINVAL, "Invalid argument"},
        {in(std::string(300, 'x').c_str()), ENAMETOOLONG, "File name too long"},
        {"", ENOENT, "No such file or directory"},
    };
    const mode_t mask = umask(027);
    for (const auto& test : cases) {
        BFileReplacement out{BString(test.target)};
        EXPECT_EQ(out.Open() && out.Write("new") && out.Commit(), test.error == 0) << test.target;
        EXPECT_EQ(out.GetError(), test.error) << test.target;
        EXPECT_EQ(out.GetFailure(), BString(test.failure)) << test.target;
    }
    umask(mask);
    EXPECT_EQ(StateOf(in("new")).st_mode & 07777, 0640U);
    EXPECT_EQ(CountOf(folder), 3U);
}

TEST(BFileReplacement, WhatMayNotBeReplacedStays) {
    const TempFolder folder;
    const std::string file = folder / "map.tfw";
    const auto refused = [&](const auto& meanwhile) {
        BFileReplacement out{BString(file)};
        out.SetExisting(BFileReplacement::EExisting::Refuse);
        const bool opened = out.Open() && out.Write("new");
        meanwhile();
        return !(opened && out.Commit()) && out.GetError() == EEXIST && CountOf(folder) == 1;
    };
    EXPECT_TRUE(refused([&] { folder.Write("map.tfw", "old"); }));
    EXPECT_TRUE(refused([] {}));
    const NewFilesOnly scope;
    EXPECT_FALSE(Replaces(file, 0));
    EXPECT_EQ(TempFolder::Slurp(file), "old");
    fs::remove(file);
    EXPECT_TRUE(Replaces(file, 0)) << "makes it";
    EXPECT_TRUE(Replaces(file, 0)) << "replaces its own";
}

TEST(BFileReplacement, NothingIsLeftOfWhatIsGivenUp) {
    const TempFolder folder;
    const std::string file = folder.Write("map.tfw", "old");
    const std::string finished = folder.Write("finished", "new");
    {
        BFileReplacement out{BString(file)};
        ASSERT_TRUE(out.Open() && out.Write("half"));
    }
    EXPECT_EQ(TempFolder::Slurp(file), "old");
    BFileReplacement out{BString(file)};
    ASSERT_TRUE(out.Open() && out.Adopt(BString(finished)) && out.Commit());
    EXPECT_EQ(TempFolder::Slurp(file), "new");
    EXPECT_EQ(CountOf(folder), 1U);
}

}  // namespace
}  // namespace Tellurion
