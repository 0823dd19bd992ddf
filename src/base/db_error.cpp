#include "base/db_error.h"

#include <algorithm>
#include <array>

namespace owb {

namespace {

struct ErrorText {
    int number;
    int severity;
    const char* text;
};

// Sorted by number.
constexpr std::array kErrors = {
    ErrorText{-3, 16, "%"},  // the client's own, told in full by the argument
    ErrorText{-2, 11, "Timeout expired. The statement was cancelled after % seconds."},
    ErrorText{-1, 11, "Operation cancelled by user."},
    ErrorText{102, 15, "Incorrect syntax near '%'."},
    ErrorText{103, 15, "The identifier that starts with '%' is too long. Maximum length is 128."},
    ErrorText{105, 15, "Unclosed quotation mark after the character string '%'."},
    ErrorText{104, 15,
              "ORDER BY items must appear in the select list if the statement contains a UNION, "
              "INTERSECT or EXCEPT operator."},
    ErrorText{
        107, 15,
        "The column prefix '%' does not match with a table name or alias name used in the query."},
    ErrorText{108, 15,
              "The ORDER BY position number % is out of range of the number of items in the select "
              "list."},
    ErrorText{109, 15,
              "There are more columns in the INSERT statement than values specified in the VALUES "
              "clause. The number of values in the VALUES clause must match the number of columns "
              "specified in the INSERT statement."},
    ErrorText{110, 15,
              "There are fewer columns in the INSERT statement than values specified in the VALUES "
              "clause. The number of values in the VALUES clause must match the number of columns "
              "specified in the INSERT statement."},
    ErrorText{111, 15, "'%' must be the first statement in a query batch."},
    ErrorText{113, 15, "Missing end comment mark '*/'."},
    ErrorText{116, 16,
              "Only one expression can be specified in the select list when the subquery is not "
              "introduced with EXISTS."},
    ErrorText{120, 15,
              "The select list for the INSERT statement contains fewer items than the insert list. "
              "The number of SELECT values must match the number of INSERT columns."},
    ErrorText{121, 15,
              "The select list for the INSERT statement contains more items than the insert list. "
              "The number of SELECT values must match the number of INSERT columns."},
    ErrorText{130, 15,
              "Cannot perform an aggregate function on an expression containing an aggregate or a "
              "subquery."},
    ErrorText{134, 15,
              "The variable name '%' has already been declared. Variable names must be unique "
              "within a query batch or stored procedure."},
    ErrorText{137, 15, "Must declare the scalar variable \"%\"."},
    ErrorText{141, 15,
              "A SELECT statement that assigns a value to a variable must not be combined with "
              "data-retrieval operations."},
    ErrorText{144, 15,
              "Cannot use an aggregate or a subquery in an expression used for the group by list "
              "of a GROUP BY clause."},
    ErrorText{145, 15,
              "ORDER BY items must appear in the select list if SELECT DISTINCT is specified."},
    ErrorText{
        147, 15,
        "An aggregate may not appear in the WHERE clause unless it is in a subquery contained in a "
        "HAVING clause or a select list, and the column being aggregated is an outer reference."},
    ErrorText{156, 15, "Incorrect syntax near the keyword '%'."},
    ErrorText{174, 15, "The % function requires % argument(s)."},
    ErrorText{178, 15, "A RETURN statement with a return value cannot be used in this context."},
    ErrorText{189, 15, "The % function requires % to % arguments."},
    ErrorText{195, 15, "'%' is not a recognized built-in function name."},
    ErrorText{201, 16, "Procedure or function '%' expects parameter '%', which was not supplied."},
    ErrorText{205, 16,
              "All queries combined using a UNION, INTERSECT or EXCEPT operator must have an equal "
              "number of expressions in their target lists."},
    ErrorText{206, 16, "Operand type clash: % is incompatible with %"},
    ErrorText{207, 16, "Invalid column name '%'."},
    ErrorText{208, 16, "Invalid object name '%'."},
    ErrorText{209, 16, "Ambiguous column name '%'."},
    ErrorText{213, 16, "Column name or number of supplied values does not match table definition."},
    ErrorText{
        217, 16,
        "Maximum stored procedure, function, trigger, or view nesting level exceeded (limit 32)."},
    ErrorText{220, 16, "Arithmetic overflow error for data type %, value = %."},
    ErrorText{232, 16, "Arithmetic overflow error for type %, value = %."},
    ErrorText{235, 16,
              "Cannot convert a char value to money. The char value has incorrect syntax."},
    ErrorText{241, 16, "Conversion failed when converting date and/or time from character string."},
    ErrorText{
        242, 16,
        "The conversion of a % data type to a % data type resulted in an out-of-range value."},
    ErrorText{
        244, 16,
        "The conversion of the % value '%' overflowed an % column. Use a larger integer column."},
    ErrorText{245, 16, "Conversion failed when converting the % value '%' to data type %."},
    ErrorText{248, 16, "The conversion of the % value '%' overflowed an int column."},
    ErrorText{256, 16,
              "The data type % is invalid for the % function. Allowed types are: char/varchar, "
              "nchar/nvarchar, and binary/varbinary."},
    ErrorText{257, 16,
              "Implicit conversion from data type % to % is not allowed. Use the CONVERT function "
              "to run this query."},
    ErrorText{266, 16,
              "Transaction count after EXECUTE indicates a mismatching number of BEGIN and COMMIT "
              "statements. Previous count = %, current count = %."},
    ErrorText{306, 16,
              "The text, ntext, and image data types cannot be compared or sorted, except when "
              "using IS NULL or LIKE operator."},
    ErrorText{402, 16, "The data types % and % are incompatible in the % operator."},
    ErrorText{443, 16, "Invalid use of a side-effecting operator '%' within a function."},
    ErrorText{455, 16, "The last statement included within a function must be a return statement."},
    ErrorText{512, 16,
              "Subquery returned more than 1 value. This is not permitted when the subquery "
              "follows =, !=, <, <= , >, >= or when the subquery is used as an expression."},
    ErrorText{515, 16,
              "Cannot insert the value NULL into column '%', table '%'; column does not allow "
              "nulls. % fails."},
    ErrorText{517, 16, "Adding a value to a '%' column caused an overflow."},
    ErrorText{529, 16, "Explicit conversion from data type % to % is not allowed."},
    ErrorText{530, 16,
              "The statement terminated. The maximum recursion % has been exhausted before "
              "statement completion."},
    ErrorText{537, 16, "Invalid length parameter passed to the LEFT or SUBSTRING function."},
    ErrorText{544, 16,
              "Cannot insert explicit value for identity column in table '%' when IDENTITY_INSERT "
              "is set to OFF."},
    ErrorText{547, 16,
              "The % statement conflicted with the % constraint \"%\". The conflict occurred in "
              "database \"%\", table \"%\"."},
    ErrorText{1013, 16,
              "The objects \"%\" and \"%\" in the FROM clause have the same exposed names. Use "
              "correlation names to distinguish them."},
    ErrorText{1038, 15, "An object or column name is missing or empty."},
    ErrorText{1222, 16, "Lock request time out period exceeded."},
    ErrorText{1505, 16,
              "The CREATE UNIQUE INDEX statement terminated because a duplicate key was found for "
              "the object name '%' and the index name '%'."},
    ErrorText{
        1701, 16,
        "Creating or altering table '%' failed because the row size exceeds the allowed maximum."},
    ErrorText{1750, 16, "Could not create constraint or index. See previous errors."},
    ErrorText{1767, 16, "Foreign key '%' references invalid table '%'."},
    ErrorText{1779, 16, "Table '%' already has a primary key defined on it."},
    ErrorText{1781, 16, "Column already has a DEFAULT bound to it."},
    ErrorText{1911, 16, "Column name '%' does not exist in the target table or view."},
    ErrorText{1913, 16,
              "The operation failed because an index or statistics with name '%' already exists on "
              "table '%'."},
    ErrorText{2601, 14, "Cannot insert duplicate key row in object '%' with unique index '%'.%"},
    ErrorText{2627, 14,
              "Violation of % constraint '%'. Cannot insert duplicate key in object '%'.%"},
    ErrorText{
        2628, 16,
        "String or binary data would be truncated in table '%', column '%'. Truncated value: '%'."},
    ErrorText{2705, 16,
              "Column names in each table must be unique. Column name '%' in table '%' is "
              "specified more than once."},
    ErrorText{2714, 16, "There is already an object named '%' in the database."},
    ErrorText{2715, 16, "Column, parameter, or variable #%: Cannot find data type %."},
    ErrorText{2717, 15, "The size (%) given to the parameter '%' exceeds the maximum allowed (%)."},
    ErrorText{2750, 16,
              "Column or parameter #%: Specified column precision % is greater than the maximum "
              "precision of 38."},
    ErrorText{2812, 16, "Could not find stored procedure '%'."},
    ErrorText{3701, 11,
              "Cannot drop the % '%', because it does not exist or you do not have permission."},
    ErrorText{3705, 16, "Cannot use DROP % with '%' because '%' is a %. Use DROP %."},
    ErrorText{3723, 16,
              "An explicit DROP INDEX is not allowed on index '%'. It is being used for % "
              "constraint enforcement."},
    ErrorText{3728, 16, "'%' is not a constraint."},
    ErrorText{3902, 16, "The COMMIT TRANSACTION request has no corresponding BEGIN TRANSACTION."},
    ErrorText{3903, 16, "The ROLLBACK TRANSACTION request has no corresponding BEGIN TRANSACTION."},
    ErrorText{3906, 16, "Failed to update database \"%\" because the database is read-only."},
    ErrorText{4060, 11, "Cannot open database \"%\" requested by the login. The login failed."},
    ErrorText{4104, 16, "The multi-part identifier \"%\" could not be bound."},
    ErrorText{4121, 16,
              "Cannot find either column \"%\" or the user-defined function or aggregate \"%\", or "
              "the name is ambiguous."},
    ErrorText{4405, 16,
              "View or function '%' is not updatable because the modification affects multiple "
              "base tables."},
    ErrorText{4406, 16,
              "Update or insert of view or function '%' failed because it contains a derived or "
              "constant field."},
    ErrorText{4502, 16,
              "View or function '%' has more column names specified than columns defined."},
    ErrorText{4511, 16,
              "Create View or Function failed because no column name was specified for column %."},
    ErrorText{4506, 16,
              "Column names in each view or function must be unique. Column name '%' in view or "
              "function '%' is specified more than once."},
    ErrorText{
        4701, 16,
        "Cannot find the object \"%\" because it does not exist or you do not have permissions."},
    ErrorText{
        4902, 16,
        "Cannot find the object \"%\" because it does not exist or you do not have permissions."},
    ErrorText{4901, 16,
              "ALTER TABLE only allows columns to be added that can contain nulls, or have a "
              "DEFAULT definition specified, or the column being added is an identity or timestamp "
              "column, or alternatively if none of the previous conditions are satisfied the table "
              "must be empty to allow addition of this column. Column '%' cannot be added to "
              "non-empty table '%' because it does not satisfy these conditions."},
    ErrorText{4922, 16,
              "ALTER TABLE ALTER COLUMN % failed because one or more objects access this column."},
    ErrorText{4924, 16, "ALTER TABLE % failed because column '%' does not exist in table '%'."},
    ErrorText{5074, 16, "The object '%' is dependent on column '%'."},
    ErrorText{8102, 16, "Cannot update identity column '%'."},
    ErrorText{8111, 16, "Cannot define PRIMARY KEY constraint on nullable column in table '%'."},
    ErrorText{8114, 16, "Error converting data type % to %."},
    ErrorText{8115, 16, "Arithmetic overflow error converting % to data type %."},
    ErrorText{8116, 16, "Argument data type % is invalid for argument % of % function."},
    ErrorText{8117, 16, "Operand data type % is invalid for % operator."},
    ErrorText{8120, 16,
              "Column '%' is invalid in the select list because it is not contained in either an "
              "aggregate function or the GROUP BY clause."},
    ErrorText{8121, 16,
              "Column '%' is invalid in the HAVING clause because it is not contained in either an "
              "aggregate function or the GROUP BY clause."},
    ErrorText{8127, 16,
              "Column \"%\" is invalid in the ORDER BY clause because it is not contained in "
              "either an aggregate function or the GROUP BY clause."},
    ErrorText{8134, 16, "Divide by zero error encountered."},
    ErrorText{8144, 16, "Procedure or function % has too many arguments specified."},
    ErrorText{8145, 16, "% is not a parameter for procedure %."},
    ErrorText{8146, 16, "Procedure % has no parameters and arguments were supplied."},
    ErrorText{8152, 16, "String or binary data would be truncated."},
    ErrorText{8155, 16, "No column name was specified for column % of '%'."},
    ErrorText{8156, 16, "The column '%' was specified multiple times for '%'."},
    ErrorText{8158, 16, "'%' has more columns than were specified in the column list."},
    ErrorText{8159, 16, "'%' has fewer columns than were specified in the column list."},
    ErrorText{8162, 16,
              "The formal parameter \"%\" was not declared as an OUTPUT parameter, but the actual "
              "parameter passed in requested output."},
    ErrorText{8178, 16,
              "The parameterized query '%' expects the parameter '%', which was not supplied."},
    ErrorText{8179, 16, "Could not find prepared statement with handle %."},
    ErrorText{
        8623, 16,
        "The query processor ran out of internal resources and could not produce a query plan."},
    ErrorText{9002, 17, "The database file could not grow: the disk is full."},
    ErrorText{15281, 16, "% is not supported by the embedded database."},
};

}  // namespace

DbError makeDbError(int number, std::initializer_list<std::string_view> args, int line) {
    const auto found = std::find_if(kErrors.begin(), kErrors.end(),
                                    [&](const ErrorText& e) { return e.number == number; });
    const ErrorText entry = found != kErrors.end() ? *found : kErrors[0];
    std::string text;
    auto arg = args.begin();
    for (const char* c = entry.text; *c; ++c) {
        if (*c == '%') {
            if (arg != args.end()) text += *arg++;
        } else {
            text += *c;
        }
    }
    return DbError(number, entry.severity, 1, line, text);
}

}  // namespace owb
