#include "tmutil/destinations/Places.h"

#include "tests/tmutil/Support.h"
#include "tmutil/destinations/Choice.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace orvello::tmutil {
namespace {

using test::TemporaryFolder;

TEST(Places, AddressesAreShownWithoutPasswords) {
    const std::pair<const char*, const char*> rows[] = {
        {"rest:https://eva:sec:r@t@host/x", "rest:https://eva@host/x"},
        {"rest:https://:secret@host", "rest:https://@host"},
        {"rest:https://eva@host:8000/x", "rest:https://eva@host:8000/x"},
        {"rest:https://host:8000/a:b@c", "rest:https://host:8000/a:b@c"},
        {"rest:https://eva:secret@[::1]:8000/", "rest:https://eva@[::1]:8000/"},
        {"sftp:eva@host:/a@b", "sftp:eva@host:/a@b"},
    };
    for (const auto& [address, shown] : rows)
        EXPECT_EQ(displayedAddress(address), shown) << address;
}

TEST(Choice, DestinationsTakeTurns) {
    const TemporaryFolder top;
    const auto folder = [&](const char* name) {
        return Destination{.id = name, .name = name, .location = top / name};
    };
    const auto a = folder("a");
    const auto b = folder("b");
    const auto gone = folder("gone");
    const Destination store{
        .id = "store", .kind = Destination::Kind::Network, .name = "store", .location = "s3:x"};
    for (const auto& destination : {a, b}) {
        makeFolder(destination.location + "/keys");
        makeFolder(destination.location + "/snapshots");
        test::writeFile(destination.location + "/config", "sealed");
    }
    struct Row {
        const char* name;
        std::vector<Destination> all;
        std::string id;
        std::string lastUsed;
        std::string expected; ///< the ID of the one that is chosen, else what the problem says
    };
    const Row rows[] = {
        {"none", {}, "", "", "No backup destination is set"},
        {"none has that ID", {a}, "b", "", "no destination with the ID b"},
        {"the next", {a, b, store}, "", "a", "b"},
        {"after the last the first", {a, b}, "", "b", "a"},
        {"the last used one is none any more", {a, b}, "", "x", "a"},
        {"an absent one is passed over", {a, gone, b}, "", "a", "b"},
        {"also at the end", {a, b, gone}, "", "b", "a"},
        {"a store always counts as present", {gone, store}, "", "", "store"},
        {"the one with the ID", {a, b}, "a", "a", "a"},
        {"no other one instead", {a, gone}, "gone", "", "\"gone\" is not there"},
    };
    for (const auto& row : rows) {
        const auto chosen = chooseDestination({.destinations = row.all}, row.id, row.lastUsed);
        if (chosen) {
            EXPECT_EQ(chosen->destination.id, row.expected) << row.name;
            EXPECT_EQ(chosen->address, chosen->destination.location) << row.name;
        } else {
            EXPECT_THAT(chosen.problem().text, testing::HasSubstr(row.expected)) << row.name;
        }
    }
}

} // namespace
} // namespace orvello::tmutil
