-- The rows that a new database is delivered with, and no more.

INSERT INTO ATT_DEFINITION (LEVID, LEVNAME, LEVSHORT, LEAVEYN, AFFECTSALARYYN, ALLOTMENTYN) VALUES
    (1, 'Loss of Pay', 'LOP', 1, 1, 0),
    (2, 'Compensatory Off', 'CO', 1, 0, 1),
    (3, 'Compensatory Work', 'CW', 1, 0, 1),
    (4, 'Reserved', 'RES', 0, 0, 0)

INSERT INTO MAS_ATTHEAD (ATTHEADID, ATTHEADNAME, ATTMENUNAME, ATTNTIGHTYN, ATTNTYPE, ATTNDTODYN,
    ATTNHOURLYYN, ATTNALLOTTYPE, OT1YN, OT2YN, OTHOURLYYN, NODFORCALC, MORETHANNODYN, INACTIVEYN,
    MINNOATT, MAXNOATT, MINHALFDAY, MAXHALFDAY, CUTOFFHALFDAY, MINFULLDAY, MAXFULLDAY,
    CUTOFFFULLDAY, ATTUPPERLIMIT, OTHOURMIN, NOATTOTYN, HALFDAYOTYN, FULLDAYOTYN, HALFDAYDEDYN,
    FULLDAYDEDYN, NOATTSALAFFYN, HALFATTSALAFFYN, FULLATTSALAFFYN)
VALUES (1, 'General', 'General', 1, 2, 1, 0, 2, 0, 0, 0, 2, 0, 0, 0, 1.99, 2, 5.99, 4, 6, 10, 8, 10,
    120, 0, 0, 0, 0, 0, 0, 0, 0)

INSERT INTO ATT_OPTSETTINGS (ATTHEADID, EXCESSLEVYN, LOADDEFYN, DEFVAL, SPLOTYN, WHOT2YN, GHOT2YN,
    FULLDAYOT2, PRIORITYYN, HOLPRIORITY, ROTWHYN, AUTOALLOTYN, LEVPRIORITYYN, AFFECTSALYN,
    INDLEVSETYN, INDWHYN, COCWYN, COMMONYN, EDITEDYN)
VALUES (0, 0, 0, 2, 0, 0, 0, 0, 0, 0, 0, 1, 0, 0, 0, 0, 0, 0, 0),
    (1, 0, 0, 2, 0, 0, 0, 0, 0, 0, 0, 1, 0, 0, 0, 0, 0, 0, 0)

INSERT INTO SEC_USERLIST (USERID, USERNAME, GROUPID, READONLYYN, MULTILOGIN)
VALUES (1, 'ADMIN', 1, 0, 0)

INSERT INTO MAS_COMPANY (CMPNAME, ADDRESS, MONTHID, MONTHNAME, YEARID, YEARTYPE, PFYN, ESIYN, PTYN,
    TDSYN, ONETIMESPL)
VALUES ('New Company', '', 4, 'April', 0, 2, 1, 1, 1, 1, 0)

INSERT INTO MAS_OPTSET (EMPIDCAP, REFNOCAP, SALSTRUCTCAP, DERIVABLETOTCAP, STARTMONTHYEAR,
    ENDMONTHYEAR, DEFMONTHYEAR, DEFSTRUCTID, DEFREPORTTYPE, ROUNDTYPE, LEVMINDAYS)
VALUES ('Emp ID', 'Ref. No.', 'Sal Structure', 'Derivable Total', 0, 22800, 0, 1, 1, 1, 0)

INSERT INTO MAS_OPTSETFEATURE (LVSTARTMNYEAR, ESIONMNYR, AUTOPFTYPE, ATTNCALCTYPE, RETIREAGEON,
    AUDITTRAILYN, CALCINMIDYN, ADVLEAVEYN, AUTOLEAVEYN, ROTATEWEEKHOLYN, LOCKMONTHYN, EMPLOCKYN)
VALUES (0, 0, 1, 0, 58, 0, 0, 1, 1, 1, 1, 1)

-- Captions of optional components (5), weekdays (16), captions of the classifications (26).
INSERT INTO MAS_PULLDOWNVALUES (REFID, PDID, PDLISTNAME, PDLISTDESC) VALUES
    (5, 1, 'Periodic Incentive', 'Periodic Incentive'),
    (5, 2, 'Advance', 'Advance'),
    (5, 3, 'Loan', 'Loan'),
    (5, 4, 'Insurance', 'Insurance'),
    (5, 5, 'SSS', 'SSS'),
    (5, 6, 'Group Insurance', 'Group Insurance'),
    (16, 1, 'Sunday', 'Sunday'),
    (16, 2, 'Monday', 'Monday'),
    (16, 3, 'Tuesday', 'Tuesday'),
    (16, 4, 'Wednesday', 'Wednesday'),
    (16, 5, 'Thursday', 'Thursday'),
    (16, 6, 'Friday', 'Friday'),
    (16, 7, 'Saturday', 'Saturday'),
    (26, 1, 'Designation', 'Designation'),
    (26, 2, 'Occupation', 'Occupation'),
    (26, 3, 'Department', 'Department'),
    (26, 4, 'Division', 'Division'),
    (26, 5, 'Grade', 'Grade'),
    (26, 6, 'Branch', 'Branch'),
    (26, 7, 'Attendance', 'Attendance')
