// Standard input and output, with every failure reported.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <utility>

namespace lumora::cli {

// To be called first: no file that is opened later takes the place of a standard stream that is closed, and a
// reader that goes away makes writing fail instead of ending the process without a word.
void protectStandardStreams();

// Everything that standard input holds; EFileError when it cannot be read.
std::string readStandardInput();

// Standard output, buffered. What was written is on its way at the latest when this object goes.
class Output {
public:
    Output() = default;
    ~Output();
    Output(const Output&) = delete;
    Output& operator=(const Output&) = delete;

    // Both raise EFileError when the output cannot be written.
    void write(std::string_view text);
    void finish();
    // Called once, before what is written next; null takes it back.
    void beforeNextWrite(std::function<void()> call) { beforeNextWrite_ = std::move(call); }

private:
    std::function<void()> beforeNextWrite_;
};

} // namespace lumora::cli
