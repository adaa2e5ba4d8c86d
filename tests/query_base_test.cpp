#include "lumora/querybase/Vqrybase.h"
#include "tests/fixtures.h"

#include <gtest/gtest.h>

#include <functional>
#include <utility>

using namespace lumora;
using namespace lumora::tests;

namespace {

// Writes down what it is told.
class TNotingLink : public TVQueryBaseLink {
public:
    explicit TNotingLink(std::string& notes, bool answers = false) : notes_(notes), answers_(answers) {}

    void QueryChanged(int index) override {
        notes_ += "changed" + std::to_string(index) + " ";
        if (const auto act = std::exchange(act_, nullptr))
            act();
    }
    void QueryIndexChanged() override {
        notes_ += "index" + std::to_string(GetQueryBase()->GetItemIndex()) + " ";
    }
    void QueryListChanged(TQBOperation operation, int index) override {
        notes_.append(EnumName(operation)).append(std::to_string(index)).append(" ");
    }
    void OnNextNotice(std::function<void()> act) { act_ = std::move(act); }
    bool GetQueryContent(TStringList& content) override {
        notes_ += "asked ";
        content.SetText("from the link\n");
        return answers_;
    }

private:
    std::string& notes_;
    bool answers_;
    std::function<void()> act_;
};

class TThreeQueries : public TVQueryBase {
public:
    ~TThreeQueries() override { ClearQueries(); }

protected:
    void ReadQueries() override {
        SuppressNotifications = true;
        for (const char* const name : {"One", "Two", "Three"}) {
            auto item = std::make_unique<TVQueryItem>();
            item->SetQueryName(name);
            AddItem(std::move(item));
        }
        SuppressNotifications = false;
    }
};

} // namespace

TEST(QueryBase, TellsItsLinksInOrder) {
    std::string notes, events;
    TThreeQueries base;
    base.BeforeOpen = [&](TVQueryBase&) { events += "before "; };
    base.AfterOpen = [&](TVQueryBase&) { events += "after "; };
    base.BeforeClose = [&](TVQueryBase&) { events += base.GetActive() ? "before " : "late "; };
    base.AfterClose = [&](TVQueryBase&) { events += base.GetActive() ? "early " : "closed "; };
    base.BeforeScroll = [&](TVQueryBase&) { events += std::to_string(base.GetItemIndex()); };
    base.AfterScroll = [&](TVQueryBase&) { events += "to" + std::to_string(base.GetItemIndex()) + " "; };
    TNotingLink link(notes);
    link.SetQueryBase(&base);
    base.Open();
    EXPECT_EQ(notes, "qboListLoaded-1 index0 ");
    EXPECT_EQ(std::exchange(events, {}), "before -1to0 after ");
    notes.clear();
    base.SetItemIndex(0);
    base.GetQuery(1)->SetQueryName("Deux");
    base.GetQuery(1)->SetQueryName("Deux");
    EXPECT_EQ(notes, "changed1 ");
    EXPECT_EQ(base.IndexByName("DEUX"), 1);
    notes.clear();
    base.Close();
    EXPECT_EQ(notes, "qboListCleared-1 ");
    EXPECT_EQ(base.GetItemIndex(), -1);
    EXPECT_EQ(events, "before closed ");
    TVQueryBase empty;
    link.SetQueryBase(&empty);
    notes.clear();
    empty.Open();
    EXPECT_EQ(notes, "qboListLoaded-1 ");
    EXPECT_EQ(empty.GetItemIndex(), -1);
}

TEST(QueryBase, LinksMayGoInANotice) {
    std::string notes, lastNotes;
    TThreeQueries base;
    base.Open();
    auto first = std::make_unique<TNotingLink>(notes);
    auto second = std::make_unique<TNotingLink>(notes);
    TNotingLink last(lastNotes);
    for (TVQueryBaseLink* const link :
         {static_cast<TVQueryBaseLink*>(first.get()), static_cast<TVQueryBaseLink*>(second.get()),
          static_cast<TVQueryBaseLink*>(&last)})
        link->SetQueryBase(&base);
    first->OnNextNotice([&] { second.reset(); });
    base.GetQuery(0)->SetQueryName("Uno");
    EXPECT_EQ(notes, "changed0 ");
    EXPECT_EQ(lastNotes, "changed0 ");
}

TEST(QueryBase, LeavesItsLinksWhenItGoes) {
    std::string notes;
    TNotingLink first(notes), second(notes);
    {
        TThreeQueries base;
        first.SetQueryBase(&base);
        second.SetQueryBase(&base);
    }
    EXPECT_EQ(first.GetQueryBase(), nullptr);
    EXPECT_EQ(second.GetQueryBase(), nullptr);
}

TEST(QueryBase, KeepsACurrentQueryWhenOneGoes) {
    std::string notes;
    TThreeQueries base;
    TNotingLink link(notes);
    base.Open();
    link.SetQueryBase(&base);
    base.DeleteQuery(0); // the one behind becomes current; the index is the same, so nobody is told of it
    EXPECT_EQ(notes, "qboItemDeleted0 ");
    EXPECT_EQ(base.GetCurrentQuery()->GetQueryName(), "Two");
    base.SetItemIndex(1);
    notes.clear();
    base.EraseQuery(1);
    EXPECT_EQ(notes, "qboItemDeleted1 index0 ");
    base.DeleteQuery(0);
    EXPECT_EQ(base.GetItemIndex(), 0); // the only one went
    EXPECT_EQ(base.GetCurrentQuery(), nullptr);
    EXPECT_THROW(base.DeleteQuery(0), EListError);
}

TEST(QueryBase, AsksForContentUntilOneAnswers) {
    std::string notes;
    TThreeQueries base;
    base.Open();
    TNotingLink silent(notes), answering(notes, true), late(notes, true);
    TStringList content;
    EXPECT_FALSE(base.GetQuery(0)->TakeContent(content));
    for (TVQueryBaseLink* const link : {&silent, &answering, &late})
        link->SetQueryBase(&base);
    EXPECT_TRUE(base.GetQuery(0)->GiveContent(content)); // it asks, too
    EXPECT_EQ(notes, "asked asked ");
    EXPECT_EQ(content.GetText(), "from the link\n");
    const std::unique_ptr<TVQueryItem> alone = base.DeleteQuery(0);
    EXPECT_EQ(MessageOf<EVQueryBaseError>([&] { alone->Load(); }),
              "Query \"One\" does not belong to a query base");
}
