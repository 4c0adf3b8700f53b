// client/store/schema.h: the tables of a database file and every statement that is run on them.
// docs/formats/database.md explains each field.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace pavex {

constexpr int32_t kApplicationId = 0x50617678;  // "Pavx"
constexpr int32_t kSchemaVersion = 1;

// info_copy lies on a page of its own: who can read either table knows the replica id and the title.
// A note's items come last in its row, so that reading its identity alone does not touch them.
// A large value's id is its note's times 2^32 plus its position: it takes no index to find or lose.
// note_change is all that the table of modified notes reads; it costs what changed, not what is there.
inline constexpr const char* kSchema = R"(
CREATE TABLE info(id INTEGER PRIMARY KEY CHECK (id = 1), replica BLOB NOT NULL, title TEXT NOT NULL,
                  last_stamp INTEGER NOT NULL, data_stamp INTEGER NOT NULL, design_stamp INTEGER NOT NULL);
CREATE TABLE info_copy(id INTEGER PRIMARY KEY CHECK (id = 1), replica BLOB NOT NULL, title TEXT NOT NULL);
CREATE TABLE note(id INTEGER PRIMARY KEY, unid BLOB NOT NULL, sequence INTEGER NOT NULL,
                  modified BLOB NOT NULL, class INTEGER NOT NULL, flags INTEGER NOT NULL,
                  stamp INTEGER NOT NULL, checksum INTEGER NOT NULL, items BLOB NOT NULL);
CREATE INDEX note_change ON note(stamp, class, flags);
CREATE UNIQUE INDEX note_unid ON note(unid);
CREATE TABLE value(id INTEGER PRIMARY KEY, checksum INTEGER NOT NULL, bytes BLOB NOT NULL);
CREATE TABLE design(title TEXT NOT NULL COLLATE NOCASE, class INTEGER NOT NULL, note INTEGER NOT NULL,
                    PRIMARY KEY (title, class, note)) WITHOUT ROWID;
CREATE INDEX design_note ON design(note);
CREATE TABLE unread(user TEXT NOT NULL COLLATE NOCASE, note INTEGER NOT NULL,
                    PRIMARY KEY (user, note)) WITHOUT ROWID;
CREATE INDEX unread_note ON unread(note);
CREATE TABLE source(key TEXT PRIMARY KEY NOT NULL, source TEXT NOT NULL, digest TEXT NOT NULL,
                    note INTEGER NOT NULL) WITHOUT ROWID;
CREATE INDEX source_keys ON source(source, key);
)";

// One row a statement: its name in the code, its text.  Each is prepared when it is first used, once a
// connection.
#define PAVEX_STATEMENTS(ROW)                                                                                          \
    ROW(kBeginRead, "BEGIN")                                                                                           \
    ROW(kBeginWrite, "BEGIN IMMEDIATE")                                                                                \
    ROW(kCommit, "COMMIT")                                                                                             \
    ROW(kRollback, "ROLLBACK")                                                                                         \
    ROW(kReadInfo, "SELECT replica, title, last_stamp, data_stamp, design_stamp FROM info WHERE id = 1")               \
    ROW(kReadInfoCopy, "SELECT replica, title FROM info_copy WHERE id = 1")                                            \
    ROW(kGreatestStamp, "SELECT max(stamp) FROM note")                                                                 \
    ROW(kWriteInfo, "REPLACE INTO info(id, replica, title, last_stamp, data_stamp, design_stamp) "                     \
                    "VALUES(1, ?1, ?2, ?3, ?4, ?5)")                                                                   \
    ROW(kWriteInfoCopy, "INSERT INTO info_copy(id, replica, title) VALUES(1, ?1, ?2) ON CONFLICT(id) DO UPDATE "       \
                        "SET replica = ?1, title = ?2 WHERE replica <> ?1 OR title <> ?2")                             \
    ROW(kReadHead, "SELECT id, unid, sequence, modified, class, flags, stamp, checksum FROM note WHERE id = ?1")       \
    ROW(kReadRow, "SELECT id, unid, sequence, modified, class, flags, stamp, checksum, items FROM note WHERE id = ?1") \
    ROW(kListHeads, "SELECT id, unid, sequence, modified, class, flags, stamp, checksum FROM note "                    \
                    "WHERE id >= ?1 ORDER BY id LIMIT ?2")                                                             \
    ROW(kNextId, "SELECT coalesce(max(id), 0) + 1 FROM note")                                                          \
    ROW(kWriteRow, "INSERT INTO note(id, unid, sequence, modified, class, flags, stamp, checksum, items) "             \
                   "VALUES(?1, ?2, ?3, ?4, ?5, ?6, ?7, ?8, ?9) ON CONFLICT(id) DO UPDATE SET unid = ?2, "              \
                   "sequence = ?3, modified = ?4, class = ?5, flags = ?6, stamp = ?7, checksum = ?8, items = ?9")      \
    ROW(kWriteStamp, "UPDATE note SET stamp = ?2, checksum = ?3 WHERE id = ?1")                                        \
    ROW(kReadValue, "SELECT checksum, bytes FROM value WHERE id = ?1")                                                 \
    ROW(kWriteValue, "INSERT INTO value(id, checksum, bytes) VALUES(?1, ?2, ?3)")                                      \
    ROW(kDeleteValues, "DELETE FROM value WHERE id BETWEEN ?1 << 32 AND (?1 << 32) + 4294967295")                      \
    ROW(kFindUnid, "SELECT id FROM note WHERE unid = ?1")                                                              \
    ROW(kCountLive, "SELECT count(*) FROM note WHERE flags & 1 = 0")                                                   \
    ROW(kListChanges, "SELECT id, flags FROM note INDEXED BY note_change WHERE stamp > ?1 AND class & ?2")             \
    ROW(kFindDesign, "SELECT min(note) FROM design WHERE title = ?1 AND class = ?2")                                   \
    ROW(kWriteDesign, "INSERT OR IGNORE INTO design(title, class, note) VALUES(?1, ?2, ?3)")                           \
    ROW(kDeleteDesign, "DELETE FROM design WHERE note = ?1")                                                           \
    ROW(kSetUnread, "INSERT OR IGNORE INTO unread(user, note) VALUES(?1, ?2)")                                         \
    ROW(kSetRead, "DELETE FROM unread WHERE user = ?1 AND note = ?2")                                                  \
    ROW(kSetReadByAll, "DELETE FROM unread WHERE note = ?1")                                                           \
    ROW(kIsUnread, "SELECT 1 FROM unread WHERE user = ?1 AND note = ?2")                                               \
    ROW(kListUnread, "SELECT note FROM unread WHERE user = ?1")                                                        \
    ROW(kFindSource, "SELECT key, source, digest, note FROM source WHERE key = ?1")                                    \
    ROW(kPutSource, "REPLACE INTO source(key, source, digest, note) VALUES(?1, ?2, ?3, ?4)")                           \
    ROW(kDeleteSource, "DELETE FROM source WHERE key = ?1")                                                            \
    ROW(kSourcesOf, "SELECT key, source, digest, note FROM source WHERE key = ?1 OR (key > ?1 || '#' AND "             \
                    "key < ?1 || '$') ORDER BY key")                                                                   \
    ROW(kListSources, "SELECT key, source, digest, note FROM source WHERE source = ?1 AND key > ?2 "                   \
                      "ORDER BY key LIMIT ?3")

enum class Sql : size_t {
#define PAVEX_NAME(name, text) name,
    PAVEX_STATEMENTS(PAVEX_NAME)
#undef PAVEX_NAME
};

inline constexpr std::array kStatements = {
#define PAVEX_TEXT(name, text) text,
    PAVEX_STATEMENTS(PAVEX_TEXT)
#undef PAVEX_TEXT
};
#undef PAVEX_STATEMENTS

}  // namespace pavex
