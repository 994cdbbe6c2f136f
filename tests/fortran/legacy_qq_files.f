C     The QQ file routines the classic way: EXTERNAL declarations.
      PROGRAM LEGQQ
      USE, INTRINSIC :: ISO_C_BINDING, ONLY: C_INTPTR_T
      INTEGER FULLPATHQQ, SPLITPATHQQ, DELFILESQQ, GETFILEINFOQQ
      LOGICAL MAKEDIRQQ, DELDIRQQ
      EXTERNAL FULLPATHQQ, SPLITPATHQQ, DELFILESQQ, GETFILEINFOQQ
      EXTERNAL MAKEDIRQQ, DELDIRQQ
      TYPE FINFO
        SEQUENCE
        INTEGER CREATE, WRITE, ACCESS, LENGTH, PERMIT
        CHARACTER*255 NAME
      END TYPE
      TYPE (FINFO) INFO
      INTEGER (KIND=C_INTPTR_T) HANDLE
      CHARACTER*256 FULL, DIR
      CHARACTER*32 NAME, EXT
      CHARACTER*2 DRIVE
      INTEGER N, NBAD, NDIRS
      NBAD = 0

      IF (.NOT. MAKEDIRQQ('legqq.tmp')) CALL BAD('MAKEDIRQQ', NBAD)
      OPEN (11, FILE='legqq.tmp/one.f', STATUS='REPLACE')
      CLOSE (11)
      IF (.NOT. MAKEDIRQQ('legqq.tmp/sub.f')) CALL BAD('MKDIR2', NBAD)
      NDIRS = 0
      HANDLE = -1
   10 N = GETFILEINFOQQ('legqq.tmp/*.f', INFO, HANDLE)
      IF (HANDLE .GE. 0) THEN
        IF (INFO%PERMIT .EQ. 16) NDIRS = NDIRS + 1
        GOTO 10
      END IF
      IF (HANDLE .NE. -2 .OR. NDIRS .NE. 1) CALL BAD('GETINFO', NBAD)
      N = FULLPATHQQ('legqq.tmp/./one.f', FULL)
      IF (FULL(N-15:N) .NE. '/legqq.tmp/one.f') CALL BAD('FULL', NBAD)
      N = SPLITPATHQQ(FULL(1:N), DRIVE, DIR, NAME, EXT)
      IF (DIR(N-9:N) .NE. 'legqq.tmp/') CALL BAD('SPLITPATHQQ', NBAD)
      IF (NAME .NE. 'one' .OR. EXT .NE. '.f' .OR. DRIVE .NE. ' ')
     &    CALL BAD('SPLITPATHQQ2', NBAD)
      IF (DELFILESQQ('legqq.tmp/*') .NE. 1) CALL BAD('DELFILESQQ', NBAD)
      IF (.NOT. DELDIRQQ('legqq.tmp/sub.f')) CALL BAD('DELDIRQQ', NBAD)
      IF (.NOT. DELDIRQQ('legqq.tmp')) CALL BAD('DELDIRQQ2', NBAD)
      IF (NBAD .NE. 0) STOP 1
      WRITE (*, '(A)') 'legacy_qq_files: all checks passed'
      END

      SUBROUTINE BAD(WHAT, NBAD)
      CHARACTER*(*) WHAT
      INTEGER NBAD
      WRITE (0, '(A, A)') 'failed: ', WHAT
      NBAD = NBAD + 1
      END
