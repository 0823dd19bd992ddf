-- First day of a salary month: CALCSTARTDATE where months start in mid-month, otherwise the 1st
-- (key 22801 is Jan/1900). NULL of a key before dates begin (21037 is Jan/1753), 0 among them.
CREATE FUNCTION [dbo].FnDteGetFirstDate(@MonthYear int)
RETURNS datetime
WITH ENCRYPTION
AS
BEGIN
    RETURN CASE WHEN EXISTS (SELECT * FROM MAS_OPTSETFEATURE WHERE CALCINMIDYN = 1)
        THEN (SELECT CALCSTARTDATE FROM MAS_MONTHYEAR WHERE MONTHYEAR = @MonthYear)
        WHEN @MonthYear > 21036 THEN DATEADD(MONTH, @MonthYear - 22801, 0) END
END
