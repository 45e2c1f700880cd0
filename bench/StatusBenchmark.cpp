// The tool's answer to the dictionary that the menu is made of, beside libplist at the same work.
#include "bench/StatusAnswers.h"
#include "timemachine/BackupStatus.h"

#include <benchmark/benchmark.h>

#include <cstdint>
#include <memory>
#include <plist/plist.h>
#include <stdexcept>

namespace orvello::bench {
namespace {

using Answer = std::string (*)();

void readsStatus(benchmark::State& state, Answer make) {
    const auto answer = make();
    while (state.KeepRunning())
        benchmark::DoNotOptimize(readBackupStatus(answer));
    state.SetBytesProcessed(static_cast<std::int64_t>(answer.size()) * state.iterations());
}

struct FreePlist {
    void operator()(void* node) const { plist_free(node); }
};
using Node = std::unique_ptr<void, FreePlist>;

struct LibplistStatus {
    std::string status;
    Node phase;
    Node percent;
    Node progress;
};

bool isTrue(plist_t dictionary, const char* key) {
    auto* node = plist_dict_get_item(dictionary, key);
    std::uint8_t value = 0;
    if (node)
        plist_get_bool_val(node, &value);
    return value != 0;
}

Node copyOf(plist_t dictionary, const char* key) {
    auto* node = plist_dict_get_item(dictionary, key);
    return Node(node ? plist_copy(node) : nullptr);
}

LibplistStatus libplistStatus(const std::string& answer) {
    plist_t parsed = nullptr;
    plist_from_xml(answer.data(), static_cast<std::uint32_t>(answer.size()), &parsed);
    const Node root(parsed);
    if (!root)
        throw std::runtime_error("libplist does not read the answer");
    if (isTrue(root.get(), "Stopping"))
        return {.status = "Stopping"};
    if (!isTrue(root.get(), "Running"))
        return {.status = "Idle"};
    return {"Running", copyOf(root.get(), "BackupPhase"), copyOf(root.get(), "Percent"),
            copyOf(root.get(), "Progress")};
}

void readsStatusWithLibplist(benchmark::State& state, Answer make) {
    const auto answer = make();
    while (state.KeepRunning())
        benchmark::DoNotOptimize(libplistStatus(answer));
    state.SetBytesProcessed(static_cast<std::int64_t>(answer.size()) * state.iterations());
}

BENCHMARK_CAPTURE(readsStatus, idle, idleAnswer);
BENCHMARK_CAPTURE(readsStatusWithLibplist, idle, idleAnswer);
BENCHMARK_CAPTURE(readsStatus, copying, copyingAnswer);
BENCHMARK_CAPTURE(readsStatusWithLibplist, copying, copyingAnswer);
BENCHMARK_CAPTURE(readsStatus, large, largeAnswer);
BENCHMARK_CAPTURE(readsStatusWithLibplist, large, largeAnswer);

} // namespace
} // namespace orvello::bench
