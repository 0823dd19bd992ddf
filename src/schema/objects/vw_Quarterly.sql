-- One row for each quarter, January to March and so on, that MAS_MONTHYEAR touches.
-- MONTHYEAR is the period's first month (22801 is Jan/1900).
CREATE VIEW [dbo].[<prefix>_vw_Quarterly] AS
SELECT DISTINCT P.MONTHYEAR, [dbo].FnStrMonthName(P.MONTHYEAR) AS [MONTHNAME],
    DATEADD(MONTH, P.MONTHYEAR - 22801, 0) AS [STARTDATE],
    DATEADD(MONTH, P.MONTHYEAR - 22801 + 3, 0) - 1 AS [ENDDATE]
FROM (SELECT MONTHYEAR - (MONTHYEAR - 1) % 3 AS MONTHYEAR FROM MAS_MONTHYEAR) P
