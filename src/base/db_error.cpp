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
    ErrorText{104, 15,
              "ORDER BY items must appear in the select list if the statement contains a UNION, "
              "INTERSECT or EXCEPT operator."},
    ErrorText{105, 15, "Unclosed quotation mark after the character string '%'."},
    ErrorText{106, 15, "Too many table names in the query. The maximum allowable is %."},
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
    ErrorText{119, 15,
              "Must pass parameter number % and subsequent parameters as '@name = value'. After "
              "the form '@name = value' has been used, all subsequent parameters must be passed in "
              "the form '@name = value'."},
    ErrorText{120, 15,
              "The select list for the INSERT statement contains fewer items than the insert list. "
              "The number of SELECT values must match the number of INSERT columns."},
    ErrorText{121, 15,
              "The select list for the INSERT statement contains more items than the insert list. "
              "The number of SELECT values must match the number of INSERT columns."},
    ErrorText{127, 15, "A TOP N or FETCH rowcount value may not be negative."},
    ErrorText{130, 15,
              "Cannot perform an aggregate function on an expression containing an aggregate or a "
              "subquery."},
    ErrorText{132, 15,
              "The label '%' has already been declared. Label names must be unique within a query "
              "batch or stored procedure."},
    ErrorText{133, 15,
              "A GOTO statement references the label '%' but the label has not been declared."},
    ErrorText{134, 15,
              "The variable name '%' has already been declared. Variable names must be unique "
              "within a query batch or stored procedure."},
    ErrorText{135, 15, "Cannot use a BREAK statement outside the scope of a WHILE statement."},
    ErrorText{136, 15, "Cannot use a CONTINUE statement outside the scope of a WHILE statement."},
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
    ErrorText{148, 15, "Incorrect time syntax in time string '%' used with WAITFOR."},
    ErrorText{154, 15, "% is not allowed in %."},
    ErrorText{156, 15, "Incorrect syntax near the keyword '%'."},
    ErrorText{157, 15, "An aggregate may not appear in the set list of an UPDATE statement."},
    ErrorText{164, 15,
              "Each GROUP BY expression must contain at least one column that is not an outer "
              "reference."},
    ErrorText{166, 15,
              "'%' does not allow specifying the database name as a prefix to the object name."},
    ErrorText{169, 15,
              "A column has been specified more than once in the order by list. Columns in the "
              "order by list must be unique."},
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
    ErrorText{234, 16, "There is insufficient result space to convert a money value to %."},
    ErrorText{235, 16,
              "Cannot convert a char value to money. The char value has incorrect syntax."},
    ErrorText{240, 16,
              "Types don't match between the anchor and the recursive part in column \"%\" of "
              "recursive query \"%\"."},
    ErrorText{241, 16, "Conversion failed when converting date and/or time from character string."},
    ErrorText{
        242, 16,
        "The conversion of a % data type to a % data type resulted in an out-of-range value."},
    ErrorText{
        244, 16,
        "The conversion of the % value '%' overflowed an % column. Use a larger integer column."},
    ErrorText{245, 16, "Conversion failed when converting the % value '%' to data type %."},
    ErrorText{248, 16, "The conversion of the % value '%' overflowed an int column."},
    ErrorText{
        252, 16,
        "Recursive common table expression '%' does not contain a top-level UNION ALL operator."},
    ErrorText{256, 16,
              "The data type % is invalid for the % function. Allowed types are: char/varchar, "
              "nchar/nvarchar, and binary/varbinary."},
    ErrorText{257, 16,
              "Implicit conversion from data type % to % is not allowed. Use the CONVERT function "
              "to run this query."},
    ErrorText{266, 16,
              "Transaction count after EXECUTE indicates a mismatching number of BEGIN and COMMIT "
              "statements. Previous count = %, current count = %."},
    ErrorText{271, 16,
              "The column \"%\" cannot be modified because it is either a computed column or is "
              "the result of a UNION operator."},
    ErrorText{281, 16,
              "% is not a valid style number when converting from % to a character string."},
    ErrorText{289, 16,
              "Cannot construct data type %, some of the arguments have values which are not "
              "valid."},
    ErrorText{306, 16,
              "The text, ntext, and image data types cannot be compared or sorted, except when "
              "using IS NULL or LIKE operator."},
    ErrorText{319, 15,
              "Incorrect syntax near the keyword 'with'. If this statement is a common table "
              "expression, an xmlnamespaces clause or a change tracking context clause, the "
              "previous statement must be terminated with a semicolon."},
    ErrorText{334, 16,
              "The target table '%' of the DML statement cannot have any enabled triggers if the "
              "statement contains an OUTPUT clause without INTO clause."},
    ErrorText{336, 15,
              "Incorrect syntax near '%'. If this is intended to be a common table expression, you "
              "need to explicitly terminate the previous statement with a semi-colon."},
    ErrorText{339, 16, "DEFAULT or NULL are not allowed as explicit identity values."},
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
    ErrorText{535, 16,
              "The datediff function resulted in an overflow. The number of dateparts separating "
              "two date/time instances is too large. Try to use datediff with a less precise "
              "datepart."},
    ErrorText{537, 16, "Invalid length parameter passed to the LEFT or SUBSTRING function."},
    ErrorText{544, 16,
              "Cannot insert explicit value for identity column in table '%' when IDENTITY_INSERT "
              "is set to OFF."},
    ErrorText{545, 16,
              "Explicit value must be specified for identity column in table '%' either when "
              "IDENTITY_INSERT is set to ON or when a replication user is inserting into a NOT FOR "
              "REPLICATION identity column."},
    ErrorText{547, 16,
              "The % statement conflicted with the % constraint \"%\". The conflict occurred in "
              "database \"%\", table \"%\"%."},
    ErrorText{550, 16,
              "The attempted insert or update failed because the target view either specifies WITH "
              "CHECK OPTION or spans a view that specifies WITH CHECK OPTION and one or more rows "
              "resulting from the operation did not qualify under the CHECK OPTION constraint."},
    ErrorText{628, 16, "Cannot issue SAVE TRANSACTION when there is no active transaction."},
    ErrorText{701, 17,
              "There is insufficient system memory in resource pool '%' to run this query."},
    ErrorText{1007, 15,
              "The number '%' is out of the range for numeric representation (maximum precision "
              "38)."},
    ErrorText{1013, 16,
              "The objects \"%\" and \"%\" in the FROM clause have the same exposed names. Use "
              "correlation names to distinguish them."},
    ErrorText{1023, 15, "Invalid parameter % specified for %."},
    ErrorText{1031, 15, "Percent values must be between 0 and 100."},
    ErrorText{
        1033, 15,
        "The ORDER BY clause is invalid in views, inline functions, derived tables, subqueries, "
        "and common table expressions, unless TOP, OFFSET or FOR XML is also specified."},
    ErrorText{1038, 15, "An object or column name is missing or empty."},
    ErrorText{1046, 15,
              "Subqueries are not allowed in this context. Only scalar expressions are allowed."},
    ErrorText{1060, 15,
              "The number of rows provided for a TOP or FETCH clauses row count parameter must be "
              "an integer."},
    ErrorText{1088, 16,
              "Cannot find the object \"%\" because it does not exist or you do not have "
              "permissions."},
    ErrorText{1105, 17,
              "Could not allocate space for a new page in database '%' because the 'PRIMARY' "
              "filegroup is full. Create disk space by deleting unneeded files."},
    ErrorText{1202, 16, "The database-principal '%' does not exist or user is not a member."},
    ErrorText{1222, 16, "Lock request time out period exceeded."},
    ErrorText{
        1223, 16,
        "Cannot release the application lock (Database Principal: '%', Resource: '%') because "
        "it is not currently held."},
    ErrorText{1224, 16, "An invalid application lock resource was passed to %."},
    ErrorText{1225, 16, "An invalid application lock mode was passed to %."},
    ErrorText{1226, 16, "An invalid application lock owner was passed to %."},
    ErrorText{1227, 16, "An invalid application lock time-out was passed to %."},
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
    ErrorText{2702, 16, "Database '%' does not exist."},
    ErrorText{2705, 16,
              "Column names in each table must be unique. Column name '%' in table '%' is "
              "specified more than once."},
    ErrorText{2714, 16, "There is already an object named '%' in the database."},
    ErrorText{2715, 16, "Column, parameter, or variable #%: Cannot find data type %."},
    ErrorText{2717, 15, "The size (%) given to the parameter '%' exceeds the maximum allowed (%)."},
    ErrorText{2750, 16,
              "Column or parameter #%: Specified column precision % is greater than the maximum "
              "precision of 38."},
    ErrorText{2754, 16,
              "Error severity levels greater than 18 can only be specified by members of the "
              "sysadmin role, using the WITH LOG option."},
    ErrorText{2760, 16,
              "The specified schema name \"%\" either does not exist or you do not have permission "
              "to use it."},
    ErrorText{2787, 16, "Invalid format specification: '%'."},
    ErrorText{2812, 16, "Could not find stored procedure '%'."},
    ErrorText{3609, 16, "The transaction ended in the trigger. The batch has been aborted."},
    ErrorText{3701, 11,
              "Cannot drop the % '%', because it does not exist or you do not have permission."},
    ErrorText{3705, 16, "Cannot use DROP % with '%' because '%' is a %. Use DROP %."},
    ErrorText{3723, 16,
              "An explicit DROP INDEX is not allowed on index '%'. It is being used for % "
              "constraint enforcement."},
    ErrorText{3726, 16,
              "Could not drop object '%' because it is referenced by a FOREIGN KEY constraint."},
    ErrorText{3727, 16, "Could not drop constraint. See previous errors."},
    ErrorText{3728, 16, "'%' is not a constraint."},
    ErrorText{3902, 16, "The COMMIT TRANSACTION request has no corresponding BEGIN TRANSACTION."},
    ErrorText{3903, 16, "The ROLLBACK TRANSACTION request has no corresponding BEGIN TRANSACTION."},
    ErrorText{3906, 16, "Failed to update database \"%\" because the database is read-only."},
    ErrorText{3918, 16,
              "The statement or function must be executed in the context of a user transaction."},
    ErrorText{3930, 16,
              "The current transaction cannot be committed and cannot support operations that "
              "write to the log file. Roll back the transaction."},
    ErrorText{3998, 16,
              "Uncommittable transaction is detected at the end of the batch. The transaction is "
              "rolled back."},
    ErrorText{4060, 11, "Cannot open database \"%\" requested by the login. The login failed."},
    ErrorText{4104, 16, "The multi-part identifier \"%\" could not be bound."},
    ErrorText{4108, 15, "Windowed functions can only appear in the SELECT or ORDER BY clauses."},
    ErrorText{4109, 15,
              "Windowed functions cannot be used in the context of another windowed function or "
              "aggregate."},
    ErrorText{4112, 15, "The function '%' must have an OVER clause with ORDER BY."},
    ErrorText{4121, 16,
              "Cannot find either column \"%\" or the user-defined function or aggregate \"%\", or "
              "the name is ambiguous."},
    ErrorText{4127, 16,
              "At least one of the arguments to COALESCE must be an expression that is not the "
              "NULL constant."},
    ErrorText{4151, 16,
              "The type of the first argument to NULLIF cannot be the NULL constant because the "
              "type of the first argument has to be known."},
    ErrorText{4405, 16,
              "View or function '%' is not updatable because the modification affects multiple "
              "base tables."},
    ErrorText{4406, 16,
              "Update or insert of view or function '%' failed because it contains a derived or "
              "constant field."},
    ErrorText{4502, 16,
              "View or function '%' has more column names specified than columns defined."},
    ErrorText{4506, 16,
              "Column names in each view or function must be unique. Column name '%' in view or "
              "function '%' is specified more than once."},
    ErrorText{4511, 16,
              "Create View or Function failed because no column name was specified for column %."},
    ErrorText{
        4701, 16,
        "Cannot find the object \"%\" because it does not exist or you do not have permissions."},
    ErrorText{
        4712, 16,
        "Cannot truncate table '%' because it is being referenced by a FOREIGN KEY constraint."},
    ErrorText{4901, 16,
              "ALTER TABLE only allows columns to be added that can contain nulls, or have a "
              "DEFAULT definition specified, or the column being added is an identity or timestamp "
              "column, or alternatively if none of the previous conditions are satisfied the table "
              "must be empty to allow addition of this column. Column '%' cannot be added to "
              "non-empty table '%' because it does not satisfy these conditions."},
    ErrorText{
        4902, 16,
        "Cannot find the object \"%\" because it does not exist or you do not have permissions."},
    ErrorText{4922, 16, "ALTER TABLE % % failed because one or more objects access this column."},
    ErrorText{4924, 16, "ALTER TABLE % failed because column '%' does not exist in table '%'."},
    ErrorText{5074, 16, "The object '%' is dependent on column '%'."},
    ErrorText{5308, 16,
              "Windowed functions, aggregates and NEXT VALUE FOR functions do not support integer "
              "indices as ORDER BY clause expressions."},
    ErrorText{5309, 16,
              "Windowed functions, aggregates and NEXT VALUE FOR functions do not support "
              "constants as ORDER BY clause expressions."},
    ErrorText{6401, 16, "Cannot roll back %. No transaction or savepoint of that name was found."},
    ErrorText{7202, 11,
              "Could not find server '%' in sys.servers. Verify that the correct server name was "
              "specified. If necessary, execute the stored procedure sp_addlinkedserver to add the "
              "server to sys.servers."},
    ErrorText{8101, 16,
              "An explicit value for the identity column in table '%' can only be specified when a "
              "column list is used and IDENTITY_INSERT is ON."},
    ErrorText{8102, 16, "Cannot update identity column '%'."},
    ErrorText{8106, 16,
              "Table '%' does not have the identity property. Cannot perform SET operation."},
    ErrorText{
        8107, 16,
        "IDENTITY_INSERT is already ON for table '%'. Cannot perform SET operation for table '%'."},
    ErrorText{8110, 16, "Cannot add multiple PRIMARY KEY constraints to table '%'."},
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
    ErrorText{8133, 16,
              "At least one of the result expressions in a CASE specification must be an "
              "expression other than the NULL constant."},
    ErrorText{8134, 16, "Divide by zero error encountered."},
    ErrorText{8144, 16, "Procedure or function % has too many arguments specified."},
    ErrorText{8145, 16, "% is not a parameter for procedure %."},
    ErrorText{8146, 16, "Procedure % has no parameters and arguments were supplied."},
    ErrorText{8152, 16, "String or binary data would be truncated."},
    ErrorText{8154, 15, "The table '%' is ambiguous."},
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
        8622, 16,
        "Query processor could not produce a query plan because of the hints defined in this "
        "query. Resubmit the query without specifying any hints and without using SET FORCEPLAN."},
    ErrorText{
        8623, 16,
        "The query processor ran out of internal resources and could not produce a query plan."},
    ErrorText{8630, 16,
              "Internal Query Processor Error: The query processor encountered an unexpected error "
              "during execution (%)."},
    ErrorText{9810, 16, "The datepart % is not supported by date function % for data type %."},
    ErrorText{9828, 16,
              "The second and third arguments of the TRANSLATE built-in function must contain an "
              "equal number of characters."},
    ErrorText{9829, 16,
              "STRING_AGG aggregation result exceeded the limit of 8000 bytes. Use LOB types to "
              "avoid result truncation."},
    ErrorText{10705, 15, "Subqueries are not allowed in the OUTPUT clause."},
    ErrorText{10709, 16,
              "The number of columns for each row in a table value constructor must be the same."},
    ErrorText{10734, 15,
              "Variable assignment is not allowed in a statement containing a top level UNION, "
              "INTERSECT or EXCEPT operator."},
    ErrorText{10742, 15, "The offset specified in a OFFSET clause may not be negative."},
    ErrorText{10744, 15,
              "The number of rows provided for a FETCH clause must be greater then zero."},
    ErrorText{10753, 15, "The function '%' must have an OVER clause."},
    ErrorText{10759, 15, "Use of DISTINCT is not allowed with the OVER clause."},
    ErrorText{15225, 11,
              "No item by the name of '%' could be found in the current database '%', given that "
              "@itemtype was input as '%'."},
    ErrorText{15233, 16, "Property cannot be added. Property '%' already exists for '%'."},
    ErrorText{15281, 16, "% is not supported by the embedded database."},
    ErrorText{15335, 11,
              "Error: The new name '%' is already in use as a % name and would cause a duplicate "
              "that is not permitted."},
    ErrorText{16905, 16, "The cursor is already open."},
    ErrorText{16911, 16, "%: The fetch type % cannot be used with forward only cursors."},
    ErrorText{16915, 16, "A cursor with the name '%' already exists."},
    ErrorText{16916, 16, "A cursor with the name '%' does not exist."},
    ErrorText{16917, 16, "Cursor is not open."},
    ErrorText{16924, 16,
              "Cursorfetch: The number of variables declared in the INTO list must match that of "
              "selected columns."},
    ErrorText{16950, 16, "The variable '%' does not currently have a cursor allocated to it."},
    ErrorText{35100, 16,
              "Error number % in the THROW statement is outside the valid range. Specify an error "
              "number in the valid range of 50000 to 2147483647."},
};

// Errors whose state is another than 1.
constexpr std::pair<int, int> kStates[] = {
    {137, 2},  {195, 10}, {201, 4},  {206, 2},  {220, 2},   {242, 3},  {257, 3},
    {266, 2},  {515, 2},  {529, 2},  {535, 0},  {536, 2},   {537, 2},  {547, 0},
    {1750, 0}, {1779, 0}, {2714, 6}, {7202, 2}, {2812, 62}, {3701, 5}, {3727, 0},
    {4922, 9}, {8110, 0}, {8114, 5}, {8115, 2}, {8144, 2}};

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
    int state = 1;
    for (const auto& [other, its] : kStates)
        if (other == number) state = its;
    return DbError(number, entry.severity, state, line, text);
}

DbError followedBy(DbError first, DbError last) {
    if (first.line == 0) first.line = last.line;
    last.before = std::make_shared<const DbError>(std::move(first));
    return last;
}

}  // namespace owb
