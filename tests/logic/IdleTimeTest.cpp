#include "schedule/IdleTime.h"

#include "platform/IORegistry.h"

#include <gtest/gtest.h>

namespace orvello {
namespace {

/// Fails from a chosen step on; what it hands out is numbered from 1. With several services the second
/// one's idle time would give itself away.
class FaultyRegistry : public IORegistry {
  public:
    enum class Fault { None, Matching, NoService, Properties, Value };
    explicit FaultyRegistry(Fault fault)
        : fault_(fault) {}

    std::optional<Object> serviceGetMatchingServices(std::string_view) override {
        return fault_ == Fault::Matching ? std::nullopt : std::optional(make());
    }
    Object iteratorNext(Object) override { return fault_ == Fault::NoService ? 0 : make(); }
    std::optional<Object> registryEntryCreateProperties(Object) override {
        return fault_ == Fault::Properties ? std::nullopt : std::optional(make());
    }
    std::optional<std::int64_t> propertyInteger(Object, std::string_view) override {
        if (fault_ == Fault::Value)
            return std::nullopt;
        return made_ == 3 ? 60'000'000'000 : -1; // iterator, first service, its properties
    }
    void release(Object object) override { releases.push_back(object); }

    std::vector<Object> releases;

  private:
    Object make() { return ++made_; }

    Fault fault_;
    Object made_ = 0;
};

TEST(IdleTime, IsCountedInUnitsOfTwoToTheThirtyNanoseconds) {
    EXPECT_EQ(scaledIdleTime((std::int64_t{1} << 30) - 1), 0);
    EXPECT_EQ(scaledIdleTime(std::int64_t{1} << 30), 1);
    EXPECT_EQ(scaledIdleTime(60'000'000'000), 55);
    EXPECT_EQ(scaledIdleTime(322'122'547'200), 300);
}

TEST(IdleTime, ProbeReleasesWhatItObtainedWhateverFails) {
    using Fault = FaultyRegistry::Fault;
    struct Row {
        Fault fault;
        std::int64_t result;
        std::vector<IORegistry::Object> released;
    };
    for (const auto& row :
         {Row{Fault::None, 55, {3, 2, 1}}, Row{Fault::Matching, -1, {}}, Row{Fault::NoService, -1, {1}},
          Row{Fault::Properties, -1, {2, 1}}, Row{Fault::Value, -1, {3, 2, 1}}}) {
        FaultyRegistry registry(row.fault);
        EXPECT_EQ(probeIdleTime(registry), row.result);
        EXPECT_EQ(registry.releases, row.released);
    }
}

} // namespace
} // namespace orvello
