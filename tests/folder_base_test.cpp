#include "lumora/querybase/folder_base.h"
#include "lumora/querybase/folder_lock.h"
#include "lumora/querybase/query_file_name.h"
#include "tests/cli_process.h"
#include "tests/fixtures.h"

#include <gtest/gtest.h>

#include <sys/resource.h>
#include <unistd.h>

#include <csignal>
#include <thread>

using namespace lumora;
using namespace lumora::tests;
namespace fs = std::filesystem;

namespace {

std::string TextOf(const std::string& description, const std::string& name = "whatever") {
    return "[Main]\nQueryName=" + name + "\nVersion=3.5\n\n[Description]\n" + description + "\n\n";
}

TVStoredQueryItem& Item(TVQueryBase& base, std::string_view name) {
    const int index = base.IndexByName(name);
    return dynamic_cast<TVStoredQueryItem&>(*base.GetQuery(index));
}

std::string NamesOf(const TVQueryBase& base) {
    std::string names;
    for (int i = 0; i < base.GetCount(); ++i)
        names += base.GetQuery(i)->GetQueryName() + "|";
    return names;
}

// The message of a conflict; other errors pass.
template <typename TAction>
std::string ConflictOf(TAction action) {
    try {
        action();
    } catch (const EVQueryBaseError& error) {
        EXPECT_EQ(error.Code, qbeConflict) << error.what();
        return error.what();
    }
    return {};
}

// Two people who look at one folder.
class FolderBase : public testing::Test {
protected:
    FolderBase() {
        for (TVFolderQueryBase* const base : {&Ann, &Bob}) {
            base->SetFolder(Path);
            base->LockPatience = std::chrono::milliseconds(100);
        }
    }
    ~FolderBase() override { fs::permissions(Path, fs::perms::owner_all); }

    void Put(const std::string& file, const std::string& text) { writeFile(Folder / file, text); }
    std::string Get(const std::string& file) { return readFile(Folder / file); }
    // All file names, in order.
    std::string Files() {
        std::vector<std::string> names;
        for (const auto& entry : fs::directory_iterator(Path))
            names.push_back(entry.path().filename());
        std::sort(names.begin(), names.end());
        std::string text;
        for (const std::string& name : names)
            text += name + "|";
        return text;
    }

    TemporaryFolder Folder;
    const std::string Path = Folder / "";
    TVFolderQueryBase Ann, Bob;
};

} // namespace

TEST(QueryFileName, AnyNameSurvives) {
    std::string bytes;
    for (int c = 1; c < 256; c += 2)
        bytes += static_cast<char>(c);
    const std::pair<std::string, std::string> names[] = {
        {"Orders 2024", "Orders 2024.qry"},
        {"Größe, 価格 & \xF0\x9F\x98\x80", "Größe, 価格 & \xF0\x9F\x98\x80.qry"},
        {"a/b\\c:d*e?f\"g<h>i|j%k\n", "a%2Fb%5Cc%3Ad%2Ae%3Ff%22g%3Ch%3Ei%7Cj%25k%0A.qry"},
        {"..", "%2E%2E.qry"},
        {"end. ", "end.%20.qry"},
        {" ", "%20.qry"},
        {"CON", "%43ON.qry"},
        {"com1.old", "%63om1.old.qry"},
        {"LPT³", "%4CPT³.qry"},
        {"nul .x", "%6Eul .x.qry"},
        {"cut \xE4\xBE", "cut %E4%BE.qry"},
        {"\xC0\xAF\xED\xA0\x80", "%C0%AF%ED%A0%80.qry"},
        {std::string("\0", 1), "%00.qry"},
    };
    for (const auto& [name, file] : names) {
        EXPECT_EQ(QueryFileName(name), file);
        EXPECT_EQ(QueryNameOf(file), name);
    }
    for (const char* const device :
         {"prn", "aux", "nul", "conin$", "conout$", "com0", "com1", "com2", "com3", "com4", "com5", "com6",
          "com7", "com8", "com9", "com¹", "com²", "com³", "lpt1"})
        EXPECT_EQ(QueryFileName(device)[0], '%') << device;
    for (const char* const name : {"console", "com", "lpt10", "com1x", "null"})
        EXPECT_EQ(QueryFileName(name), std::string(name) + ".qry");
    const std::string odd = bytes.substr(0, 60);
    EXPECT_EQ(QueryNameOf(QueryFileName(odd)), odd);
    EXPECT_EQ(QueryNameOf(QueryFileName(bytes.substr(90))), bytes.substr(90));
    for (const char* const stem : {"100%", "%4", "%zz", "a%2"})
        EXPECT_EQ(QueryNameOf(std::string(stem) + ".qry"), stem);
    EXPECT_EQ(MessageOf<EVQueryBaseError>([] { QueryFileName(std::string(237, 'x')); }),
              "The name \"" + std::string(237, 'x') + "\" is too long for a query");
    EXPECT_NO_THROW(QueryFileName(std::string(236, 'x')));
}

TEST_F(FolderBase, ListsFilesByName) {
    Put("beta.qry", TextOf("second\nlines"));
    Put("Alpha.QRY", TextOf("first"));
    Put("a%2Fb.qry", "no query text");
    Put("100%.qry", TextOf(""));
    Put(".hidden.qry", TextOf(""));
    Put("notes.txt", "");
    fs::create_directory(Folder / "folder.qry");
    Ann.Open();
    EXPECT_EQ(NamesOf(Ann), "100%|a/b|Alpha|beta|");
    EXPECT_EQ(Ann.GetQuery(3)->GetDescription(), "second\nlines");
    Item(Ann, "100%").SaveContent(TStringList(TextOf("full")));
    EXPECT_EQ(Get("100%.qry"), TextOf("full")) << "stays in its file, and says its own name";
    Ann.Open(); // again
    EXPECT_EQ(Ann.GetCount(), 4);

    TVFolderQueryBase other;
    other.SetFolder(Folder / "nowhere");
    EXPECT_EQ(MessageOf<EFileError>([&] { other.Open(); }),
              "Cannot read folder \"" + (Folder / "nowhere") + "\": No such file or directory");
}

TEST_F(FolderBase, SavesRenamesAndErases) {
    Ann.Open();
    Ann.NewQuery();
    Ann.NewQuery();
    EXPECT_EQ(NamesOf(Ann), "Query 1|Query 2|");
    EXPECT_EQ(Ann.GetItemIndex(), 1);
    TStringList content(TextOf("one"));
    Item(Ann, "query 2").LoadContent(content);
    EXPECT_TRUE(content.Empty()) << "nothing is stored yet";
    EXPECT_EQ(Files(), "");
    TVStoredQueryItem& item = Item(Ann, "Query 1");
    item.SaveContent(TStringList(TextOf("one")));
    EXPECT_EQ(item.GetDescription(), "one");
    item.SetQueryName("Was: one?");
    item.SaveContent(TStringList(TextOf("two")));
    EXPECT_EQ(Files(), "Was%3A one%3F.qry|");
    item.SetQueryName("WAS: one?");
    item.SaveContent(TStringList(TextOf("three")));
    EXPECT_EQ(Files(), "WAS%3A one%3F.qry|");
    item.SetQueryName(" ");
    EXPECT_EQ(MessageOf<EVQueryBaseError>([&] { item.SaveContent(content); }), "A query needs a name");
    Ann.EraseQuery(0);
    Ann.EraseQuery(0); // was never saved
    EXPECT_EQ(Files(), "");
    EXPECT_EQ(Ann.GetCount(), 0);
    EXPECT_EQ(Ann.GetItemIndex(), 0) << "as it was";
    EXPECT_EQ(Ann.AddQuery("later", content), 0);
    EXPECT_EQ(Files(), "later.qry|");
}

TEST_F(FolderBase, WhatSomeoneElseChangedIsNotOverwritten) {
    for (const char* const name : {"changed", "deleted", "renamed"})
        Put(std::string(name) + ".qry", TextOf("old"));
    Ann.Open();
    Bob.Open();
    const TStringList mine(TextOf("ann")), theirs(TextOf("bob"));
    Item(Bob, "changed").SaveContent(theirs);
    Bob.EraseQuery(Bob.IndexByName("deleted"));
    Item(Bob, "renamed").SetQueryName("moved");
    Item(Bob, "moved").SaveContent(theirs);

    TVStoredQueryItem& changed = Item(Ann, "changed");
    const std::string message = "Query \"changed\" was changed by someone else since it was read";
    EXPECT_EQ(ConflictOf([&] { changed.SaveContent(mine); }), message);
    EXPECT_EQ(ConflictOf([&] { Ann.EraseQuery(Ann.IndexByName("changed")); }), message);
    changed.SetQueryName("mine");
    EXPECT_EQ(ConflictOf([&] { changed.SaveContent(mine); }), message);
    changed.SetQueryName("changed");
    EXPECT_EQ(changed.GetDescription(), "old");
    for (const char* const name : {"deleted", "renamed"})
        EXPECT_EQ(ConflictOf([&] { Item(Ann, name).SaveContent(mine); }),
                  "Query \"" + std::string(name) + "\" was deleted by someone else");
    EXPECT_EQ(ConflictOf([&] { Ann.AddQuery("moved", mine); }), "There is a query \"moved\" already");
    EXPECT_EQ(ConflictOf([&] { Ann.AddQuery("CHANGED", mine); }), "There is a query \"CHANGED\" already");
    EXPECT_EQ(Files(), "changed.qry|moved.qry|");
    EXPECT_EQ(Get("changed.qry"), theirs.GetText());

    // The ways out: under another name, by force, after having seen what the other one did.
    Ann.AddQuery("mine", mine);
    Item(Ann, "deleted").ForceSaveContent(mine);
    Ann.ForceEraseQuery(Ann.IndexByName("renamed"));
    TStringList seen;
    changed.LoadContent(seen);
    EXPECT_EQ(seen.GetText(), theirs.GetText());
    EXPECT_EQ(changed.GetDescription(), "bob");
    changed.SaveContent(mine);
    EXPECT_EQ(Get("changed.qry"), mine.GetText());
    EXPECT_EQ(ConflictOf([&] { Item(Bob, "changed").SaveContent(theirs); }), message);
    // By force onto a query of the list: that one gives way. What someone else made of the old file stays.
    Put("mine.qry", TextOf("theirs"));
    Item(Ann, "mine").SetQueryName("changed");
    TVStoredQueryItem& moved = dynamic_cast<TVStoredQueryItem&>(*Ann.GetQuery(Ann.GetCount() - 1));
    EXPECT_NE(ConflictOf([&] { moved.SaveContent(mine); }), "");
    moved.ForceSaveContent(theirs);
    EXPECT_EQ(NamesOf(Ann), "deleted|changed|");
    EXPECT_EQ(Files(), "changed.qry|deleted.qry|mine.qry|moved.qry|");
    EXPECT_EQ(Get("changed.qry"), theirs.GetText());
}

TEST_F(FolderBase, WhatCannotBeReadIsNotOverwritten) {
    Put("a.qry", TextOf("a"));
    Put("b.qry", TextOf("b"));
    Ann.Open();
    fs::resize_file(Folder / "b.qry", (std::uintmax_t{64} << 20) + 1);
    TStringList content;
    EXPECT_EQ(MessageOf<EFileError>([&] { Item(Ann, "b").LoadContent(content); }),
              "Cannot read file \"" + (Folder / "b.qry") + "\": it is too large for a query");
    Put("b.qry", TextOf("b"));
    EXPECT_EQ(ConflictOf([&] { Item(Ann, "b").SaveContent(content); }),
              "Query \"b\" could not be read before, so it is not overwritten");
    // A panel that stumbles over the text shows only a part of it.
    Put("b.qry", TextOf("b") + "[Row]\nRowType=1\nRowCount=many\n");
    TShop shop;
    shop.Panel.SetQueryBase(&Bob);
    Bob.Open();
    EXPECT_THROW(Bob.SetItemIndex(1), EConvertError);
    EXPECT_NE(ConflictOf([&] { Bob.GetCurrentQuery()->Save(); }), "");
    Item(Bob, "b").ForceSave();
    EXPECT_EQ(Get("b.qry").find("many"), std::string::npos);

    fs::remove(Folder / "a.qry");
    EXPECT_EQ(MessageOf<EVQueryBaseError>([&] { Item(Ann, "a").LoadContent(content); }),
              "There is no query \"a\"");
}

TEST_F(FolderBase, FailedWritesLeaveTheOldFile) {
    Put("a.qry", TextOf("old"));
    Ann.Open();
    const TStringList mine(TextOf("new", std::string(1000, 'x')));
    rlimit limit{};
    getrlimit(RLIMIT_FSIZE, &limit);
    const rlimit small{100, limit.rlim_max};
    std::signal(SIGXFSZ, SIG_IGN); // so writing fails as it does on a full disk
    setrlimit(RLIMIT_FSIZE, &small);
    const std::string message = MessageOf<EFileError>([&] { Item(Ann, "a").SaveContent(mine); });
    setrlimit(RLIMIT_FSIZE, &limit);
    EXPECT_EQ(message, "Cannot write file \"" + (Folder / "a.qry") + "\": File too large");
    EXPECT_EQ(Get("a.qry"), TextOf("old"));
    EXPECT_EQ(Files(), "a.qry|");

    fs::permissions(Path, fs::perms(0555));
    const uid_t user = geteuid();
    ASSERT_EQ(seteuid(user == 0 ? 65534 : user), 0); // to root nothing is forbidden
    EXPECT_EQ(MessageOf<EFileError>([&] { Item(Ann, "a").SaveContent(mine); }),
              "Cannot write to folder \"" + Path + "\": Permission denied");
    EXPECT_THROW(Ann.EraseQuery(0), EFileError);
    ASSERT_EQ(seteuid(user), 0);
    fs::permissions(Path, fs::perms::owner_all);
    Item(Ann, "a").SaveContent(mine);
    EXPECT_EQ(Get("a.qry"), mine.GetText());
    fs::remove_all(Path);
    EXPECT_THROW(Item(Ann, "a").SaveContent(mine), EFileError);
    EXPECT_EQ(Ann.GetCount(), 1);
    fs::create_directory(Path);
}

// Each round, several try to save what they have read; exactly one may win.
TEST_F(FolderBase, OfThoseWhoSaveAtOnceOneWins) {
    Put("a.qry", TextOf("0"));
    constexpr int people = 4;
    for (int round = 0; round < 20; ++round) {
        std::vector<std::unique_ptr<TVFolderQueryBase>> bases;
        for (int i = 0; i < people; ++i) {
            bases.push_back(std::make_unique<TVFolderQueryBase>());
            bases.back()->SetFolder(Path);
            bases.back()->Open();
        }
        std::string winners[people];
        std::vector<std::thread> threads;
        for (int i = 0; i < people; ++i)
            threads.emplace_back([&, i] {
                const std::string text = TextOf(std::to_string(round) + "/" + std::to_string(i));
                try {
                    dynamic_cast<TVStoredQueryItem&>(*bases[static_cast<std::size_t>(i)]->GetQuery(0))
                        .SaveContent(TStringList(text));
                    winners[i] = text;
                } catch (const EVQueryBaseError&) {
                }
            });
        for (std::thread& thread : threads)
            thread.join();
        std::string won;
        for (const std::string& text : winners)
            won += text;
        EXPECT_EQ(Get("a.qry"), won);
    }
}

TEST_F(FolderBase, LocksLeftBehindAreBroken) {
    fs::create_directory(Folder / ".lumora-lock");
    Put(".lumora-lock/crashed", "bob on attic, process 7");
    std::vector<std::string> owners;
    Ann.OnStaleLock = [&](const std::string& owner) { owners.push_back(owner); };
    for (const char* const name : {"b.qry.new", "b.qry.new12", "b.qry.newer", "b.new", "young.qry.new"})
        Put(name, "half");
    for (const auto& entry : fs::directory_iterator(Folder / ""))
        if (entry.path().filename() != "young.qry.new")
            fs::last_write_time(entry.path(), entry.last_write_time() - std::chrono::hours(1));
    Ann.AddQuery("a", TStringList(TextOf("")));
    EXPECT_EQ(Files(), "a.qry|b.new|b.qry.newer|young.qry.new|") << "what a killed program left is cleared";
    for (const char* const name : {"b.qry.newer", "b.new", "young.qry.new"})
        fs::remove(Folder / name);
    {
        const TFolderLock held(Path, std::chrono::milliseconds(50));
        EXPECT_NO_THROW(held.CheckHeld());
        Ann.AddQuery("b", TStringList(TextOf(""))); // takes the holder for dead
        EXPECT_THROW(held.CheckHeld(), EFileError);
    }
    ASSERT_EQ(owners.size(), 2u);
    EXPECT_EQ(owners[0], "bob on attic, process 7");
    EXPECT_NE(owners[1].find(", process " + std::to_string(getpid()) + ", since 20"), std::string::npos)
        << owners[1];
    EXPECT_EQ(Files(), "a.qry|b.qry|");
    Put(".lumora-lock", "no lock of ours");
    EXPECT_THROW(Ann.AddQuery("c", TStringList(TextOf(""))), EFileError);
}

TEST_F(FolderBase, PanelsFollow) {
    TShop shop, again;
    shop.Select("customers.company");
    shop.Where("customers.custno", "Equal", "7");
    shop.Panel.SetQueryBase(&Ann);
    Ann.Open();
    EXPECT_FALSE(shop.Panel.GetEmpty()) << "an empty base takes nothing away";
    EXPECT_EQ(Ann.SaveAs("seven"), 0);
    EXPECT_EQ(shop.Panel.GetQueryName(), "seven");
    EXPECT_NE(Get("seven.qry").find("\nQueryName=seven\n"), std::string::npos);
    const std::string sql = shop.SQL();

    Ann.NewQuery();
    EXPECT_TRUE(shop.Panel.GetEmpty());
    EXPECT_EQ(shop.Panel.GetQueryName(), "Query 1");
    shop.Select("customers.company");
    shop.Where("customers.custno", "Equal", "8");
    shop.Panel.SetDescription(TStringList("eight\n\n"));
    Ann.GetCurrentQuery()->SetQueryName("eight");
    EXPECT_EQ(shop.Panel.GetQueryName(), "eight");
    shop.Panel.SetDescription(TStringList("eight\n\n"));
    shop.Panel.SetQueryName("the panel's own");
    Ann.GetCurrentQuery()->Save();
    EXPECT_FALSE(shop.Panel.GetModified());
    EXPECT_EQ(Ann.GetCurrentQuery()->GetDescription(), "eight\n\n");
    EXPECT_NE(Get("eight.qry").find("\nQueryName=eight\n"), std::string::npos);
    Ann.SetItemIndex(0);
    EXPECT_EQ(shop.SQL(), sql);

    again.Panel.SetQueryBase(&Bob);
    Bob.Open(); // "eight" is current
    EXPECT_EQ(again.Panel.GetDescription().GetText(), "eight\n\n");
    again.Where("customers.custno", "Equal", "9");
    Bob.GetCurrentQuery()->Save();
    Ann.SetItemIndex(1);
    EXPECT_EQ(shop.SQL(), again.SQL()) << "read anew";

    // The panel shows what is current also when another query goes.
    Ann.AddQuery("nine", TStringList(Get("seven.qry")));
    Ann.EraseQuery(0);
    EXPECT_EQ(Ann.GetCurrentQuery()->GetQueryName(), "eight");
    EXPECT_EQ(shop.Panel.GetQueryName(), "eight");
    Ann.EraseQuery(0);
    EXPECT_EQ(Ann.GetCurrentQuery()->GetQueryName(), "nine");
    EXPECT_EQ(shop.Panel.GetQueryName(), "nine");
    EXPECT_EQ(shop.SQL(), sql);

    shop.Panel.SetQueryBase(nullptr);
    EXPECT_EQ(MessageOf<EVQueryBaseError>([&] { Ann.GetCurrentQuery()->Save(); }),
              "No panel gives the text of query \"nine\"");
}
