#include "lumora/querybase/query_file_name.h"

#include "lumora/querybase/Vqrybase.h"

#include <algorithm>
#include <cstddef>

namespace lumora {

namespace {

// Bytes. File systems take 255; the name of the new file that is written beside needs some of them.
constexpr std::size_t MaxFileName = 240;

constexpr std::string_view ReservedCharacters = "/\\:*?\"<>|%\x7F";
// Names of devices, whatever extension follows.
constexpr std::string_view Devices[] = {"con", "prn", "aux", "nul", "conin$", "conout$"};
constexpr std::string_view NumberedDevices[] = {"com", "lpt"};
constexpr std::string_view DeviceNumbers[] = {"0", "1", "2", "3", "4", "5", "6",
                                              "7", "8", "9", "¹", "²", "³"};

bool IsReserved(char c) {
    return static_cast<unsigned char>(c) < ' ' || ReservedCharacters.find(c) != std::string_view::npos;
}

void AppendEncoded(std::string& out, char c) {
    constexpr std::string_view digits = "0123456789ABCDEF";
    const auto byte = static_cast<unsigned char>(c);
    ((out += '%') += digits[byte >> 4]) += digits[byte & 15];
}

// The length of the UTF-8 character that the text begins with; 0 when it begins with none.
std::size_t CharacterLength(std::string_view text) {
    const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
    const unsigned first = byte(0);
    const std::size_t length = first < 0x80 ? 1 : first < 0xC2 ? 0 : first < 0xE0 ? 2 : first < 0xF0 ? 3 : 4;
    if (length == 0 || first > 0xF4 || text.size() < length)
        return 0;
    for (std::size_t i = 1; i < length; ++i)
        if ((byte(i) & 0xC0) != 0x80)
            return 0;
    // Too long a form, half a surrogate pair, beyond the last character.
    const bool isNone = (first == 0xE0 && byte(1) < 0xA0) || (first == 0xED && byte(1) > 0x9F) ||
                        (first == 0xF0 && byte(1) < 0x90) || (first == 0xF4 && byte(1) > 0x8F);
    return isNone ? 0 : length;
}

bool IsDevice(std::string_view name) {
    name = name.substr(0, name.find('.'));
    while (!name.empty() && name.back() == ' ')
        name.remove_suffix(1);
    if (std::any_of(std::begin(Devices), std::end(Devices),
                    [&](std::string_view device) { return SameText(device, name); }))
        return true;
    return std::any_of(std::begin(NumberedDevices), std::end(NumberedDevices), [&](std::string_view device) {
        return SameText(device, name.substr(0, 3)) &&
               std::find(std::begin(DeviceNumbers), std::end(DeviceNumbers), name.substr(3)) !=
                   std::end(DeviceNumbers);
    });
}

int HexDigit(char c) {
    c = LowerAscii(c);
    return IsDigit(c) ? c - '0' : c >= 'a' && c <= 'f' ? c - 'a' + 10 : -1;
}

} // namespace

std::string QueryFileName(std::string_view queryName) {
    std::string file;
    for (std::size_t i = 0; i < queryName.size();) {
        const std::size_t length = CharacterLength(queryName.substr(i));
        const char c = queryName[i];
        const bool atEdge = (i == 0 && c == '.') || (i + 1 == queryName.size() && (c == '.' || c == ' '));
        if (length == 0 || atEdge || IsReserved(c) || (i == 0 && IsDevice(queryName)))
            AppendEncoded(file, c);
        else
            file += queryName.substr(i, length);
        i += std::max<std::size_t>(length, 1);
    }
    file += QueryFileExtension;
    if (file.size() > MaxFileName)
        throw EVQueryBaseError(qbeBadName, Message(msgQueryNameTooLong), {queryName});
    return file;
}

bool IsQueryFileName(std::string_view fileName) {
    return fileName.size() > QueryFileExtension.size() && fileName[0] != '.' &&
           SameText(fileName.substr(fileName.size() - QueryFileExtension.size()), QueryFileExtension);
}

std::string QueryNameOf(std::string_view fileName) {
    const std::string_view stem = fileName.substr(0, fileName.size() - QueryFileExtension.size());
    std::string name;
    for (std::size_t i = 0; i < stem.size(); ++i) {
        if (stem[i] != '%') {
            name += stem[i];
            continue;
        }
        const int high = i + 2 < stem.size() ? HexDigit(stem[i + 1]) : -1;
        const int low = high >= 0 ? HexDigit(stem[i + 2]) : -1;
        if (low < 0)
            return std::string(stem);
        name += static_cast<char>(high * 16 + low);
        i += 2;
    }
    return name;
}

} // namespace lumora
