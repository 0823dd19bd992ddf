#include "tsql/unsupported.h"

namespace owb::tsql {

namespace {

constexpr Unsupported kFeatures[] = {
    {"MERGE", "MERGE t USING t AS s ON t.a = s.a WHEN MATCHED THEN DELETE;"},
    {"PIVOT and UNPIVOT", "SELECT * FROM t PIVOT (MAX(s) FOR a IN ([1], [2])) p"},
    {"GROUPING SETS, CUBE and ROLLUP", "SELECT a FROM t GROUP BY GROUPING SETS ((a), ())"},
    {"TABLESAMPLE", "SELECT a FROM t TABLESAMPLE (10 PERCENT)"},
    {"FOR XML and FOR JSON", "SELECT a FROM t FOR XML AUTO"},
    {"GOTO into a block", "GOTO inside IF 1 = 1 BEGIN inside: SELECT 1 END"},
    {"WHERE CURRENT OF", "DELETE FROM t WHERE CURRENT OF c"},
    {"writing under SET ROWCOUNT", "SET ROWCOUNT 1 DELETE FROM t"},
    {"SET DATEFIRST", "SET DATEFIRST 1"},
    {"SET DATEFORMAT other than mdy, SET LANGUAGE other than us_english", "SET LANGUAGE British"},
    {"OUTPUT of a column of another table",
     "UPDATE t SET a = 1 OUTPUT u.a FROM t INNER JOIN t u ON u.a = t.a"},
    {"table functions of several statements whose arguments are columns, outside APPLY",
     "SELECT a FROM t WHERE a IN (SELECT b FROM dbo.tf(t.a))"},
    {"writing through a view WITH CHECK OPTION", "INSERT INTO guarded VALUES (1)"},
    {"PARSE, and FORMAT for a culture other than en-US", "SELECT PARSE('1' AS int)"},
    {"PERCENTILE_CONT and PERCENTILE_DISC",
     "SELECT PERCENTILE_CONT(0.5) WITHIN GROUP (ORDER BY a) OVER () FROM t"},
    {"MIN and MAX with OVER on a numeric beyond 18 digits",
     "SELECT MAX(CAST(a AS numeric(30,2))) OVER () FROM t"},
    {"collations that tell letters' case apart", "SELECT s COLLATE Latin1_General_CS_AS FROM t"},
    {"the types datetimeoffset, uniqueidentifier, xml, sql_variant and binary",
     "DECLARE @x uniqueidentifier"},
    {"foreign keys", "CREATE TABLE u (a int REFERENCES t(a))"},
    {"computed columns", "CREATE TABLE u (a int, b AS a + 1)"},
    {"sequences, synonyms and user-defined types", "CREATE SEQUENCE q START WITH 1"},
    {"INSTEAD OF triggers", "CREATE TRIGGER y ON t INSTEAD OF DELETE AS SELECT 1"},
    {"GRANT, DENY, REVOKE and logins", "GRANT SELECT ON t TO public"},
    {"USE, BACKUP and other statements on servers and databases",
     "BACKUP DATABASE x TO DISK = 'y'"},
    {"system procedures other than sp_executesql, sp_getapplock, sp_releaseapplock, sp_help, "
     "sp_helptext and sp_helptrigger",
     "EXEC sp_rename 't', 'u'"},
    {"the lock mode IntentExclusive", "EXEC sp_getapplock 'x', 'IntentExclusive', 'Session'"},
};

}  // namespace

std::span<const Unsupported> unsupportedFeatures() {
    return kFeatures;
}

}  // namespace owb::tsql
