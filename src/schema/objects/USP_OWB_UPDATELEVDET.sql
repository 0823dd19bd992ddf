-- Writes one day of a register: its status text and its number, and marks the row and the month.
CREATE PROCEDURE [dbo].USP_OWB_UPDATELEVDET @EMPID bigint, @MONTHYEAR bigint, @ATTHEADID int,
    @LEVSTATUS nvarchar(50), @COLNO nvarchar(10), @CURDATE datetime, @OTVALUE numeric(18,2)
WITH ENCRYPTION
AS
BEGIN
    DECLARE @ATTTRANNO bigint, @SQL nvarchar(500), @KEY nvarchar(60)
    EXEC [dbo].USP_OWB_FNINTATTTRANNO @EMPID, @MONTHYEAR, @CURDATE, @ATTTRANNO OUTPUT
    IF @ATTTRANNO > 0
    BEGIN
        SET @KEY = ' WHERE ATTTRANNO = ' + CAST(@ATTTRANNO AS nvarchar(20))
        SET @SQL = 'UPDATE ATT_DAYTODAY SET DAY' + RTRIM(@COLNO) + ' = N''' +
            REPLACE(@LEVSTATUS, '''', '''''') + ''', EDITMODEYN = 1' + @KEY
        EXEC (@SQL)
        SET @SQL = 'UPDATE ATT_OVERTIME SET OTDAY' + RTRIM(@COLNO) + ' = ' +
            CAST(@OTVALUE AS nvarchar(20)) + @KEY
        EXEC (@SQL)
        UPDATE LEV_MONTHDET SET EDITMODEYN = 1 WHERE EMPID = @EMPID AND MONTHYEAR = @MONTHYEAR
            AND EMPDETID = (SELECT EMPDETID FROM ATT_DAYTODAY WHERE ATTTRANNO = @ATTTRANNO)
    END
END
