#pragma once

#include "tmutil/Folders.h"

#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace orvello::tmutil {

/// A verb with what the user gave it.
struct Invocation {
    Folders folders;
    std::map<std::string, std::string, std::less<>>
        options; ///< values by "-d" or "--block"; flags have empty ones
    std::vector<std::string> operands;

    bool has(std::string_view option) const { return options.contains(option); }
    /// The option's value; empty when it was not given.
    std::string value(std::string_view option) const;
};

/// What the program can be asked to do.
struct Verb {
    std::string_view name;
    std::string_view usage;                ///< options and operands
    std::string_view summary;              ///< one line
    std::vector<std::string_view> options; ///< "-X", "--block"; "-d=" takes a value
    std::size_t leastOperands = 0;
    std::size_t mostOperands = 0;
    int (*run)(const Invocation&) = nullptr;
};

// Exit statuses.
inline constexpr int success = 0;
inline constexpr int failure = 1;
inline constexpr int wrongUsage = 64; ///< EX_USAGE of sysexits.h

/// Finds the verb and does what it says; the exit status. Arguments are those after the program's name.
int runCommandLine(const std::vector<std::string>& arguments);

/// Prints to standard output or, a sentence after the program's name, to standard error.
void print(std::string_view text);
void complain(std::string_view sentence);

} // namespace orvello::tmutil
