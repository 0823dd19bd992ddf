-- What a day shows: the leave of each half, or the default; "(1/2)" before each of two halves that
-- differ, and before a half that stands alone.
CREATE FUNCTION [dbo].FnStrLeaveStatus(@EMPLOYEEID int, @DATE datetime, @DEFSTATUS varchar(30))
RETURNS varchar(30)
WITH ENCRYPTION
AS
BEGIN
    DECLARE @EMPDETID int, @strLTFH varchar(30), @strLTSH varchar(30), @RESULT varchar(30)
    SET @EMPDETID = [dbo].FnIntMaxEmpDetID(@EMPLOYEEID, @DATE, @DATE)
    SET @strLTFH = ISNULL((SELECT TOP 1 AD.LEVSHORT FROM LEV_DETAILS LD, ATT_DEFINITION AD
        WHERE AD.LEVID = LD.LEVID AND LD.EMPID = @EMPLOYEEID AND LD.EMPDETID = @EMPDETID
        AND LD.LEAVEDATE = @DATE AND LD.FIRSTHALFYN = 1 ORDER BY LD.LEVID), @DEFSTATUS)
    SET @strLTSH = ISNULL((SELECT TOP 1 AD.LEVSHORT FROM LEV_DETAILS LD, ATT_DEFINITION AD
        WHERE AD.LEVID = LD.LEVID AND LD.EMPID = @EMPLOYEEID AND LD.EMPDETID = @EMPDETID
        AND LD.LEAVEDATE = @DATE AND LD.SECONDHALFYN = 1 ORDER BY LD.LEVID), @DEFSTATUS)
    IF @strLTFH <> '' AND @strLTSH <> ''
    BEGIN
        IF @strLTFH = @strLTSH SET @RESULT = @strLTFH
        ELSE SET @RESULT = '(1/2)' + @strLTFH + '+' + '(1/2)' + @strLTSH
    END
    ELSE IF @strLTFH <> '' SET @RESULT = '(1/2)' + @strLTFH
    ELSE IF @strLTSH <> '' SET @RESULT = '(1/2)' + @strLTSH
    ELSE SET @RESULT = ''
    RETURN @RESULT
END
