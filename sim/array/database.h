#pragma once

#include <sqlite3.h>

#include <cstdint>
#include <map>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace sim {

/// A row of a result: column name to integer or text, in the order of the query.
using Row = nlohmann::ordered_json;

/// One SQLite database, used from one thread at a time.
///
///     Database database(":memory:");
///     for (const Row& row : database.all("SELECT id FROM volumes WHERE name = ?", name)) ...
///
/// SQL texts are literals: a statement is prepared once and kept under its text. Values only
/// ever travel as parameters. Every failure raises std::runtime_error with SQLite's words.
class Database {
public:
    /// Opens or makes the file, readable by its owner only, for this process alone; ":memory:"
    /// keeps nothing. Throws std::runtime_error when another simulator has the file.
    explicit Database(const std::string& file);

    void execute(const char* script);

    template <class... Values>
    std::vector<Row> all(std::string_view sql, const Values&... values) {
        Cursor cursor(*this, sql);
        int position = 0;
        (cursor.bind(++position, values), ...);
        return cursor.rows();
    }

    template <class... Values>
    std::optional<Row> one(std::string_view sql, const Values&... values) {
        auto rows = all(sql, values...);
        return rows.empty() ? std::nullopt : std::optional<Row>(std::move(rows.front()));
    }

    template <class... Values>
    void run(std::string_view sql, const Values&... values) {
        all(sql, values...);
    }

    /// Rows touched by the last run().
    int changes() const { return ::sqlite3_changes(m_handle.get()); }

    /// Does all of `work` or, when it raises, nothing of it.
    template <class Work>
    void atomically(const Work& work) {
        execute("SAVEPOINT work");
        try {
            work();
        } catch (...) {
            execute("ROLLBACK TO work; RELEASE work");
            throw;
        }
        execute("RELEASE work");
    }

private:
    struct CloseHandle {
        void operator()(sqlite3* handle) const { ::sqlite3_close(handle); }
    };
    struct Finalize {
        void operator()(sqlite3_stmt* statement) const { ::sqlite3_finalize(statement); }
    };

    /// One use of a kept statement; leaves it ready for the next.
    class Cursor {
    public:
        Cursor(Database& database, std::string_view sql);
        ~Cursor();
        Cursor(const Cursor&) = delete;
        Cursor& operator=(const Cursor&) = delete;
        void bind(int position, std::int64_t value);
        void bind(int position, std::string_view value);
        std::vector<Row> rows();

    private:
        Database& m_database;
        sqlite3_stmt* m_statement;  // the database's
        Row current() const;
    };

    /// Held as long as the database is open; goes after it, since closing any descriptor of the
    /// file gives up the locks that SQLite has on it.
    class FileLock {
    public:
        explicit FileLock(const std::string& file);
        ~FileLock();
        FileLock(const FileLock&) = delete;
        FileLock& operator=(const FileLock&) = delete;

    private:
        int m_descriptor = -1;
    };

    FileLock m_lock;
    std::unique_ptr<sqlite3, CloseHandle> m_handle;
    std::map<std::string, std::unique_ptr<sqlite3_stmt, Finalize>, std::less<>> m_statements;

    void check(int status) const;
};

}  // namespace sim
