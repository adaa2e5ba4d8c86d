#include "apps/lumora/standard_streams.h"

#include "lumora/platform/errors.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>

namespace lumora::cli {

void protectStandardStreams() {
    std::signal(SIGPIPE, SIG_IGN);
    // A descriptor that is opened the wrong way round keeps the place and fails as a closed one does.
    for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
        if (fcntl(descriptor, F_GETFD) == -1 && errno == EBADF)
            static_cast<void>(open("/dev/null", descriptor == STDIN_FILENO ? O_WRONLY : O_RDONLY));
}

std::string readStandardInput() {
    std::string text;
    char block[65536];
    while (const std::size_t size = std::fread(block, 1, sizeof block, stdin))
        text.append(block, size);
    if (std::ferror(stdin))
        throw EFileError(std::string("Cannot read standard input: ") + std::strerror(errno));
    return text;
}

namespace {

void check(bool written) {
    if (!written)
        throw EFileError(std::string("Cannot write standard output: ") + std::strerror(errno));
}

} // namespace

// A failure has come before, or its message goes to standard error after this.
Output::~Output() {
    static_cast<void>(std::fflush(stdout));
}

void Output::write(std::string_view text) {
    if (beforeNextWrite_)
        std::exchange(beforeNextWrite_, nullptr)();
    check(std::fwrite(text.data(), 1, text.size(), stdout) == text.size());
}

void Output::finish() {
    check(std::fflush(stdout) == 0);
}

} // namespace lumora::cli
