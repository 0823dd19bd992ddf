-- "Jan/2014" of a month key; '' of 0, NULL where the year is not positive.
CREATE FUNCTION [dbo].FnStrMonthName(@MonthYear numeric(17,0))
RETURNS varchar(20)
WITH ENCRYPTION
AS
BEGIN
    DECLARE @Month int, @Year int, @MonthName varchar(20)
    IF @MonthYear = 0
        SET @MonthName = ''
    ELSE
    BEGIN
        SET @Month = @MonthYear % 12
        SET @Year = FLOOR(@MonthYear / 12)
        IF @Month = 0
        BEGIN
            SET @Month = 12
            SET @Year = @Year - 1
        END
        IF @Year > 0
            SET @MonthName = SUBSTRING(DATENAME(MM, DATEADD(MONTH, @Month, 0) - 1), 1, 3) + '/' +
                CAST(@Year AS VARCHAR(10))
    END
    RETURN @MonthName
END
