// A search index in a SQLite database: a row for each paragraph, with its offset in the file.
//
//   search_index letters.db add letters/*.DOC
//   search_index letters.db find '"lending desk"'
#include <pfsdoc/document.h>
#include <pfsdoc/paragraph_text.h>

#include <cstdio>
#include <cstdlib>
#include <sqlite3.h>
#include <string>

static sqlite3 *database = nullptr;

static void need(bool fine)
{
    if (!fine) {
        std::fprintf(stderr, "search_index: %s\n", sqlite3_errmsg(database));
        std::exit(1);
    }
}

// Runs a statement with its values, and prints its result, a line for each row.
static void run(const char *sql, std::initializer_list<std::string> values = {})
{
    sqlite3_stmt *statement = nullptr;
    need(sqlite3_prepare_v2(database, sql, -1, &statement, nullptr) == SQLITE_OK);
    int parameter = 0, state = SQLITE_ROW;
    for (const std::string &value : values) {
        need(sqlite3_bind_text(statement, ++parameter, value.c_str(), -1, nullptr) == SQLITE_OK);
    }
    while ((state = sqlite3_step(statement)) == SQLITE_ROW) {
        std::printf("%s\n", reinterpret_cast<const char *>(sqlite3_column_text(statement, 0)));
    }
    need(state == SQLITE_DONE && sqlite3_finalize(statement) == SQLITE_OK);
}

// After an error the part that could be read is in the index.
static pfsdoc::Status add(const std::string &file)
{
    auto document = pfsdoc::Document::open(file);
    if (!document.ok()) {
        return document.error();
    }
    run("DELETE FROM texts WHERE file = ?", {file});
    auto block = document.value().next();
    for (; block.ok() && block.value(); block = document.value().next()) {
        const pfsdoc::Paragraph &paragraph = block.value()->paragraph;
        run("INSERT INTO texts VALUES (?, ?, ?)",
            {file, std::to_string(paragraph.source_begin), pfsdoc::plain_text(paragraph)});
    }
    return block.ok() ? pfsdoc::Status{} : block.error();
}

int main(int argc, char **argv)
{
    const std::string what = argc > 3 ? argv[2] : "";
    if (what != "add" && what != "find") {
        std::fputs("usage: search_index DATABASE add|find FILE...|WORDS\n", stderr);
        return 2;
    }
    need(sqlite3_open(argv[1], &database) == SQLITE_OK);
    run("CREATE VIRTUAL TABLE IF NOT EXISTS texts USING fts5(file UNINDEXED, at UNINDEXED, text)");
    run("BEGIN");
    int code = 0;
    for (int index = 3; index < argc && what == "add"; ++index) {
        if (const pfsdoc::Status added = add(argv[index]); !added.ok()) {
            std::fprintf(stderr, "search_index: %s: %s\n", argv[index], added.error().what.c_str());
            code = pfsdoc::exit_code(added.error().kind);
        }
    }
    run("COMMIT");
    if (what == "find") {
        run("SELECT file || ':' || at || ': ' || snippet(texts, 2, '[', ']', '...', 12) "
            "FROM texts WHERE texts MATCH ? ORDER BY file, at + 0",
            {argv[3]});
    }
    return sqlite3_close(database) == SQLITE_OK ? code : 1;
}
