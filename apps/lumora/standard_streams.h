// Standard input and output, with every failure reported.
#pragma once

#include <string>
#include <string_view>

namespace lumora::cli {

// To be called first: no file that is opened later takes the place of a standard stream that is closed, and a
// reader that goes away makes writing fail instead of ending the process without a word.
void protectStandardStreams();

// Everything that standard input holds; EFileError when it cannot be read.
std::string readStandardInput();

// Standard output, buffered.
class Output {
public:
    // Both raise EFileError when the output cannot be written.
    void write(std::string_view text);
    void finish();
};

} // namespace lumora::cli
