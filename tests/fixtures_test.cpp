// Runs the fixtures: what is in tests/fixtures/ and how to add to it, its README says.
#include "lumora/platform/text_file.h"
#include "lumora/support/Vstrings.h"
#include "tests/fixtures.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <map>

namespace lumora::tests {
namespace {

using TPath = std::filesystem::path;

const TPath fixtures = LUMORA_FIXTURES;
const TPath samples = LUMORA_SAMPLES;

std::vector<TPath> FilesIn(const TPath& folder) {
    std::vector<TPath> files;
    if (std::filesystem::is_directory(folder))
        for (const auto& entry : std::filesystem::directory_iterator(folder))
            files.push_back(entry.path());
    std::sort(files.begin(), files.end());
    return files;
}

// What the name of an expected file says: "brackets.strict.ssOracle.sql".
struct TExpectation {
    std::string Case;
    std::string Kind; // the last word
    TSQLSyntax Syntax = ssSQL2;
    TSQLOptions Options;
    std::string MainTable;
    bool Strict = false;
    bool Saved = false; // the text after loading, where it is not the text before
    bool Again = false; // of the statement when it has been read back

    explicit TExpectation(const std::string& fileName) {
        const std::vector<std::string_view> words = SplitText(fileName, '.');
        Case = words.front();
        Kind = words.back();
        for (std::size_t i = 1; i + 1 < words.size(); ++i)
            Take(words[i]);
    }

    void Prepare(TVQueryPanel& panel, TVDBStructure& model) const {
        panel.SetDbStruct(&model);
        panel.SetStrict(Strict);
        panel.SetSQLSyntax(Syntax);
        panel.SetSQLOptions(Options);
        panel.SetMainTableName(MainTable);
        panel.SetSaveTitles(false);
        panel.Activate();
    }

private:
    void Take(std::string_view word) {
        if (word == "strict")
            Strict = true;
        else if (word == "saved")
            Saved = true;
        else if (word == "again")
            Again = true;
        else if (word.starts_with("main-"))
            MainTable = word.substr(5);
        else if (const int option = EnumOrdinal<TSQLOption>(word); option >= 0)
            Options.Include(static_cast<TSQLOption>(option));
        else if (const int syntax = EnumOrdinal<TSQLSyntax>(word); syntax >= 0)
            Syntax = static_cast<TSQLSyntax>(syntax);
        else
            ADD_FAILURE() << "\"" << word << "\" is not known in the name of a fixture";
    }
};

std::string SavedText(TVQueryPanel& panel) {
    TStringList lines;
    panel.SaveToStrings(lines);
    return lines.GetText();
}

std::string Statement(TVQueryPanel& panel) {
    panel.BuildQuery();
    return panel.GetQResult().GetSQL().GetText();
}

// What the panel gives in the form that the file's last word names.
std::string Output(const TExpectation& wanted, TVQueryPanel& panel) {
    if (wanted.Kind == "sql")
        return Statement(panel);
    if (wanted.Kind == "words")
        return panel.GetQueryText();
    if (wanted.Kind == "qry")
        return SavedText(panel);
    ADD_FAILURE() << "\"" << wanted.Kind << "\" is no kind of fixture";
    return {};
}

// A refusal is an output too.
template <typename TMake>
std::string OrRefusal(TMake make) {
    std::string text;
    const std::string message = MessageOf<Exception>([&] { text = make(); });
    return message.empty() ? text : "refused: " + ReplaceText(message, "\r\n", " ") + "\n";
}

void LoadQuery(TVQueryPanel& panel, const TExpectation& wanted, const std::string& query) {
    const std::size_t options = query.find("\nOptions=");
    panel.SetSaveSQLOptions(options != std::string::npos && query[options + 9] != '\n');
    panel.SetSaveTitles(query.starts_with("[Query Panel]"));
    panel.LoadFromStrings(TStringList(query));
    panel.SetSQLOptions(panel.GetSQLOptions() + wanted.Options);
}

std::string FromStatements(const TExpectation& wanted, TVDBStructure& model, const std::string& statements);

std::string FromQuery(const TExpectation& wanted, TVDBStructure& model, const std::string& query) {
    TVQueryPanel panel;
    wanted.Prepare(panel, model);
    return OrRefusal([&] {
        LoadQuery(panel, wanted, query);
        return wanted.Again ? FromStatements(wanted, model, Statement(panel)) : Output(wanted, panel);
    });
}

// Of several statements, with empty lines between them, one output after the other in the same way.
std::string FromStatements(const TExpectation& wanted, TVDBStructure& model, const std::string& statements) {
    std::string text;
    for (std::size_t start = 0; start < statements.size();) {
        const std::size_t end = std::min(statements.find("\n\n", start), statements.size());
        TVQueryPanel panel;
        wanted.Prepare(panel, model);
        text.append(text.empty() ? "" : "\n").append(OrRefusal([&] {
            panel.ParseSQL(TStringList(statements.substr(start, end - start)));
            return Output(wanted, panel);
        }));
        start = end + 2;
    }
    return text;
}

// With LUMORA_WRITE_FIXTURES=1 the files are written anew, to be looked over; the test then fails.
void ExpectFile(const TPath& file, const std::string& actual) {
    if (std::getenv("LUMORA_WRITE_FIXTURES")) {
        WriteTextFile(file.string(), actual);
        return;
    }
    EXPECT_EQ(ReadTextFile(file.string()), actual)
        << "^ tests/fixtures/" << std::filesystem::relative(file, fixtures).string()
        << " (-) and what came (+)";
}

// A strict statement that is read back gives itself, unless a file says what else.
void ExpectItself(const TExpectation& wanted, TVDBStructure& model, const TPath& file) {
    const std::string sql = ReadTextFile(file.string());
    TPath again = file;
    if (sql.starts_with("refused: ") || std::filesystem::exists(again.replace_extension("again.sql")))
        return;
    EXPECT_EQ(FromStatements(wanted, model, sql), sql)
        << "^ what came of reading back (-) tests/fixtures/"
        << std::filesystem::relative(file, fixtures).string() << " (+)";
}

// The folder's fixtures of one direction: "write" has queries, "read" statements. Gives how many files it
// expected.
int RunFolder(const TPath& folder, TVDBStructure& model) {
    const bool reads = folder.filename() == "read";
    const std::string inputKind = reads ? ".sql" : ".qry";
    std::map<std::string, std::string> inputs;
    std::vector<TPath> expected;
    std::vector<TPath> files = FilesIn(folder);
    if (folder.parent_path().filename() == "orders" && !reads)
        for (const TPath& query : FilesIn(samples / "queries"))
            files.push_back(query);
    for (const TPath& file : files) {
        if (file.stem().string().find('.') == std::string::npos && file.extension() == inputKind)
            inputs[file.stem().string()] = ReadTextFile(file.string());
        else
            expected.push_back(file);
    }
    std::map<std::string, int> outputs;
    for (const TPath& file : expected) {
        SCOPED_TRACE(file.filename().string());
        const TExpectation wanted(file.filename().string());
        const auto input = inputs.find(wanted.Case);
        if (input == inputs.end()) {
            ADD_FAILURE() << "no " << wanted.Case << inputKind << " beside tests/fixtures/"
                          << std::filesystem::relative(file, fixtures).string();
            continue;
        }
        ++outputs[wanted.Case + (wanted.Saved ? ".saved" : "")];
        ExpectFile(file, reads ? FromStatements(wanted, model, input->second)
                               : FromQuery(wanted, model, input->second));
        if (!reads && wanted.Strict && !wanted.Again && wanted.Kind == "sql")
            ExpectItself(wanted, model, file);
    }
    for (const auto& [name, text] : inputs) {
        EXPECT_GT(outputs[name], 0) << folder << ": nothing is expected of " << name;
        if (reads || outputs.count(name + ".saved") > 0)
            continue;
        EXPECT_EQ(FromQuery(TExpectation(name + ".qry"), model, text), text)
            << "^ what came of loading and saving (-) tests/fixtures/"
            << std::filesystem::relative(folder, fixtures).string() << "/" << name << ".qry (+)";
    }
    return static_cast<int>(expected.size());
}

// The folder's own model, or the sample of that name.
TPath ModelOf(const TPath& folder) {
    const TPath own = folder / (folder.filename().string() + ".model");
    return std::filesystem::exists(own) ? own : samples / own.filename();
}

} // namespace

TEST(Fixtures, GiveWhatStandsBesideThem) {
    int count = 0;
    for (const TPath& folder : FilesIn(fixtures)) {
        if (!std::filesystem::is_directory(folder))
            continue;
        TVDBStructure model;
        const std::string text = ReadTextFile(ModelOf(folder).string());
        model.LoadFromStrings(TStringList(text));
        EXPECT_EQ(model.GetStructString(), text)
            << "^ what came of loading and saving (-) the model of " << folder << " (+)";
        count += RunFolder(folder / "write", model) + RunFolder(folder / "read", model);
    }
    EXPECT_GT(count, 100) << "fixtures are missing in " << fixtures;
    EXPECT_EQ(std::getenv("LUMORA_WRITE_FIXTURES"), nullptr) << "the fixtures were written, not compared";
}

} // namespace lumora::tests
