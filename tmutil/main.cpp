#include "tmutil/CommandLine.h"

#include <cstdio>

int main(int argc, char** argv) {
    using namespace orvello::tmutil;
    const int status = runCommandLine(argc > 1 ? std::vector<std::string>(argv + 1, argv + argc)
                                               : std::vector<std::string>());
    // An answer that could not be written, to a full disk say, is no answer.
    return std::fflush(stdout) == 0 ? status : failure;
}
