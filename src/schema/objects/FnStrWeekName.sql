-- Name of a weekday, 1 Sunday to 7 Saturday.
CREATE FUNCTION [dbo].FnStrWeekName(@WeekID int)
RETURNS varchar(20)
WITH ENCRYPTION
AS
BEGIN
    RETURN CASE @WeekID WHEN 1 THEN 'Sunday' WHEN 2 THEN 'Monday' WHEN 3 THEN 'Tuesday'
        WHEN 4 THEN 'Wednesday' WHEN 5 THEN 'Thursday' WHEN 6 THEN 'Friday' WHEN 7 THEN 'Saturday'
        ELSE 'Not a valid week' END
END
