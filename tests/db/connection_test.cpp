#include "db/connection.h"

#include <gtest/gtest.h>

#include <fstream>

#include "db/sql_text.h"
#include "support/test_database.h"

namespace owb {
namespace {

std::string openError(const std::string& connectionString) {
    Connection connection;
    try {
        connection.Open(connectionString);
    } catch (const DbError& e) {
        EXPECT_EQ(connection.State(), 0);
        return e.what();
    }
    return "opened";
}

// The text of the error that the work ends with; "" without one.
template <class Work>
std::string failure(Work work) {
    try {
        work();
    } catch (const DbError& e) {
        return e.what();
    }
    return "";
}

TEST(Connection, EntriesOfTheString) {
    const std::string text = "Provider=SQLOLEDB.1;User ID = sa ;PWD=;Data Source=srv\\x";
    const struct {
        const char* key;
        const char* value;
    } cases[] = {{"provider", "SQLOLEDB.1"},
                 {"USER ID", "sa"},
                 {"PWD", ""},
                 {"Data Source", "srv\\x"},
                 {"Database", ""}};
    for (const auto& c : cases) EXPECT_EQ(connectionEntry(text, c.key), c.value);
}

TEST(Connection, WhatCannotBeOpenedSaysWhy) {
    const test::TempDir dir;
    const std::string noDatabase = dir.file("letter.txt");
    std::ofstream(noDatabase) << std::string(5000, 'x');
    const struct {
        std::string connection;
        const char* says;
    } cases[] = {
        {"Provider=OWBEmbedded;Data Source=" + dir.file("none.owb"), "none.owb"},
        {"Provider=OWBEmbedded;Data Source=" + noDatabase, "letter.txt"},
        {"Provider=OWBEmbedded", "Data Source"},
        {"Provider=SQLOLEDB.1;Data Source=srv;Initial Catalog=x", "no SQL Server driver"},
        {"Provider=SQLNCLI;Server=srv;Database=x;Trusted_Connection=yes;", "no SQL Server driver"},
        {"Provider=Other;Data Source=x", "Provider cannot be found"},
        {"", "Provider cannot be found"}};
    for (const auto& c : cases)
        EXPECT_NE(openError(c.connection).find(c.says), std::string::npos)
            << c.connection << "\n"
            << openError(c.connection);
    EXPECT_FALSE(std::filesystem::exists(dir.file("none.owb")));
}

TEST(Connection, CreatingOverAFileIsRefused) {
    const test::TempDir dir;
    std::ofstream(dir.file("kept")) << "text";
    EXPECT_THROW(createEmbedded(dir.file("kept")), DbError);
    EXPECT_THROW(createEmbedded(dir.file("no/folder/x.owb")), DbError);
    EXPECT_EQ(std::filesystem::file_size(dir.file("kept")), 4u);
}

TEST(Connection, StateAndReopening) {
    test::TestDatabase db;
    EXPECT_EQ(db.connection.State(), 1);
    EXPECT_THROW(db.connection.Open("Provider=OWBEmbedded;Data Source=" + db.path()), DbError);
    const std::string used = db.connection.ConnectionString();
    db.connection.Close();
    db.connection.Close();
    EXPECT_EQ(db.connection.State(), 0);
    EXPECT_THROW(db.connection.Execute("SELECT 1"), DbError);
    db.connection.Open(used);
    EXPECT_EQ(db.value("SELECT 5"), "5");
}

TEST(Connection, TransactionsOfOneLevel) {
    test::TestDatabase db("CREATE TABLE t (a int)");
    Connection& c = db.connection;
    c.BeginTrans();
    c.Execute("INSERT INTO t VALUES (1)");
    c.RollbackTrans();
    EXPECT_EQ(db.value("SELECT COUNT(*) FROM t"), "0");
    c.BeginTrans();
    c.Execute("INSERT INTO t VALUES (1)");
    EXPECT_EQ(db.value("SELECT COUNT(*) FROM sys.dm_tran_database_transactions WHERE database_id = "
                       "DB_ID()"),
              "1");
    c.CommitTrans();
    EXPECT_EQ(db.value("SELECT COUNT(*) FROM t"), "1");
    EXPECT_EQ(failure([&] { c.CommitTrans(); }),
              "The COMMIT TRANSACTION request has no corresponding BEGIN TRANSACTION.");
    EXPECT_EQ(failure([&] { c.RollbackTrans(); }),
              "The ROLLBACK TRANSACTION request has no corresponding BEGIN TRANSACTION.");
    // A second one is refused and leaves the first, and texts nest as they like.
    c.BeginTrans();
    c.Execute("INSERT INTO t VALUES (2)");
    EXPECT_EQ(failure([&] { c.BeginTrans(); }), "A transaction is already open.");
    c.Execute("BEGIN TRAN INSERT INTO t VALUES (3) COMMIT");
    EXPECT_EQ(db.value("SELECT @@TRANCOUNT"), "1");
    c.CommitTrans();
    EXPECT_EQ(db.value("SELECT COUNT(*) FROM t"), "3");
    EXPECT_EQ(db.value("SELECT @@TRANCOUNT"), "0");
    // An error that undid the transaction ended it.
    c.BeginTrans();
    EXPECT_NE(failure([&] { c.ExecuteAtomic("SELECT 1 / 0"); }), "");
    c.BeginTrans();
    c.RollbackTrans();
}

TEST(Connection, ErrorsThrowOrStand) {
    test::TestDatabase db("CREATE TABLE t (a int NOT NULL)");
    const std::string batch =
        "INSERT INTO t VALUES (NULL) INSERT INTO t VALUES (1) SELECT a FROM t";
    EXPECT_THROW(db.connection.Run(batch), DbError);
    const BatchResult result = db.connection.RunCollecting(batch);
    ASSERT_EQ(result.errors.size(), 1u);
    EXPECT_EQ(result.errors[0].number, 515);
    ASSERT_EQ(result.sets.size(), 1u);
    EXPECT_EQ(result.sets[0].rows, 2u);
}

TEST(Connection, AnotherConnectionSeesWhatWasCommitted) {
    test::TestDatabase db("CREATE TABLE t (a int) INSERT INTO t VALUES (1)");
    Connection other;
    other.Open(db.connection.ConnectionString());
    db.connection.BeginTrans();
    db.connection.Execute("UPDATE t SET a = 2");
    EXPECT_EQ(other.Run("SELECT a FROM t").sets[0].at(0, 0).toInt(), 1);
    other.setCommandTimeout(1);
    EXPECT_THROW(other.Execute("UPDATE t SET a = 3"), DbError);
    db.connection.CommitTrans();
    other.Execute("UPDATE t SET a = a + 10");
    EXPECT_EQ(db.value("SELECT a FROM t"), "12");
}

TEST(Connection, LiteralsReadBack) {
    test::TestDatabase db;
    const Value values[] = {Value(int64_t{-7}),
                            Value(9000000000),
                            Value(2.5),
                            Value(1e300),
                            Value(1e-9),
                            Value(Decimal(-1250, 2)),
                            Value("it's ½ \\ \"x\""),
                            Value(""),
                            Value(*parseDate("2014-01-05 13:07:09.123"))};
    for (const Value& v : values) {
        const std::string type = v.isDate() ? "datetime" : v.isDouble() ? "float" : "";
        const std::string literal = sqlLiteral(v);
        const std::string sql =
            type.empty() ? "SELECT " + literal : "SELECT CAST(" + literal + " AS " + type + ")";
        EXPECT_EQ(db.value(sql), v.toText()) << literal;
    }
    EXPECT_EQ(sqlLiteral(Value()), "NULL");
    EXPECT_EQ(sqlName("a]b"), "[a]]b]");
}

}  // namespace
}  // namespace owb
