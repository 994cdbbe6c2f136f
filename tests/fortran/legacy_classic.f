C     Tests the library on the program's OPEN units: gfortran units only.
C     The classic calling style: no interface module, every routine declared EXTERNAL, with
C     the lengths and kinds the old programs declare.
      PROGRAM LEGACY
      USE TARVO_CHECK
      INTEGER FSTAT, FGETC, FPUTC, FSEEK, IERRNO, SB(13), TA(9)
      CHARACTER*8 DATE
      CHARACTER*30 CTIME, TEXT
      CHARACTER*64 VAL
      CHARACTER*1 CH
      REAL SECNDS
      EXTERNAL FSTAT, FGETC, FPUTC, FSEEK, IERRNO, DATE, CTIME
      EXTERNAL GMTIME, GETENV, SECNDS

      OPEN (11, FILE='legacy.bin', STATUS='REPLACE', ACCESS='STREAM')
      CALL CHECK_INT('FPUTC', FPUTC(11, 'x'), 0)
      SB(13) = -5
      CALL CHECK_INT('FSTAT', FSTAT(11, SB), 0)
      CALL CHECK_INT('FSTAT SIZE AND ELEMENT 13', SB(8) + SB(13), -4)
      CALL CHECK_INT('FSEEK', FSEEK(11, 0, 0), 0)
      CALL CHECK_INT('FGETC', FGETC(11, CH), 0)
      CALL CHECK_INT('FGETC AT END', FGETC(11, CH), -1)
      CALL CHECK_INT('END OF FILE RECORDS NOTHING', IERRNO(), 0)
      CLOSE (11, STATUS='DELETE')

C     A CHARACTER*8 DATE takes the mm/dd/yy form; CTIME keeps its newline.
      TEXT = DATE()
      CALL CHECK_STR('DATE', TEXT(3:3) // TEXT(6:6) // TEXT(9:), '//')
      TEXT = CTIME(0)
      CALL CHECK_STR('CTIME NEWLINE', TEXT(25:), CHAR(10))
      CALL GMTIME(-1, TA)
      CALL CHECK_INT('GMTIME YEAR AND DAY', TA(6) * 1000 + TA(8), 69364)
      CALL CHECK_TRUE('SECNDS', SECNDS(SECNDS(0.0) + 1.0E5) .EQ. 0)
      CALL GETENV('PATH SUFFIX', VAL)
      CALL CHECK_TRUE('GETENV', VAL .NE. ' ')
      CALL CHECKS_DONE('legacy_classic')
      END
