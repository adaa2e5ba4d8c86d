#include "lumora/model/sql_template.h"

#include "lumora/platform/ascii.h"
#include "lumora/platform/short_lock.h"
#include "lumora/sqlparse/Vscanner.h"

#include <algorithm>
#include <utility>

namespace lumora {

namespace {

constexpr int MaxSeparateEntries = 24;
constexpr int MaxKeptPlans = 128;

using TPieces = std::vector<TTemplatePiece>;

TTemplatePiece Literal(std::string text) {
    TTemplatePiece piece;
    piece.Text = std::move(text);
    return piece;
}

// Works a plan out, placeholder by placeholder, over a list of literals and of pieces that were put in
// already.
class TPlanMaker {
public:
    TPlanMaker(const std::string& text, const TPlanRequest& request) : request_(request) {
        plan_.Pieces.push_back(Literal(text));
    }

    TTemplatePlan Make() {
        if (request_.HasField)
            ReplaceAlone("@f", tpField, 0);
        if (request_.HasTable)
            ReplaceAlone("@t", tpTable, 0);
        if (request_.HasMainTable)
            ReplaceAlone("@m", tpMainTable, 0);
        for (int value = 1; value <= std::min(request_.ValueCount, MaxTemplateValues); ++value)
            ReplaceValue(value);
        std::erase_if(plan_.Pieces,
                      [](const TTemplatePiece& p) { return p.Kind == tpLiteral && p.Text.empty(); });
        return std::move(plan_);
    }

private:
    void ReplaceAlone(std::string_view placeholder, TPieceKind kind, int value) {
        TPieces result;
        bool inLiteral = false;
        for (TTemplatePiece& piece : plan_.Pieces) {
            if (piece.Kind != tpLiteral) {
                result.push_back(std::move(piece));
                continue;
            }
            std::size_t start = 0;
            for (std::size_t at; (at = piece.Text.find(placeholder, start)) != std::string::npos;
                 start = at + placeholder.size()) {
                AppendLiteral(result, piece.Text.substr(start, at - start), inLiteral);
                result.push_back({kind, inLiteral, value, {}});
            }
            AppendLiteral(result, piece.Text.substr(start), inLiteral);
        }
        plan_.Pieces = std::move(result);
    }

    static void AppendLiteral(TPieces& pieces, std::string text, bool& inLiteral) {
        if (std::count(text.begin(), text.end(), '\'') % 2 != 0)
            inLiteral = !inLiteral;
        pieces.push_back(Literal(std::move(text)));
    }

    void ReplaceValue(int value) {
        const std::string placeholder = '@' + std::to_string(value);
        const TValueEntry entry = request_.GetEntry(value);
        const bool parameter = entry == veParameter;
        if (entry == veBare)
            return ReplaceAlone(placeholder, tpValue, value);
        const TPieceKind kind = parameter ? tpParamName : tpValue;
        ReplaceStretches(placeholder, kind, value);
        if (parameter)
            ReplaceAlone("@v", tpParamPattern, value);
    }

    // `done` holds the pieces before the place that is being looked at; `rest` the pieces behind it, last
    // first.
    void ReplaceStretches(std::string_view placeholder, TPieceKind kind, int value) {
        TPieces done;
        TPieces rest(std::make_move_iterator(plan_.Pieces.rbegin()),
                     std::make_move_iterator(plan_.Pieces.rend()));
        bool inLiteral = false;
        while (!rest.empty()) {
            TTemplatePiece piece = std::move(rest.back());
            rest.pop_back();
            const std::size_t at = piece.Kind == tpLiteral ? piece.Text.find(placeholder) : std::string::npos;
            if (at == std::string::npos) {
                if (piece.Kind == tpLiteral)
                    AppendLiteral(done, std::move(piece.Text), inLiteral);
                else
                    done.push_back(std::move(piece));
                continue;
            }
            AppendLiteral(done, piece.Text.substr(0, at), inLiteral);
            rest.push_back(Literal(piece.Text.substr(at + placeholder.size())));
            if (request_.Strict && !inLiteral) {
                RecordPattern(kind, value, {Literal("@v")});
                done.push_back({kind, false, value, {}});
                continue;
            }
            TPieces stretch = TakeBefore(done);
            stretch.push_back(Literal("@v"));
            TakeAfter(rest, stretch);
            RecordPattern(kind, value, std::move(stretch));
            done.push_back({kind, false, value, {}});
            inLiteral = false;
        }
        plan_.Pieces = std::move(done);
    }

    // Takes what stands behind the last "'" of the pieces, and that quote, off their end; all of them without
    // one.
    static TPieces TakeBefore(TPieces& pieces) {
        TPieces taken;
        while (!pieces.empty()) {
            TTemplatePiece& last = pieces.back();
            const std::size_t quote = last.Kind == tpLiteral ? last.Text.rfind('\'') : std::string::npos;
            if (quote != std::string::npos) {
                taken.push_back(Literal(last.Text.substr(quote + 1)));
                last.Text.resize(quote);
                break;
            }
            taken.push_back(std::move(last));
            pieces.pop_back();
        }
        std::reverse(taken.begin(), taken.end());
        return taken;
    }

    // Moves what stands before the first "'" of the reversed pieces to `taken` and drops that quote.
    static void TakeAfter(TPieces& reversed, TPieces& taken) {
        while (!reversed.empty()) {
            TTemplatePiece& first = reversed.back();
            const std::size_t quote = first.Kind == tpLiteral ? first.Text.find('\'') : std::string::npos;
            if (quote != std::string::npos) {
                taken.push_back(Literal(first.Text.substr(0, quote)));
                first.Text.erase(0, quote + 1);
                return;
            }
            taken.push_back(std::move(first));
            reversed.pop_back();
        }
    }

    // The first place in which a parameter stands gives its pattern.
    void RecordPattern(TPieceKind kind, int value, TPieces pieces) {
        const bool known = std::any_of(plan_.Patterns.begin(), plan_.Patterns.end(),
                                       [&](const TTemplatePlan::TPattern& p) { return p.Value == value; });
        if (kind != tpParamName || known)
            return;
        std::erase_if(pieces, [](const TTemplatePiece& p) { return p.Kind == tpLiteral && p.Text.empty(); });
        plan_.Patterns.push_back({value, std::move(pieces)});
    }

    const TPlanRequest& request_;
    TTemplatePlan plan_;
};

} // namespace

TSQLTemplate::TSQLTemplate() = default;

TSQLTemplate::~TSQLTemplate() {
    ForgetPlans();
}

void TPlanRequest::SetEntry(int value, TValueEntry entry) {
    const int shift = 2 * (std::min(value, MaxSeparateEntries) - 1);
    Entries = (Entries & ~(std::uint64_t{3} << shift)) | (std::uint64_t{entry} << shift);
}

TValueEntry TPlanRequest::GetEntry(int value) const {
    return static_cast<TValueEntry>((Entries >> (2 * (std::min(value, MaxSeparateEntries) - 1))) & 3);
}

std::uint64_t TPlanRequest::Key() const {
    const unsigned flags =
        (HasField ? 1u : 0u) | (HasTable ? 2u : 0u) | (HasMainTable ? 4u : 0u) | (Strict ? 8u : 0u);
    return Entries << 4 | flags;
}

namespace {

bool FindOuterOr(std::string_view text) {
    int depth = 0;
    for (TVScanner scanner(text); !scanner.AtEnd(); scanner.Next()) {
        const TToken& token = scanner.Token();
        depth += token.IsSymbol('(') ? 1 : token.IsSymbol(')') ? -1 : 0;
        if (depth == 0 && token.Kind == tkIdentifier && SameText(token.Text, "or"))
            return true;
    }
    return false;
}

} // namespace

void TSQLTemplate::SetText(std::string text) {
    text_ = std::move(text);
    ForgetPlans();
    hasOuterOr_ = FindOuterOr(text_);
    comparisons_ = FindComparisons(text_);
    paramCount_ = 0;
    while (paramCount_ < MaxTemplateValues &&
           text_.find('@' + std::to_string(paramCount_ + 1)) != std::string::npos)
        ++paramCount_;
}

struct TSQLTemplate::TKeptPlan {
    std::uint64_t Key;
    int ValueCount;
    TTemplatePlan Plan;
    int Count; // of plans, with those before it
    const TKeptPlan* Before;
};

const TSQLTemplate::TKeptPlan* TSQLTemplate::FindPlan(const TPlanRequest& request) const {
    const std::uint64_t key = request.Key();
    const TKeptPlan* kept = plans_.load(std::memory_order_acquire);
    while (kept && (kept->Key != key || kept->ValueCount != request.ValueCount))
        kept = kept->Before;
    return kept;
}

const TTemplatePlan& TSQLTemplate::Plan(const TPlanRequest& request, TTemplatePlan& spare) const {
    if (const TKeptPlan* const kept = FindPlan(request))
        return kept->Plan;
    spare = TPlanMaker(text_, request).Make();
    const TShortLock lock(this);
    if (const TKeptPlan* const kept = FindPlan(request)) // made by another thread meanwhile
        return kept->Plan;
    const TKeptPlan* const before = plans_.load(std::memory_order_relaxed);
    const int count = before ? before->Count + 1 : 1;
    if (count > MaxKeptPlans)
        return spare;
    const auto* const made =
        new TKeptPlan{request.Key(), request.ValueCount, std::move(spare), count, before}; // owned
    plans_.store(made, std::memory_order_release);
    return made->Plan;
}

void TSQLTemplate::ForgetPlans() {
    const TKeptPlan* kept = plans_.exchange(nullptr, std::memory_order_relaxed);
    while (kept)
        delete std::exchange(kept, kept->Before);
}

} // namespace lumora
