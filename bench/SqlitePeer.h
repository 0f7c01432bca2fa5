// The peer that keeps the records in a table of the database's memory, in statements prepared once.
#pragma once

#include <memory>
#include <span>
#include <string_view>
#include <utility>

struct sqlite3;
struct sqlite3_stmt;

namespace bench {

class SqlitePeer {
public:
    // A table of as many texts, one of which is the key; an upsert sets the key and `updated`.
    SqlitePeer(std::size_t texts, std::size_t key, std::span<const std::size_t> updated);

    void Insert(std::span<const std::string_view> texts);
    // `texts` begins with the key.
    void Upsert(std::span<const std::string_view> texts);

private:
    struct Closed {
        void operator()(sqlite3* database) const;
        void operator()(sqlite3_stmt* statement) const;
    };
    using Statement = std::unique_ptr<sqlite3_stmt, Closed>;

    Statement Prepare(const char* text);
    void Run(const Statement& statement, std::span<const std::string_view> texts);

    std::unique_ptr<sqlite3, Closed> m_database;
    Statement m_insert, m_upsert;
};

} // namespace bench
