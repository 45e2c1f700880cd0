#include "tmutil/selection/Selection.h"

#include "tests/tmutil/Support.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fnmatch.h>

namespace orvello::tmutil {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;

TEST(Selection, PatternsFitNothingElse) {
    // Each with what fits the path when that is taken for a pattern.
    const std::pair<std::string, std::string> rows[] = {
        {"/h/a*b", "/h/axb"},
        {"/h/a?b", "/h/axb"},
        {"/h/[ab]", "/h/a"},
        {"/h/a\\b", "/h/ab"},
        {"/h/[!a]", "/h/b"},
        {"/h/line\n*", "/h/line\n"},
        {"/h/\xff\xfe?", "/h/\xff\xfe!"},
    };
    for (const auto& [path, other] : rows) {
        const auto pattern = patternFor(path);
        EXPECT_EQ(::fnmatch(pattern.c_str(), path.c_str(), FNM_PATHNAME), 0) << path;
        EXPECT_EQ(::fnmatch(pattern.c_str(), other.c_str(), FNM_PATHNAME), FNM_NOMATCH) << path;
    }
    EXPECT_EQ(patternFor("/home/eva/{a,b} ]~$HOME"), "/home/eva/{a,b} ]~$HOME");
}

TEST(Selection, PathsAreMadeAbsolute) {
    const auto here = fs::current_path().string();
    const std::pair<const char*, std::string> rows[] = {
        {"/", "/"},         {"//", "/"},
        {"/a/", "/a"},      {"/a/b/..", "/a"},
        {"/a/../..", "/"},  {"/a//b/./c", "/a/b/c"},
        {"x", here + "/x"}, {"./-x/", here + "/-x"},
        {".", here},
    };
    for (const auto& [path, expected] : rows)
        EXPECT_EQ(absolutePath(path), expected) << path;
}

TEST(Selection, LeavesItemsOut) {
    const test::User user;
    // The home folder is a link, as it is where homes are on another disk.
    const auto home = user.folders.home;
    const auto real = home + ".real";
    fs::rename(home, real);
    fs::create_directory_symlink(real, home);
    for (const char* folder : {"Documents", "Downloads", "tagged", "untagged", "elsewhere"})
        makeFolder(user.path(folder));
    test::writeFile(user.path("tagged/CACHEDIR.TAG"), "Signature: 8a477f597d28d172789f06886806bc55\n");
    test::writeFile(user.path("untagged/CACHEDIR.TAG"), "Signature: none of the kind, as long as the one\n");
    fs::create_directory_symlink("Documents", user.path("toDocuments"));
    fs::create_directory_symlink("Downloads", user.path("toDownloads"));
    test::makeRepository(user.path("disk/Backups.restic"));
    Configuration configuration;
    configuration.destinations = {{.location = user.path("disk"), .repositoryFolder = "Backups.restic"},
                                  {.location = user.path("gone"), .repositoryFolder = "Backups"},
                                  {.kind = Destination::Kind::Network, .location = "sftp:oak:/x"}};
    for (const char* excluded : {"Downloads", "Pictures/", "a*b", "line\nend", "\xff\xfe", "elsewhere/../up"})
        configuration.exclusions.push_back(user.path(excluded));
    const auto selection = selectionOf(configuration, user.folders);
    EXPECT_THAT(selection.sources, ElementsAre(real));

    const auto trash = ".Trash-" + std::to_string(::getuid());
    const auto expect = [&](bool excluded, const std::vector<std::string>& paths) {
        for (const auto& path : paths) {
            EXPECT_EQ(isExcluded(user.path(path), selection), excluded) << path;
            EXPECT_EQ(isExcluded(std::string(real).append("/").append(path), selection), excluded)
                << path << ", link resolved";
        }
    };
    expect(true, {".cache/deep/er", ".local/share/Trash/files/x", trash, "mount/" + trash + "/x",
                  ".var/app/org.notes/cache/x", "Downloads/x", "toDownloads/x", "Pictures/x", "a*b/x",
                  "line\nend", "\xff\xfe/x", "up", "tagged/x/y", "disk/Backups.restic/data", "gone/Backups"});
    expect(false, {"Documents/letter", "toDocuments/letter", trash + "0", ".var/app/org.notes/data",
                   "Downloads.old", "toDownloads", "axb/x", "tagged", "untagged/x", "disk/film"});
    EXPECT_TRUE(isExcluded("/etc/passwd", selection)) << "it is in no source";
}

TEST(Selection, BecomesArguments) {
    const Selection selection{{"/home/eva", "/srv/-x"}, {"/home/eva/[1]"}, {".Trash-7"}};
    EXPECT_THAT(selectionArguments(selection),
                ElementsAre("--exclude-caches", "--exclude=/home/eva/\\[1]", "--exclude=.Trash-7", "--",
                            "/home/eva", "/srv/-x"));
}

} // namespace
} // namespace orvello::tmutil
