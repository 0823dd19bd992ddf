#include "db/recordset.h"

#include <gtest/gtest.h>

#include "support/test_database.h"

namespace owb {
namespace {

constexpr const char* kTable =
    "CREATE TABLE t (id int NOT NULL, name varchar(20) NULL, d datetime NULL, n numeric(10,2) NULL "
    "DEFAULT 7, f float NULL, memo varchar(MAX) NULL) "
    "INSERT INTO t VALUES (1, 'Asha', '2014-01-05', 1.5, 0.1, 'first') "
    "INSERT INTO t VALUES (2, NULL, NULL, NULL, NULL, NULL) "
    "INSERT INTO t VALUES (3, 'Chitra''s', '2014-02-01 13:07:09.123', -2.25, 3, '')";

int thrownNumber(const std::function<void()>& act) {
    try {
        act();
    } catch (const DbError& e) {
        return e.number;
    }
    return 0;
}

std::string ids(Recordset& rs) {
    std::string out;
    for (; !rs.IsEOF(); rs.MoveNext()) out += rs.Fields("ID").toText();
    return out;
}

class RecordsetTest : public testing::Test {
  protected:
    test::TestDatabase db{kTable};
    Recordset rs;

    void open(const std::string& sql = "SELECT * FROM t ORDER BY id",
              LockType lock = adLockOptimistic) {
        CloseRecordset(rs);
        rs.Open(sql, db.connection, adOpenKeyset, lock);
    }
};

TEST_F(RecordsetTest, WalksBothWays) {
    open();
    EXPECT_EQ(rs.RecordCount(), 3u);
    EXPECT_EQ(rs.Fields("NAME").toText(), "Asha");
    rs.MoveLast();
    EXPECT_EQ(rs.AbsolutePosition(), 3u);
    rs.MoveNext();
    EXPECT_TRUE(rs.IsEOF());
    EXPECT_EQ(thrownNumber([&] { rs.MoveNext(); }), 3021);
    EXPECT_EQ(thrownNumber([&] { rs.Fields(0).value(); }), 3021);
    rs.MoveFirst();
    rs.MovePrevious();
    EXPECT_TRUE(rs.IsBOF());
    EXPECT_FALSE(rs.IsEOF());
    rs.MoveNext();
    EXPECT_EQ(rs.Fields(0).toInt(), 1);
}

TEST_F(RecordsetTest, EmptyAndAbsentResults) {
    open("SELECT * FROM t WHERE id = 99");
    EXPECT_TRUE(rs.IsEOF() && rs.IsBOF());
    EXPECT_EQ(rs.RecordCount(), 0u);
    open("UPDATE t SET n = n");
    EXPECT_EQ(rs.State(), 0);
    EXPECT_EQ(thrownNumber([&] { open("SELECT * FROM nosuch"); }), 208);
}

TEST_F(RecordsetTest, FieldsByNameAndNumber) {
    open("SELECT id, id * 2 AS Twice, n FROM t ORDER BY id");
    EXPECT_EQ(rs.Fields("twice").toInt(), 2);
    EXPECT_EQ(rs.Fields(2).type().ddl(), "numeric(10,2)");
    EXPECT_FALSE(rs.HasField("name"));
    EXPECT_EQ(thrownNumber([&] { rs.Fields("name"); }), 3265);
    EXPECT_EQ(thrownNumber([&] { rs.Fields(3); }), 3265);
}

// Each assignment is written, is there on a second read, and the row can be written once more.
TEST_F(RecordsetTest, UpdateWritesTheAssignedFields) {
    const struct {
        int id;
        const char* field;
        Value value;
        const char* stored;
    } cases[] = {{1, "name", "it's ½", "it's ½"},
                 {1, "name", Value(), ""},
                 {1, "n", 2.345, "2.35"},
                 {1, "n", "12.5", "12.50"},
                 {1, "d", "05/Mar/2014", "2014-03-05"},
                 {1, "d", DateTime::fromCivil(2014, 4, 1), "2014-04-01"},
                 {1, "f", 0.1, "0.1"},
                 {1, "memo", std::string(9000, 'x').c_str(), nullptr},
                 {2, "id", 20, "20"},
                 {3, "n", Value(Decimal(125, 1)), "12.50"}};
    for (const auto& c : cases) {
        open("SELECT * FROM t WHERE id = " + std::to_string(c.id));
        rs.Fields(c.field) = c.value;
        rs.Update();
        const std::string read = db.value(std::string("SELECT ") + c.field +
                                          " FROM t WHERE id = " + rs.Fields("id").toText());
        if (c.stored) {
            EXPECT_EQ(read, c.stored) << c.field;
        } else {
            EXPECT_EQ(read.size(), 9000u);
        }
        rs.Fields("memo") = "again";
        EXPECT_NO_THROW(rs.Update()) << c.field;
    }
    EXPECT_EQ(db.value("SELECT COUNT(*) FROM t WHERE memo = 'again'"), "3");
}

TEST_F(RecordsetTest, UpdateOfAChangedOrLostRowIsAnError) {
    open();
    db.connection.Execute("UPDATE t SET n = 99 WHERE id = 1");
    rs.Fields("name") = "late";
    EXPECT_EQ(thrownNumber([&] { rs.Update(); }), -2147217864);
    EXPECT_EQ(db.value("SELECT name FROM t WHERE id = 1"), "Asha");
    rs.CancelUpdate();
    rs.MoveNext();
    db.connection.Execute("DELETE FROM t WHERE id = 2");
    EXPECT_EQ(thrownNumber([&] { rs.Delete(); }), -2147217864);
}

TEST_F(RecordsetTest, OneOfTwoEqualRowsIsWritten) {
    db.connection.Execute("INSERT INTO t SELECT * FROM t WHERE id = 1");
    open("SELECT * FROM t WHERE id = 1");
    rs.Fields("name") = "one";
    rs.Update();
    EXPECT_EQ(db.value("SELECT COUNT(*) FROM t WHERE name = 'one'"), "1");
    open("SELECT * FROM t WHERE name = 'Asha'");
    rs.Delete();
    EXPECT_EQ(db.value("SELECT COUNT(*) FROM t WHERE id = 1"), "1");
}

TEST_F(RecordsetTest, AddNewWritesOneRow) {
    open("SELECT * FROM t WHERE 1 = 0");
    for (int id : {11, 12}) {
        rs.AddNew();
        rs.Fields("id") = id;
        rs.Fields("name") = "new";
        rs.Update();
    }
    EXPECT_EQ(rs.RecordCount(), 2u);
    EXPECT_EQ(rs.Fields("id").toInt(), 12);
    EXPECT_EQ(db.value("SELECT COUNT(*) FROM t WHERE name = 'new' AND n = 7 AND d IS NULL"), "2");
    // A row just added can be written again although its defaults were not read.
    rs.Fields("name") = "newer";
    rs.Update();
    EXPECT_EQ(db.value("SELECT id FROM t WHERE name = 'newer'"), "12");
    rs.AddNew();
    rs.Fields("name") = "without id";
    EXPECT_EQ(thrownNumber([&] { rs.Update(); }), 515);
    rs.CancelUpdate();
    EXPECT_EQ(rs.RecordCount(), 2u);
}

TEST_F(RecordsetTest, MovingAwayWritesAndCancelDrops) {
    open();
    rs.Fields("name") = "moved";
    rs.MoveNext();
    rs.Fields("name") = "dropped";
    rs.CancelUpdate();
    rs.MoveNext();
    EXPECT_EQ(db.value("SELECT name FROM t WHERE id = 1"), "moved");
    EXPECT_EQ(db.value("SELECT COUNT(*) FROM t WHERE name = 'dropped'"), "0");
}

TEST_F(RecordsetTest, DeleteInALoop) {
    for (open(); !rs.IsEOF(); rs.MoveNext())
        if (rs.Fields("id").toInt() != 2) rs.Delete();
    EXPECT_EQ(db.value("SELECT MAX(id) + 10 * COUNT(*) FROM t"), "12");
    EXPECT_EQ(rs.RecordCount(), 1u);
}

TEST_F(RecordsetTest, OnlyTheTablesOwnColumnsAreWritten) {
    open("SELECT *, id * 2 AS twice FROM [dbo].[t] X WHERE X.id IN (SELECT id FROM t) ORDER BY id");
    rs.Fields("name") = "own";
    rs.Update();
    EXPECT_EQ(db.value("SELECT name FROM t WHERE id = 1"), "own");
    rs.Fields("twice") = 5;
    EXPECT_EQ(thrownNumber([&] { rs.Update(); }), 3251);

    const struct {
        const char* sql;
        LockType lock;
        int error;
    } cases[] = {{"SELECT * FROM t", adLockReadOnly, 3251},
                 {"SELECT A.id, A.name FROM t A, t B", adLockOptimistic, -2147467259},
                 {"SELECT A.id, A.name FROM t A INNER JOIN t B ON A.id = B.id", adLockOptimistic,
                  -2147467259},
                 {"SELECT 1 AS id, 'x' AS name", adLockOptimistic, -2147467259}};
    for (const auto& c : cases) {
        open(c.sql, c.lock);
        EXPECT_EQ(thrownNumber([&] {
                      rs.Fields(1) = "x";
                      rs.Update();
                  }),
                  c.error)
            << c.sql;
    }
}

TEST_F(RecordsetTest, FilterShowsRowsThatFit) {
    const struct {
        const char* criteria;
        const char* rows;
    } cases[] = {{"id = 1", "1"},
                 {"id <> 1", "23"},
                 {"ID >= 2 AND id<3", "2"},
                 {"id = 1 OR id = 3 AND name = 'nobody'", "1"},
                 {"(id = 1 OR id = 3) AND n < 0", "3"},
                 {"name = 'ASHA '", "1"},
                 {"name = 'Chitra''s'", "3"},
                 {"name LIKE 'a*'", "1"},
                 {"name LIKE '%RA%'", "3"},
                 {"name LIKE 'As_a'", "1"},
                 {"name = NULL", "2"},
                 {"name <> NULL", "13"},
                 {"d = #2014-01-05#", "1"},
                 {"d > '01/Feb/2014'", "3"},
                 {"n = -2.250", "3"},
                 {"[n] > 1.49 AND f < 0.2", "1"},
                 {"id = 9", ""},
                 {"", "123"}};
    open();
    for (const auto& c : cases) {
        rs.Filter(c.criteria);
        EXPECT_EQ(ids(rs), c.rows) << c.criteria;
    }
    for (const char* bad :
         {"id", "id = ", "id ~ 1", "(id = 1", "id = 1 id = 2", "name LIKE", "id > NULL"})
        EXPECT_EQ(thrownNumber([&] { rs.Filter(bad); }), 3001) << bad;
    EXPECT_EQ(thrownNumber([&] { rs.Filter("nosuch = 1"); }), 3265);
}

TEST_F(RecordsetTest, AFilteredRowIsWritten) {
    open();
    rs.Filter("id = 3");
    rs.Fields("n") = 1;
    rs.Update();
    rs.Filter("");
    EXPECT_EQ(rs.RecordCount(), 3u);
    EXPECT_EQ(db.value("SELECT n FROM t WHERE id = 3"), "1.00");
}

TEST_F(RecordsetTest, FindSearchesForward) {
    open();
    rs.Find("id > 1");
    EXPECT_EQ(rs.Fields("id").toInt(), 2);
    rs.Find("name LIKE 'c*'");
    EXPECT_EQ(rs.Fields("id").toInt(), 3);
    rs.Find("id = 1");
    EXPECT_TRUE(rs.IsEOF());
}

TEST_F(RecordsetTest, GetRowsTakesTheRest) {
    open();
    rs.MoveNext();
    const auto rows = rs.GetRows();
    ASSERT_EQ(rows.size(), 6u);
    ASSERT_EQ(rows[0].size(), 2u);
    EXPECT_EQ(rows[0][1].toInt(), 3);
    EXPECT_TRUE(rows[1][0].isNull());
    EXPECT_TRUE(rs.IsEOF());
}

TEST_F(RecordsetTest, RequeryReadsAnew) {
    open();
    db.connection.Execute("UPDATE t SET name = 'other' WHERE id = 1");
    EXPECT_EQ(rs.Fields("name").toText(), "Asha");
    rs.Requery();
    EXPECT_EQ(rs.Fields("name").toText(), "other");
}

TEST(UnconnectedRecordset, LivesInMemory) {
    Recordset rs;
    rs.Append("id", SqlType::of(SqlKind::Int));
    rs.Append("days", SqlType::numeric(10, 2));
    rs.OpenUnconnected();
    for (int id : {3, 1, 2}) {
        rs.AddNew();
        rs.Fields("id") = id;
        rs.Fields("days") = id / 3.0;
        rs.Update();
    }
    rs.Filter("days < 1");
    EXPECT_EQ(ids(rs), "12");
    rs.MoveFirst();
    EXPECT_EQ(rs.Fields("days").toText(), "0.33");
    rs.Delete();
    rs.Filter("");
    EXPECT_EQ(rs.RecordCount(), 2u);
}

}  // namespace
}  // namespace owb
