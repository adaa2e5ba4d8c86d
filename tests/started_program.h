// A program that runs beside the test, which reads what it writes and sends it signals.
#pragma once

#include "tests/cli_process.h"

#include <poll.h>
#include <pty.h>

#include <algorithm>
#include <csignal>

namespace lumora::tests {

class StartedProgram {
public:
    enum class Streams {
        Pipe,     // standard output is read by the test, errors go to a file
        Terminal, // both are a terminal that the test reads
        Errors    // only standard error is that terminal; output goes to /dev/null
    };

    StartedProgram(std::vector<std::string> command, Streams streams, bool ignoreInterrupts = false) {
        std::vector<char*> arguments;
        for (std::string& word : command)
            arguments.push_back(word.data());
        arguments.push_back(nullptr);
        int ends[2] = {-1, -1};
        if (streams == Streams::Pipe) {
            if (pipe2(ends, O_CLOEXEC) != 0)
                throw std::runtime_error("no pipe");
            child_ = fork();
        } else {
            child_ = forkpty(&ends[0], nullptr, nullptr, nullptr);
        }
        if (child_ < 0)
            throw std::runtime_error("cannot run " + command[0]);
        if (child_ == 0) {
            if (streams == Streams::Pipe) {
                dup2(ends[1], STDOUT_FILENO);
                dup2(open(errors().c_str(), O_WRONLY | O_CREAT, 0600), STDERR_FILENO);
            } else if (streams == Streams::Errors) {
                dup2(open("/dev/null", O_WRONLY), STDOUT_FILENO);
            }
            std::signal(SIGINT, ignoreInterrupts ? SIG_IGN : SIG_DFL);
            alarm(60);
            execvp(arguments[0], arguments.data());
            _exit(127);
        }
        output_ = ends[0];
        if (ends[1] >= 0)
            close(ends[1]);
    }
    ~StartedProgram() {
        if (child_ > 0) {
            kill(child_, SIGKILL);
            waitpid(child_, nullptr, 0);
        }
        close(output_);
    }
    StartedProgram(const StartedProgram&) = delete;
    StartedProgram& operator=(const StartedProgram&) = delete;

    // Reads on until the text has come; false when the output ends before, or nothing comes for 20 seconds.
    bool readUntil(const std::string& text) {
        while (text_.find(text) == std::string::npos)
            if (!readMore())
                return false;
        return true;
    }
    const std::string& readAll() {
        while (readMore())
            ;
        return text_;
    }
    void signal(int number) const { kill(child_, number); }
    void type(char key) const { static_cast<void>(!write(output_, &key, 1)); }

    // The exit status; 128 and more when a signal ended the program.
    int wait() {
        int status = 0;
        waitpid(child_, &status, 0);
        child_ = -1;
        return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    }
    std::string errorText() const { return readFile(errors()); }

private:
    std::string errors() const { return folder_ / "err"; }

    bool readMore() {
        char block[65536];
        pollfd ready = {output_, POLLIN, 0};
        const ssize_t size = poll(&ready, 1, 20000) > 0 ? read(output_, block, sizeof block) : 0;
        if (size > 0)
            text_.append(block, static_cast<std::size_t>(size));
        return size > 0;
    }

    TemporaryFolder folder_;
    pid_t child_ = -1;
    int output_ = -1;
    std::string text_;
};

// The lines that a terminal shows after the text, which moves in them with \r, \n and blanks only.
inline std::vector<std::string> screenOf(const std::string& text) {
    std::vector<std::string> lines(1);
    std::size_t column = 0;
    for (const char c : text) {
        if (c == '\r') {
            column = 0;
        } else if (c == '\n') {
            lines.emplace_back();
        } else {
            std::string& line = lines.back();
            line.resize(std::max(line.size(), column + 1), ' ');
            line[column++] = c;
        }
    }
    for (std::string& line : lines)
        line.erase(line.find_last_not_of(' ') + 1);
    return lines;
}

} // namespace lumora::tests
