C     A legacy program that calls library names without the module or EXTERNAL: each call
C     marked "captured" below goes to the compiler's intrinsic.
      PROGRAM CAPTURED
      INTEGER STATB(13), N, IERR
      CHARACTER*64 ARG
      CHARACTER*24 WHEN
      N = IARGC()
      CALL GETARG(1, ARG)
      IERR = ACCESS('/tmp', 'r')
      IERR = STAT('/tmp', STATB)
      WHEN = CTIME(TIME())
      PRINT *, 'GETCWD(', N
      END
      SUBROUTINE WITHEXT
      EXTERNAL ACCESS
      INTEGER ACCESS, IERR
      IERR = ACCESS('/tmp', 'r')
      END
