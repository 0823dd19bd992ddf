-- To the nearest half day, quarters going up. For values of 0 and above.
CREATE FUNCTION [dbo].FnDblNearestHalfDay(@VALUE numeric(17,2))
RETURNS numeric(17,2)
WITH ENCRYPTION
AS
BEGIN
    DECLARE @RESULT numeric(17,2), @TEXT varchar(20), @POINTS int, @FULLVALUE varchar(20)
    SET @TEXT = CAST(@VALUE AS varchar(20))
    SET @POINTS = RIGHT(@TEXT, 2)
    SET @FULLVALUE = LEFT(@TEXT, LEN(@TEXT) - 3)
    IF @POINTS < 25 SET @RESULT = @FULLVALUE + '.00'
    ELSE IF @POINTS < 75 SET @RESULT = @FULLVALUE + '.50'
    ELSE SET @RESULT = CAST(CAST(@FULLVALUE AS bigint) + 1 AS varchar(20)) + '.00'
    RETURN @RESULT
END
