#include "sim/array/database.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <stdexcept>
#include <system_error>

namespace sim {

Database::FileLock::FileLock(const std::string& file) {
    if (file == ":memory:") {
        return;
    }
    // The file holds what clusters told the array about themselves.
    m_descriptor = ::open(file.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, S_IRUSR | S_IWUSR);
    if (m_descriptor < 0) {
        throw std::runtime_error("state file " + file + ": " +
                                 std::generic_category().message(errno));
    }
    if (::flock(m_descriptor, LOCK_EX | LOCK_NB) != 0) {
        ::close(m_descriptor);
        throw std::runtime_error("state file " + file +
                                 ": another simulator uses it; give this one a file of its own");
    }
}

Database::FileLock::~FileLock() {
    if (m_descriptor >= 0) {
        ::close(m_descriptor);
    }
}

Database::Database(const std::string& file) : m_lock(file) {
    sqlite3* handle = nullptr;
    const mode_t before = ::umask(S_IRWXG | S_IRWXO);
    const int status = ::sqlite3_open(file.c_str(), &handle);
    ::umask(before);
    m_handle.reset(handle);
    if (status != SQLITE_OK) {
        throw std::runtime_error(file + ": " + ::sqlite3_errmsg(handle));
    }
    execute("PRAGMA journal_mode = WAL; PRAGMA synchronous = NORMAL; PRAGMA foreign_keys = ON");
}

void Database::check(int status) const {
    if (status != SQLITE_OK && status != SQLITE_DONE && status != SQLITE_ROW) {
        throw std::runtime_error(std::string("state database: ") +
                                 ::sqlite3_errmsg(m_handle.get()));
    }
}

void Database::execute(const char* script) {
    check(::sqlite3_exec(m_handle.get(), script, nullptr, nullptr, nullptr));
}

Database::Cursor::Cursor(Database& database, std::string_view sql) : m_database(database) {
    auto found = database.m_statements.find(sql);
    if (found == database.m_statements.end()) {
        sqlite3_stmt* prepared = nullptr;
        database.check(::sqlite3_prepare_v2(database.m_handle.get(), sql.data(),
                                            static_cast<int>(sql.size()), &prepared, nullptr));
        found = database.m_statements.emplace(std::string(sql), prepared).first;
    }
    m_statement = found->second.get();
}

Database::Cursor::~Cursor() {
    ::sqlite3_reset(m_statement);
    ::sqlite3_clear_bindings(m_statement);
}

void Database::Cursor::bind(int position, std::int64_t value) {
    m_database.check(::sqlite3_bind_int64(m_statement, position, value));
}

void Database::Cursor::bind(int position, std::string_view value) {
    m_database.check(::sqlite3_bind_text(m_statement, position, value.data(),
                                         static_cast<int>(value.size()), SQLITE_TRANSIENT));
}

std::vector<Row> Database::Cursor::rows() {
    std::vector<Row> out;
    int status = SQLITE_ROW;
    while ((status = ::sqlite3_step(m_statement)) == SQLITE_ROW) {
        out.push_back(current());
    }
    m_database.check(status);
    return out;
}

Row Database::Cursor::current() const {
    Row row = Row::object();
    for (int i = 0; i < ::sqlite3_column_count(m_statement); ++i) {
        auto& cell = row[::sqlite3_column_name(m_statement, i)];
        if (::sqlite3_column_type(m_statement, i) == SQLITE_INTEGER) {
            cell = static_cast<std::int64_t>(::sqlite3_column_int64(m_statement, i));
        } else {
            const auto* text = ::sqlite3_column_text(m_statement, i);
            cell = std::string(reinterpret_cast<const char*>(text),
                               static_cast<std::size_t>(::sqlite3_column_bytes(m_statement, i)));
        }
    }
    return row;
}

}  // namespace sim
