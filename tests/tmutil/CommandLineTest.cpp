#include "tmutil/CommandLine.h"

#include "platform/plist/PropertyList.h"
#include "tests/tmutil/Support.h"
#include "tmutil/verbs/BraceForm.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace orvello::tmutil {
namespace {

using testing::HasSubstr;
using Words = std::vector<std::string>;

struct Said {
    int status = 0;
    std::string output;
    std::string errors;
};

Said say(const Words& words) {
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    const int status = runCommandLine(words);
    auto output = testing::internal::GetCapturedStdout();
    return {status, std::move(output), testing::internal::GetCapturedStderr()};
}

TEST(CommandLine, WrongUsageIsRefused) {
    const test::User user;
    struct Row {
        Words words;
        const char* errors;
    };
    const Row rows[] = {
        {{}, "Usage:"},
        {{"frobnicate"}, "frobnicate: Unrecognized verb.\n"},
        {{"status", "-Xy"}, "There is no option \"-y\"."},
        {{"startbackup", "--auto", "--never"}, "There is no option \"--never\"."},
        {{"startbackup", "now"}, "\"now\" is too much."},
        {{"startbackup", "-d"}, "The option \"-d\" needs a value."},
        {{"listbackups", "-X"}, "Usage: tmutil listbackups [-d ID]\n"},
        {{"restore", "one"}, "Something is missing."},
        {{"setdestination", "-apx", "/"}, "There is no option \"-x\"."},
    };
    for (const auto& row : rows) {
        const auto said = say(row.words);
        EXPECT_EQ(said.status, wrongUsage) << row.errors;
        EXPECT_EQ(said.output, "") << row.errors;
        EXPECT_THAT(said.errors, HasSubstr(row.errors));
    }
}

TEST(CommandLine, VerbsAreDone) {
    const test::User user;
    const auto file = user.path("-odd\nname");
    test::writeFile(file, "");
    const plist::Dictionary idle{{"ClientID", "org.orvello.tmutil"}, {"Percent", -1.0}, {"Running", false}};
    const plist::Array excluded{plist::Dictionary{{"Path", file}, {"IsExcluded", true}}};
    const std::string noChange = ": Error (-43) while attempting to change exclusion setting.\n";
    const std::string notTheLast = "tmutil: Something must be left to back up. Add another source first.\n";
    struct Row {
        Words words;
        std::string output;
        std::string errors = {}; ///< it fails if there are any
    };
    // Each row stands on those before.
    const Row rows[] = {
        {{"status", "--help"}, "Usage: tmutil status [-X]\nTell what the running backup does.\n"},
        {{"status", "-X"}, plist::serialize(idle)},
        {{"addexclusion", "-p", file}, ""},
        {{"isexcluded", file}, "[Excluded]  " + file + '\n'},
        {{"isexcluded", file, "-X"}, plist::serialize(excluded)},
        {{"isexcluded", "/", "//", "/a/", "/a/b/..", "/a/../..", "/a//b/./c"},
         "[Excluded]  /\n[Excluded]  /\n[Excluded]  /a\n[Excluded]  /a\n[Excluded]  /\n[Excluded]  /a/b/c\n"},
        {{"isexcluded", "./x-/"}, "[Excluded]  " + std::filesystem::current_path().string() + "/x-\n"},
        {{"removeexclusion", file}, ""},
        {{"removeexclusion", file}, "", file + noChange},
        {{"addexclusion", "--", "-none", "-X"}, "", "-none" + noChange},
        {{"removesource", user.folders.home}, "", notTheLast},
        {{"addsource", file, "/nowhere"}, "", "tmutil: There is no \"/nowhere\".\n"},
        {{"listsources"}, user.folders.home + '\n'},
        {{"addsource", file, file}, ""},
        {{"removesource", user.folders.home}, ""},
        {{"listsources"}, file + '\n'},
        {{"destinationinfo", "-X"}, plist::serialize(plist::Dictionary())},
        {{"removedestination", "A"}, "", "tmutil: There is no destination with the ID A.\n"},
        {{"listbackups", "-d", "--"}, "", "tmutil: No destinations configured.\n"},
    };
    for (const auto& row : rows) {
        const auto said = say(row.words);
        EXPECT_EQ(said.status, row.errors.empty() ? success : failure) << testing::PrintToString(row.words);
        EXPECT_EQ(said.output, row.output) << testing::PrintToString(row.words);
        EXPECT_EQ(said.errors, row.errors) << testing::PrintToString(row.words);
    }
    EXPECT_EQ(say({"setdestination", "-ap", "/nowhere"}).status, failure) << "used rightly";
}

TEST(Folders, TheRuntimeFolderIsTheUsersAlone) {
    const test::User user;
    EXPECT_EQ(userFolders()->runtime, user.folders.runtime);
    std::filesystem::permissions(user.folders.runtime + "/..", std::filesystem::perms::all);
    EXPECT_NE(userFolders()->runtime, user.folders.runtime);
}

TEST(BraceForm, QuotesWhatIsNotPlain) {
    EXPECT_EQ(braceForm({{"Date", test::utc(2026, 5, 1, 7, 8, 9)},
                         {"Empty", ""},
                         {"Inner", plist::Dictionary{{"a b", -1.0}, {"c", true}}},
                         {"Path", "/media/Disk_1.old"},
                         {"Raw", plist::Data{"\xff"}},
                         {"Text", "say \"so\"\\\n\x1b[m für"}}),
              R"({
    Date = "2026-05-01 07:08:09 +0000";
    Empty = "";
    Inner = {
        "a b" = "-1";
        c = 1;
    };
    Path = /media/Disk_1.old;
    Raw = "\xFF";
    Text = "say \"so\"\\\n\x1B[m für";
}
)");
}

} // namespace
} // namespace orvello::tmutil
