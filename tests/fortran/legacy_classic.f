C     The classic calling style: no module, every routine declared EXTERNAL, with the
C     lengths and kinds the old programs declare.
      PROGRAM LEGACY
      INTEGER STAT, FSTAT, FGETC, FPUTC, FSEEK, FTELL, IERRNO, HOSTNM
      INTEGER SB(13), TA(9), NBAD
      CHARACTER*8 DATE
      CHARACTER*24 FDATE
      CHARACTER*30 CTIME
      CHARACTER*64 HOST, VAL
      CHARACTER*30 TEXT
      CHARACTER*1 CH
      REAL ETIME, DTIME, SECNDS, TA2(2), T
      EXTERNAL STAT, FSTAT, FGETC, FPUTC, FSEEK, FTELL, IERRNO, HOSTNM
      EXTERNAL DATE, FDATE, CTIME, GMTIME, GETENV, ETIME, DTIME, SECNDS
      NBAD = 0

      OPEN (11, FILE='legacy.bin', STATUS='REPLACE', ACCESS='STREAM')
      IF (FPUTC(11, 'x') .NE. 0) CALL BAD('FPUTC', NBAD)
      IF (FPUTC(11, 'y') .NE. 0) CALL BAD('FPUTC', NBAD)
      SB(13) = -5
      IF (FSTAT(11, SB) .NE. 0) CALL BAD('FSTAT', NBAD)
      IF (SB(8) .NE. 2 .OR. SB(13) .NE. -5) CALL BAD('FSTAT SB', NBAD)
      IF (STAT('legacy.bin', SB) .NE. 0) CALL BAD('STAT', NBAD)
      IF (FSEEK(11, 0, 0) .NE. 0) CALL BAD('FSEEK', NBAD)
      IF (FGETC(11, CH) .NE. 0 .OR. CH .NE. 'x') CALL BAD('FGETC', NBAD)
      IF (FTELL(11) .NE. 1) CALL BAD('FTELL', NBAD)
      IF (FSEEK(11, 0, 2) .NE. 0) CALL BAD('FSEEK END', NBAD)
      IF (FGETC(11, CH) .NE. -1 .OR. CH .NE. 'x') CALL BAD('EOF', NBAD)
      IF (IERRNO() .NE. 0) CALL BAD('IERRNO', NBAD)
      CLOSE (11, STATUS='DELETE')
      IF (FSTAT(11, SB) .NE. 22) CALL BAD('FSTAT CLOSED', NBAD)

C     A CHARACTER*8 DATE takes the mm/dd/yy form; CTIME keeps its newline.
      TEXT = DATE()
      IF (TEXT(3:3) .NE. '/' .OR. TEXT(6:6) .NE. '/')
     &    CALL BAD('DATE', NBAD)
      TEXT = CTIME(0)
      IF (TEXT(25:25) .NE. CHAR(10)) CALL BAD('CTIME', NBAD)
      TEXT = FDATE()
      IF (TEXT(20:20) .NE. ' ' .OR. TEXT(25:) .NE. ' ')
     &    CALL BAD('FDATE', NBAD)
      CALL GMTIME(-1, TA)
      IF (TA(6) .NE. 69 .OR. TA(8) .NE. 364 .OR. TA(3) .NE. 23)
     &    CALL BAD('GMTIME', NBAD)
      T = SECNDS(0.0)
      IF (SECNDS(T + 1.0E5) .NE. 0.0) CALL BAD('SECNDS', NBAD)
      IF (DTIME(TA2) .GT. ETIME(TA2) + 0.02) CALL BAD('DTIME', NBAD)

      CALL GETENV('PATH SUFFIX', VAL)
      IF (VAL .EQ. ' ') CALL BAD('GETENV', NBAD)
      IF (HOSTNM(HOST) .NE. 0 .OR. HOST .EQ. ' ')
     &    CALL BAD('HOSTNM', NBAD)
      IF (NBAD .NE. 0) STOP 1
      WRITE (*, '(A)') 'legacy_classic: all checks passed'
      END

      SUBROUTINE BAD(WHAT, NBAD)
      CHARACTER*(*) WHAT
      INTEGER NBAD
      WRITE (0, '(A, A)') 'failed: ', WHAT
      NBAD = NBAD + 1
      END
