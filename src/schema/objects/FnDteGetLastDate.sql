-- Last day of a salary month: CALCENDDATE where months start in mid-month, otherwise the last
-- calendar day. NULL of a key before dates begin.
CREATE FUNCTION [dbo].FnDteGetLastDate(@MonthYear int)
RETURNS datetime
WITH ENCRYPTION
AS
BEGIN
    RETURN CASE WHEN EXISTS (SELECT * FROM MAS_OPTSETFEATURE WHERE CALCINMIDYN = 1)
        THEN (SELECT CALCENDDATE FROM MAS_MONTHYEAR WHERE MONTHYEAR = @MonthYear)
        WHEN @MonthYear > 21036 THEN DATEADD(MONTH, @MonthYear - 22800, 0) - 1 END
END
