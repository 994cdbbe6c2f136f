C     A program that cannot add a USE line: INCLUDE 'tarvo.fi' declares the library's
C     routines EXTERNAL with their result types, so no intrinsic captures them.
      PROGRAM LEGACY_INCLUDE
      INCLUDE 'tarvo.fi'
      INTEGER STATB(13), NFAIL
      CHARACTER*24 WHEN
      NFAIL = 0
      IF (ACCESS('.', 'r') .NE. 0) NFAIL = NFAIL + 1
      IF (STAT('.', STATB) .NE. 0) NFAIL = NFAIL + 1
      IF (IAND(STATB(3), 16384) .EQ. 0) NFAIL = NFAIL + 1
      WHEN = CTIME(0)
      IF (WHEN(21:22) .NE. '19') NFAIL = NFAIL + 1
      IF (TIME() .LT. 1700000000) NFAIL = NFAIL + 1
      IF (CHDIR('no/such/dir') .NE. 2) NFAIL = NFAIL + 1
      IF (IERRNO() .NE. 2) NFAIL = NFAIL + 1
      IF (NFAIL .NE. 0) THEN
        PRINT *, 'legacy_include:', NFAIL, ' check(s) failed'
        STOP 1
      END IF
      PRINT *, 'legacy_include: all checks passed'
      END
