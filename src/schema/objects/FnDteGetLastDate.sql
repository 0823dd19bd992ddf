-- Last day of a salary month: CALCENDDATE where months start in mid-month, otherwise the last
-- calendar day.
CREATE FUNCTION [dbo].FnDteGetLastDate(@MonthYear int)
RETURNS datetime
WITH ENCRYPTION
AS
BEGIN
    RETURN CASE WHEN EXISTS (SELECT * FROM MAS_OPTSETFEATURE WHERE CALCINMIDYN = 1)
        THEN (SELECT CALCENDDATE FROM MAS_MONTHYEAR WHERE MONTHYEAR = @MonthYear)
        ELSE DATEADD(MONTH, @MonthYear - 22800, 0) - 1 END
END
