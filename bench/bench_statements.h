// The SELECT statements that are measured: as people and programs write them, every one different, made from
// a fixed seed.
#pragma once

#include <random>
#include <string>
#include <string_view>
#include <vector>

namespace lumora::bench {

// Qualified names ("customers.city") of an order-keeping business.
const std::vector<std::string>& PlainNames();

class TStatementMaker {
public:
    // The names must outlive it.
    explicit TStatementMaker(const std::vector<std::string>& names) : names_(names) {}

    // A statement with that many conditions in WHERE, in brackets up to eight deep.
    std::string Make(int conditions);

private:
    int Pick(int count) { return static_cast<int>(random_() % static_cast<unsigned>(count)); }
    template <typename TList>
    const auto& PickFrom(const TList& list) {
        return list[static_cast<std::size_t>(Pick(static_cast<int>(std::size(list))))];
    }
    void Word(std::string_view word); // in the letter case of the statement
    void ResultFields();
    void Tables();
    void Conditions(int count, int depth);
    void Condition();
    void Text(std::string_view before, std::string_view after);
    void Number();
    void OrderBy();

    const std::vector<std::string>& names_;
    std::mt19937 random_{20260703};
    std::string sql_;
    bool upper_ = false;
    int fields_ = 0;
};

// The statements of one size, as many as InputCount allows.
std::vector<std::string> MakeStatements(const std::vector<std::string>& names, int conditions);

} // namespace lumora::bench
