#include "lumora/metadata/session.h"

#include <atomic>

namespace lumora {

namespace {

// Where no platform is there.
class TNoSession : public TSession {
public:
    void GetDatabaseNames(TStringList& names) override { names.Clear(); }
    void GetTableNames(const std::string& database, std::string_view, bool, bool, TStringList&) override {
        Fail(database);
    }
    TDatabase* FindDatabase(const std::string&) override { return nullptr; }
    std::unique_ptr<TTable> NewTable() override { Fail({}); }
    std::unique_ptr<TQuery> NewQuery() override { Fail({}); }

private:
    [[noreturn]] static void Fail(const std::string& database) {
        throw EVDBInfoError("Database \"" + database + "\" cannot be reached: there is no database session");
    }
};

std::atomic<TSession*> defaultSession{nullptr};

} // namespace

TSession::~TSession() {
    TSession* self = this;
    defaultSession.compare_exchange_strong(self, nullptr);
}

TSession& TSession::Default() {
    static TNoSession none;
    TSession* const session = defaultSession;
    return session ? *session : none;
}

void TSession::SetDefault(TSession* session) {
    defaultSession = session;
}

} // namespace lumora
