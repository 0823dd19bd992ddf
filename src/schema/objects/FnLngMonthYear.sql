-- The month whose period holds both dates; the calendar month of the first where none does.
CREATE FUNCTION [dbo].FnLngMonthYear(@FROMDATE datetime, @TODATE datetime)
RETURNS int
WITH ENCRYPTION
AS
BEGIN
    RETURN ISNULL((SELECT MAX(MONTHYEAR) FROM MAS_MONTHYEAR WHERE CALCSTARTDATE <= @FROMDATE
                   AND CALCENDDATE >= @TODATE), YEAR(@FROMDATE) * 12 + MONTH(@FROMDATE))
END
