#include "tmutil/CommandLine.h"

#include "tmutil/verbs/Verbs.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdio>
#include <limits>

namespace orvello::tmutil {

namespace {

constexpr auto any = std::numeric_limits<std::size_t>::max();

const std::vector<Verb>& verbs() {
    static const std::vector<Verb> all{
        {"startbackup",
         "[--auto] [--block] [-d ID]",
         "Start a backup; with --block, wait for its end.",
         {"--auto", "--block", "-d="},
         0,
         0,
         startBackup},
        {"stopbackup", "", "End the running backup cleanly.", {}, 0, 0, stopBackup},
        {"status", "[-X]", "Tell what the running backup does.", {"-X"}, 0, 0, showStatus},
        {"setdestination",
         "[-a] [-p] PATH|URL",
         "Back up to this place, or with -a to this place too.",
         {"-a", "-p"},
         1,
         1,
         setDestination},
        {"removedestination", "ID", "Back up to this destination no more.", {}, 1, 1, removeDestination},
        {"destinationinfo", "[-X]", "List the destinations.", {"-X"}, 0, 0, showDestinations},
        {"listbackups", "[-d ID]", "List the backups, the oldest first.", {"-d="}, 0, 0, listBackups},
        {"latestbackup", "[-d ID]", "Name the newest backup.", {"-d="}, 0, 0, showLatestBackup},
        {"restore",
         "[-v] BACKUP[/PATH]... DESTINATION",
         "Copy items out of backups.",
         {"-v"},
         2,
         any,
         restore},
        {"verifychecksums",
         "[-d ID]",
         "Read all that is in the backups and check it.",
         {"-d="},
         0,
         0,
         verifyChecksums},
        {"addsource", "PATH...", "Back up this folder or file.", {}, 1, any, addSource},
        {"removesource", "PATH...", "Back up this folder or file no more.", {}, 1, any, removeSource},
        {"listsources", "", "List what is backed up.", {}, 0, 0, listSources},
        {"addexclusion", "PATH...", "Leave this item out of backups.", {"-p"}, 1, any, addExclusion},
        {"removeexclusion", "PATH...", "Back up this item again.", {"-p"}, 1, any, removeExclusion},
        {"isexcluded", "[-X] PATH...", "Tell whether backups leave items out.", {"-X"}, 1, any, showExcluded},
        {"version", "", "Print the version.", {}, 0, 0, showVersion},
    };
    return all;
}

std::string usageOf(const Verb& verb) {
    return fmt::format("tmutil {}{}{}", verb.name, verb.usage.empty() ? "" : " ", verb.usage);
}

std::string help() {
    std::string text = "Makes encrypted backups of your files with restic, and restores them.\n\nUsage:\n";
    for (const auto& verb : verbs())
        text += fmt::format("  {}\n      {}\n", usageOf(verb), verb.summary);
    text +=
        "\n"
        "PATH of a destination is a folder, on a disk that is there; URL is an address of restic's, such as\n"
        "sftp:user@host:/folder, rest:https://host:8000/name or s3:s3.example.org/bucket.\n"
        "-X prints a property list. See tmutil(8) for everything else.\n";
    return text;
}

int refuse(const Verb& verb, const std::string& reason) {
    complain(fmt::format("{}: {}", verb.name, reason));
    std::fputs(fmt::format("Usage: {}\n", usageOf(verb)).c_str(), stderr);
    return wrongUsage;
}

bool allows(const Verb& verb, std::string_view option) {
    return std::find(verb.options.begin(), verb.options.end(), option) != verb.options.end();
}

/// The options that one argument holds: itself, or the letters of "-ap".
std::vector<std::string> split(const std::string& argument) {
    if (argument.starts_with("--"))
        return {argument};
    std::vector<std::string> options;
    for (const char letter : argument.substr(1))
        options.push_back(std::string("-") + letter);
    return options;
}

/// Reads the arguments after the verb. What is wrong with them, or nothing.
std::string read(const Verb& verb, const std::vector<std::string>& arguments, Invocation& invocation) {
    bool optionsEnded = false;
    for (std::size_t i = 1; i < arguments.size(); ++i) {
        const auto& argument = arguments[i];
        if (optionsEnded || argument.size() < 2 || argument.front() != '-') {
            invocation.operands.push_back(argument);
            continue;
        }
        if (argument == "--") {
            optionsEnded = true;
            continue;
        }
        for (const auto& option : split(argument)) {
            if (allows(verb, option)) {
                invocation.options[option];
            } else if (!allows(verb, option + '=')) {
                return fmt::format("There is no option \"{}\".", option);
            } else if (++i == arguments.size()) {
                return fmt::format("The option \"{}\" needs a value.", option);
            } else {
                invocation.options[option] = arguments[i];
            }
        }
    }
    if (invocation.operands.size() < verb.leastOperands)
        return "Something is missing.";
    if (invocation.operands.size() > verb.mostOperands)
        return fmt::format("\"{}\" is too much.", invocation.operands[verb.mostOperands]);
    return {};
}

} // namespace

std::string Invocation::value(std::string_view option) const {
    const auto found = options.find(option);
    return found == options.end() ? std::string() : found->second;
}

int runCommandLine(const std::vector<std::string>& arguments) {
    if (arguments.empty()) {
        std::fputs(help().c_str(), stderr);
        return wrongUsage;
    }
    const auto& name = arguments.front();
    if (name == "--help" || name == "-h" || name == "help") {
        print(help());
        return success;
    }
    const auto verb =
        std::find_if(verbs().begin(), verbs().end(), [&name](const Verb& v) { return v.name == name; });
    if (verb == verbs().end()) {
        std::fputs(fmt::format("{}: Unrecognized verb.\n", name).c_str(), stderr);
        return wrongUsage;
    }
    if (arguments.size() > 1 && arguments[1] == "--help") {
        print(fmt::format("Usage: {}\n{}\n", usageOf(*verb), verb->summary));
        return success;
    }
    Invocation invocation;
    if (const auto problem = read(*verb, arguments, invocation); !problem.empty())
        return refuse(*verb, problem);
    auto folders = userFolders();
    if (!folders) {
        complain("You have no home folder, so there is nowhere to keep settings.");
        return failure;
    }
    invocation.folders = std::move(*folders);
    return verb->run(invocation);
}

void print(std::string_view text) {
    // cppcheck-suppress danglingTemporaryLifetime ; a caller's temporary lives until the call ends
    std::fwrite(text.data(), 1, text.size(), stdout);
}

void complain(std::string_view sentence) {
    std::fputs(fmt::format("tmutil: {}\n", sentence).c_str(), stderr);
}

} // namespace orvello::tmutil
