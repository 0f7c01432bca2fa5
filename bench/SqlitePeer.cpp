#include "bench/SqlitePeer.h"

#include "bench/Cases.h"

#include <sqlite3.h>

#include <string>

namespace bench {
namespace {

std::string Column(std::size_t index) {
    return "text" + std::to_string(index);
}

} // namespace

void SqlitePeer::Closed::operator()(sqlite3* database) const {
    sqlite3_close(database);
}

void SqlitePeer::Closed::operator()(sqlite3_stmt* statement) const {
    sqlite3_finalize(statement);
}

SqlitePeer::SqlitePeer(std::size_t texts, std::size_t key, std::span<const std::size_t> updated) {
    sqlite3* database = nullptr;
    Require(sqlite3_open(":memory:", &database) == SQLITE_OK, "SQLite");
    m_database.reset(database);

    std::string columns, places;
    for (std::size_t i = 0; i < texts; ++i) {
        columns += (i ? ", " : "") + Column(i) + (i == key ? " TEXT PRIMARY KEY" : " TEXT");
        places += i ? ", ?" : "?";
    }
    std::string names = Column(key), set, upserted = "?";
    for (const std::size_t i : updated) {
        names += ", " + Column(i);
        set += (set.empty() ? "" : ", ") + Column(i) + " = excluded." + Column(i);
        upserted += ", ?";
    }
    // One transaction around all, and no second tree beside the key's: its fastest way.
    Run(Prepare(("CREATE TABLE book (" + columns + ") WITHOUT ROWID").c_str()), {});
    Run(Prepare("BEGIN"), {});
    m_insert = Prepare(("INSERT INTO book VALUES (" + places + ")").c_str());
    m_upsert = Prepare(("INSERT INTO book (" + names + ") VALUES (" + upserted + ") ON CONFLICT (" + Column(key)
                        + ") DO UPDATE SET " + set)
                           .c_str());
}

SqlitePeer::Statement SqlitePeer::Prepare(const char* text) {
    sqlite3_stmt* statement = nullptr;
    Require(sqlite3_prepare_v2(m_database.get(), text, -1, &statement, nullptr) == SQLITE_OK, text);
    return Statement(statement);
}

void SqlitePeer::Run(const Statement& statement, std::span<const std::string_view> texts) {
    for (std::size_t i = 0; i < texts.size(); ++i)
        sqlite3_bind_text(statement.get(), static_cast<int>(i + 1), texts[i].data(),
                          static_cast<int>(texts[i].size()), nullptr); // null: the text holds until the next
    Require(sqlite3_step(statement.get()) == SQLITE_DONE, "SQLite");
    sqlite3_reset(statement.get());
}

void SqlitePeer::Insert(std::span<const std::string_view> texts) {
    Run(m_insert, texts);
}

void SqlitePeer::Upsert(std::span<const std::string_view> texts) {
    Run(m_upsert, texts);
}

} // namespace bench
