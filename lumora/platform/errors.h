// The component framework's own exceptions. The package's exceptions derive from Exception too.
#pragma once

#include <cstddef>
#include <stdexcept>
#include <string>

namespace lumora {

// Base of every exception that leaves the core, but for those of memory that has run out.
class Exception : public std::runtime_error {
public:
    explicit Exception(const std::string& message) : std::runtime_error(message) {}
};

class EConvertError : public Exception { // a text that is no number, date or set
public:
    using Exception::Exception;
};
class EListError : public Exception { // an index outside a list
public:
    using Exception::Exception;
    explicit EListError(int index) : Exception("List index out of bounds (" + std::to_string(index) + ")") {}
};
// The index, which is one of a list of so many items; EListError when it is not.
inline std::size_t CheckIndex(int index, std::size_t count) {
    if (index < 0 || static_cast<std::size_t>(index) >= count)
        throw EListError(index);
    return static_cast<std::size_t>(index);
}
class EFileError : public Exception { // a file that cannot be read or written; the message names it
public:
    using Exception::Exception;
};
class EComponentError : public Exception { // a component name that is invalid or taken
public:
    using Exception::Exception;
};
class EReadError : public Exception { // form text that cannot be read; the message names the line
public:
    using Exception::Exception;
};

} // namespace lumora
