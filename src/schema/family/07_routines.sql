-- Views and routines of the family that this program calls and does not install.

CREATE VIEW QRYMONTH AS
SELECT MONTHYEAR,
       SUBSTRING(DATENAME(MONTH, DATEADD(MONTH, MONTHYEAR - 22801, 0)), 1, 3) + '/' +
           CAST(YEAR(DATEADD(MONTH, MONTHYEAR - 22801, 0)) AS varchar(4)) AS MONTHNAME,
       CALCSTARTDATE, CALCENDDATE
FROM MAS_MONTHYEAR
GO

-- 1 when the employee is held against changes in the months, which are one where no second is given;
-- employee 0 asks for any employee. The hold is the employee's own mark and covers the payroll months
-- in which he is employed.
CREATE FUNCTION [dbo].udf_getEmpLock(@EMPID int, @FROMMONTH int, @TOMONTH int = NULL)
RETURNS int
AS
BEGIN
    RETURN CASE WHEN EXISTS (
        SELECT * FROM MAS_EMPLOYEE E WHERE LOCKYN = 1 AND (EMPID = @EMPID OR @EMPID = 0)
        AND (DOJ IS NULL OR ISNULL(@TOMONTH, @FROMMONTH) >=
             ISNULL((SELECT MIN(MONTHYEAR) FROM MAS_MONTHYEAR
                     WHERE CALCSTARTDATE <= E.DOJ AND CALCENDDATE >= E.DOJ),
                    YEAR(DOJ) * 12 + MONTH(DOJ)))
        AND (DOL IS NULL OR @FROMMONTH <=
             ISNULL((SELECT MAX(MONTHYEAR) FROM MAS_MONTHYEAR
                     WHERE CALCSTARTDATE <= E.DOL AND CALCENDDATE >= E.DOL),
                    YEAR(DOL) * 12 + MONTH(DOL))))
        THEN 1 ELSE 0 END
END
GO

-- Fills [TMP<host><windows user>] with the employee versions of the branches that the user at this
-- host may see; the last log-on of the host tells the user.
CREATE PROCEDURE [dbo].ClassSecurityCloud @MODE int, @MONTHYEAR int, @KIND int,
    @WINUSER nvarchar(100)
AS
BEGIN
    DECLARE @TABLE nvarchar(300), @USERID int, @SQL nvarchar(2000)
    SET @TABLE = 'TMP' + HOST_NAME() + @WINUSER
    SET @USERID = (SELECT TOP 1 OWBUSERID FROM SEC_LOGHISTORY
                   WHERE [LOGIN] <= GETDATE() AND HOSTNAME = HOST_NAME() ORDER BY [LOGIN] DESC)
    IF EXISTS (SELECT * FROM SYS.TABLES WHERE NAME = @TABLE)
    BEGIN
        SET @SQL = 'DROP TABLE [' + @TABLE + ']'
        EXEC (@SQL)
    END
    SET @SQL = 'SELECT EMPID, EMPDETID INTO [' + @TABLE + '] FROM MAS_EMPLOYEEDET'
    IF EXISTS (SELECT * FROM SEC_USERCLASS WHERE USERID = @USERID)
        SET @SQL = @SQL + ' WHERE BRANCHID IN (SELECT BRANCHID FROM SEC_USERCLASS WHERE USERID = '
            + CAST(@USERID AS varchar(10)) + ')'
    EXEC (@SQL)
END
GO

CREATE PROCEDURE [dbo].ClassSecurity @MODE int, @MONTHYEAR int, @KIND int
AS
BEGIN
    EXEC [dbo].ClassSecurityCloud @MODE, @MONTHYEAR, @KIND, ''
END
GO

CREATE PROCEDURE [dbo].UpdateAuditTrail @USERNAME nvarchar(60), @MODULEID int, @EMPID bigint,
    @ACTION nvarchar(200), @DETAIL nvarchar(MAX), @EXTRA nvarchar(MAX), @WINUSER nvarchar(100)
AS
BEGIN
    INSERT INTO SEC_AUDITTRAIL (USERNAME, MODULEID, EMPID, ACTION, DETAIL, EXTRA, WINUSER,
        HOSTNAME, UDATE)
    VALUES (@USERNAME, @MODULEID, @EMPID, @ACTION, @DETAIL, @EXTRA, @WINUSER, HOST_NAME(),
        GETDATE())
END
