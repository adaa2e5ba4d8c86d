#include "lumora/querybase/stored_text.h"

#include "lumora/platform/convert.h"
#include "lumora/support/section_reader.h"
#include "lumora/support/string_helpers.h"

namespace lumora {

std::string DescriptionOf(const TStringList& content) {
    const TSectionIndex sections(content);
    int position = 0;
    sections.Read("Main", position); // the description stands behind it
    TStringList lines;
    sections.Read("Description", position).CopyTo(lines);
    std::string text = lines.GetText();
    if (text.size() > 1 && text[text.size() - 2] != '\n')
        text.pop_back(); // only behind a blank line does the last line feed tell anything
    return text;
}

void PutQueryName(TStringList& content, std::string_view name) {
    const std::string line =
        "QueryName=" + ReplaceText(ReplaceText(ReplaceText(name, "\r\n", " "), "\r", " "), "\n", " ");
    bool inMain = false;
    for (int i = 0; i < content.Count(); ++i) {
        if (const std::string_view section = SectionName(content[i]); !section.empty()) {
            if (inMain)
                return;
            inMain = SameText(section, "Main");
        } else if (inMain && SameText(content.Name(i), "QueryName")) {
            if (content[i] != line)
                content.Put(i, line);
            return;
        }
    }
}

std::string QueryTextFault(const TStringList& content) {
    const TSectionIndex sections(content);
    if (sections.Find("Main") < 0)
        return "it has no section [Main]";
    const TSectionLines main = sections.Read("Main");
    if (!main.Has("Version"))
        return "its section [Main] has no version";
    const std::string_view version = main.Value("Version");
    return TryStrToFloat(version) ? std::string()
                                  : "its version \"" + std::string(version) + "\" is no number";
}

} // namespace lumora
