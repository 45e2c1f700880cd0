#include "tmutil/verbs/AskPassword.h"

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <termios.h>
#include <unistd.h>

namespace orvello::tmutil {

namespace {

/// Keeps what is typed from being shown, while it exists.
class SilentTerminal {
  public:
    SilentTerminal() {
        isTerminal_ = ::tcgetattr(STDIN_FILENO, &before_) == 0;
        if (!isTerminal_)
            return;
        std::fputs("Password of the backups: ", stderr);
        termios silent = before_;
        silent.c_lflag &= ~static_cast<tcflag_t>(ECHO);
        ::tcsetattr(STDIN_FILENO, TCSAFLUSH, &silent);
    }
    ~SilentTerminal() {
        if (!isTerminal_)
            return;
        ::tcsetattr(STDIN_FILENO, TCSAFLUSH, &before_);
        std::fputs("\n", stderr);
    }
    SilentTerminal(const SilentTerminal&) = delete;
    SilentTerminal& operator=(const SilentTerminal&) = delete;

  private:
    termios before_{};
    bool isTerminal_ = false;
};

std::optional<std::string> firstLine(std::istream& stream) {
    std::string line;
    std::getline(stream, line);
    return line.empty() ? std::nullopt : std::optional(line);
}

} // namespace

std::optional<std::string> askPassword(bool mayAsk) {
    if (const char* password = std::getenv("RESTIC_PASSWORD"); password != nullptr && *password != '\0')
        return password;
    if (const char* path = std::getenv("RESTIC_PASSWORD_FILE"); path != nullptr && *path != '\0') {
        std::ifstream file(path);
        return firstLine(file);
    }
    if (!mayAsk)
        return std::nullopt;
    const SilentTerminal silent;
    return firstLine(std::cin);
}

} // namespace orvello::tmutil
