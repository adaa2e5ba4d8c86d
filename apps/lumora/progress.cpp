#include "apps/lumora/progress.h"

#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <string>

namespace lumora::cli {

namespace {

constexpr std::size_t echo = 2; // how much "^C" takes, which the terminal adds

bool isSameTerminal(int one, int other) {
    struct stat first = {};
    struct stat second = {};
    return isatty(one) && isatty(other) && fstat(one, &first) == 0 && fstat(other, &second) == 0 &&
           first.st_rdev == second.st_rdev;
}

// A line that wraps could not be wiped.
std::size_t terminalWidth() {
    winsize size = {};
    const bool known = ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 1 + echo;
    return known ? size.ws_col : 80u;
}

std::string grouped(std::int64_t number) {
    std::string text = std::to_string(number);
    for (std::size_t i = text.size(); i > 3;)
        text.insert(i -= 3, 1, ',');
    return text;
}

} // namespace

Progress::Progress() : shows_(isatty(STDERR_FILENO) != 0) {}

void Progress::update() {
    const auto seconds =
        std::chrono::duration_cast<std::chrono::seconds>(std::chrono::steady_clock::now() - start_).count();
    if (seconds < 1)
        return;
    const std::int64_t rows = rows_;
    std::string text = grouped(rows);
    text.append(rows == 1 ? " row, " : " rows, ").append(grouped(seconds)).append(" s - Ctrl-C cancels");
    const std::lock_guard lock(mutex_);
    if (shows_)
        replace(std::string_view(text).substr(0, terminalWidth() - 1 - echo));
}

void Progress::end() {
    const std::lock_guard lock(mutex_);
    if (width_ > 0)
        replace("");
    shows_ = false;
}

void Progress::outputBegins() {
    if (isSameTerminal(STDOUT_FILENO, STDERR_FILENO))
        end();
}

// Blanks over what was longer, and then back to the first column when nothing is left.
void Progress::replace(std::string_view text) {
    std::string line = '\r' + std::string(text);
    line.append(width_ > text.size() ? width_ - text.size() : 0, ' ');
    if (text.empty())
        line.append(echo, ' ') += '\r';
    std::fwrite(line.data(), 1, line.size(), stderr);
    width_ = text.size();
}

} // namespace lumora::cli
