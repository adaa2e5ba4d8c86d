// Plain queries that an engine is known to refuse, or to understand otherwise than their rows say, and what
// strict panels are to refuse themselves.
#pragma once

#include "tests/truth/reference.h"

namespace lumora::truth {

enum class Effect { none, differs, refused }; // differs: may be refused too, and may be right by chance

struct NamedCase {
    const char* name;
    const char* reason;
    Effect sqlite;
    Effect postgres;
    Effect mariaDb;
    bool (*applies)(const TVQueryPanel& panel, const Engine& engine);

    Effect effect(const Engine& engine) const {
        return engine.name == sqliteEngine.name     ? sqlite
               : engine.name == postgresEngine.name ? postgres
                                                    : mariaDb;
    }
};

extern const std::vector<NamedCase> namedCases;

// Whether a strict panel is to refuse the query for one of its values.
bool hasRefusedValue(const TVQueryPanel& panel);
// Whether it is to refuse the query because distinct records are sorted by what is no column.
bool sortsDistinctByExpression(const TVQueryPanel& panel, const Engine& engine);

} // namespace lumora::truth
