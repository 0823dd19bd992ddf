-- One row for each half year, April to September and October to March, that MAS_MONTHYEAR touches.
-- MONTHYEAR is the period's first month (22801 is Jan/1900).
CREATE VIEW [dbo].[<prefix>_vw_FinHalfYear] AS
SELECT DISTINCT P.MONTHYEAR, [dbo].FnStrMonthName(P.MONTHYEAR) AS [MONTHNAME],
    DATEADD(MONTH, P.MONTHYEAR - 22801, 0) AS [STARTDATE],
    DATEADD(MONTH, P.MONTHYEAR - 22801 + 6, 0) - 1 AS [ENDDATE]
FROM (SELECT MONTHYEAR - (MONTHYEAR + 2) % 6 AS MONTHYEAR FROM MAS_MONTHYEAR) P
