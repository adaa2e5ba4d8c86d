// Running a program from a test, and a folder for its files.
#pragma once

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

namespace lumora::tests {

inline std::string readFile(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    if (!file)
        throw std::runtime_error("cannot read " + path.string());
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

inline void writeFile(const std::filesystem::path& path, const std::string& text) {
    std::ofstream file(path, std::ios::binary);
    file << text;
    if (!file.flush())
        throw std::runtime_error("cannot write " + path.string());
}

class TemporaryFolder {
public:
    TemporaryFolder() {
        std::string name = (std::filesystem::temp_directory_path() / "lumora-XXXXXX").string();
        if (!mkdtemp(name.data()))
            throw std::runtime_error("cannot make a folder " + name);
        path_ = name;
    }
    ~TemporaryFolder() {
        std::error_code error;
        std::filesystem::remove_all(path_, error);
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    std::string operator/(const std::string& name) const { return (path_ / name).string(); }

private:
    std::filesystem::path path_;
};

struct ProcessResult {
    int status = -1; // the exit status; 128 and more when a signal ended the program
    std::string out;
    std::string err;
};

struct ProcessInput {
    std::string text{};                     // of standard input
    std::vector<std::string> environment{}; // "NAME=VALUE" added to the present one
    std::string
        outFile{}; // where standard output goes instead; "-" closes it, "|" is a pipe that no one reads
};

inline void redirectOutput(const std::string& target) {
    int ends[2];
    if (target == "-") {
        close(STDOUT_FILENO);
    } else if (target == "|" && pipe(ends) == 0) {
        dup2(ends[1], STDOUT_FILENO);
        close(ends[0]);
        close(ends[1]);
    } else {
        dup2(open(target.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600), STDOUT_FILENO);
    }
}

// Runs a program with its arguments to its end. Its streams are files, so no pipe can fill up.
inline ProcessResult runProcess(const std::vector<std::string>& command, const ProcessInput& input = {}) {
    const TemporaryFolder folder;
    const std::string in = folder / "in";
    const std::string out = input.outFile.empty() ? folder / "out" : input.outFile;
    const std::string err = folder / "err";
    writeFile(in, input.text);
    std::vector<char*> arguments;
    for (const std::string& word : command)
        arguments.push_back(const_cast<char*>(word.c_str()));
    arguments.push_back(nullptr);

    const pid_t child = fork();
    if (child == 0) {
        dup2(open(in.c_str(), O_RDONLY), STDIN_FILENO);
        dup2(open(err.c_str(), O_WRONLY | O_CREAT, 0600), STDERR_FILENO);
        redirectOutput(out);
        for (const std::string& variable : input.environment)
            putenv(const_cast<char*>(variable.c_str()));
        alarm(60); // nothing of ours takes as long
        execvp(arguments[0], arguments.data());
        _exit(127);
    }
    int status = 0;
    if (child < 0 || waitpid(child, &status, 0) != child)
        throw std::runtime_error("cannot run " + command[0]);
    ProcessResult result;
    result.status = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    result.out = input.outFile.empty() ? readFile(out) : "";
    result.err = readFile(err);
    return result;
}

} // namespace lumora::tests
