// The smallest tool that answers: what a run costs beyond it is the run's own.
#include "bench/StatusAnswers.h"

#include <unistd.h>

int main() {
    const auto answer = orvello::bench::copyingAnswer();
    const auto written = ::write(STDOUT_FILENO, answer.data(), answer.size());
    return written == static_cast<ssize_t>(answer.size()) ? 0 : 1;
}
