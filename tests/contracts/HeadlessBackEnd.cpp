#include "platform/headless/Machine.h"
#include "tests/contracts/BackEndUnderTest.h"

#include <fmt/format.h>

#include <map>

namespace orvello {
namespace {

class HeadlessBackEnd : public BackEndUnderTest {
  public:
    HeadlessBackEnd() { start({}); }

    Platform platform() override { return machine_->platform(); }
    void restart() override { start({.start = machine_->now(), .disk = machine_->disk()}); }
    std::chrono::milliseconds unit() const override { return std::chrono::seconds(1); }
    std::chrono::nanoseconds uptime() const override { return machine_->uptime(); }
    void pass(std::chrono::milliseconds duration) override { machine_->advance(duration); }
    void block(std::chrono::milliseconds duration) override {
        dynamic_cast<headless::VirtualRunLoop&>(platform().runLoop).block(duration);
    }
    void perform(const std::function<void()>& event) override { machine_->perform(event); }

    bool openMenu() override { return machine_->openMenu(); }
    void closeMenu() override { machine_->closeMenu(); }
    bool choose(const std::string& title) override { return machine_->choose(title); }
    void answerNextAlert(std::function<void()> meanwhile) override {
        machine_->alerts().answerNext([meanwhile = std::move(meanwhile)](const Alert&) {
            meanwhile();
            return AlertResponse::Default;
        });
    }
    std::string makeTool(const TestTool& tool) override {
        auto path = fmt::format("/tools/{}", tools_.size());
        machine_->disk()->files.insert(path);
        tools_.emplace(path, tool);
        return path;
    }

  private:
    void start(const headless::Configuration& configuration) {
        machine_ = std::make_unique<headless::Machine>(configuration);
        machine_->tools().setScript([this](const UserTask& task) { return run(task); });
    }
    headless::ToolAnswer run(const UserTask& task) {
        const auto& tool = tools_.at(task.path);
        std::string output;
        for (const auto& argument : task.arguments)
            output += argument + '\n';
        return {.output = output + tool.output,
                .errorOutput = {},
                .duration = tool.hangs ? headless::forever : std::chrono::nanoseconds(0)};
    }

    std::map<std::string, TestTool> tools_;
    std::unique_ptr<headless::Machine> machine_;
};

} // namespace

std::unique_ptr<BackEndUnderTest> makeBackEnd() {
    return std::make_unique<HeadlessBackEnd>();
}

} // namespace orvello
