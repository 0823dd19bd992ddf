-- Rounds days by RNDTYPE: 1 lower and 2 higher half day, 3 lower and 4 higher full day, 5 nearest
-- half day, 6 nearest full day. Types 1 to 4 move one way on the number line, whatever the sign.
-- The quarter-day types 7 to 9 have no rule and leave the value.
CREATE FUNCTION [dbo].FnDblRndOff(@VALUE numeric(17,2), @RNDTYPE tinyint)
RETURNS numeric(17,2)
WITH ENCRYPTION
AS
BEGIN
    DECLARE @RESULT numeric(17,2)
    IF @RNDTYPE = 1
    BEGIN
        IF @VALUE >= 0 SET @RESULT = [dbo].FnDblLowerHalfDay(@VALUE)
        ELSE SET @RESULT = (-1) * [dbo].FnDblHigherHalfDay(ABS(@VALUE))
    END
    ELSE IF @RNDTYPE = 2
    BEGIN
        IF @VALUE >= 0 SET @RESULT = [dbo].FnDblHigherHalfDay(@VALUE)
        ELSE SET @RESULT = (-1) * [dbo].FnDblLowerHalfDay(ABS(@VALUE))
    END
    ELSE IF @RNDTYPE = 3 SET @RESULT = FLOOR(@VALUE)
    ELSE IF @RNDTYPE = 4 SET @RESULT = CEILING(@VALUE)
    ELSE IF @RNDTYPE = 5
    BEGIN
        IF @VALUE >= 0 SET @RESULT = [dbo].FnDblNearestHalfDay(@VALUE)
        ELSE SET @RESULT = (-1) * [dbo].FnDblNearestHalfDay(ABS(@VALUE))
    END
    ELSE IF @RNDTYPE = 6 SET @RESULT = ROUND(@VALUE, 0)
    ELSE SET @RESULT = @VALUE
    RETURN @RESULT
END
