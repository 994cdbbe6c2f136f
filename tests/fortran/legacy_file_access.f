C     The classic calling style: no module, routines declared EXTERNAL.
      PROGRAM LEGACY
      INTEGER ACCESS, CHDIR, CHMOD, GETCWD, IERRNO, LNBLNK
      INTEGER RENAME, UNLINK
      LOGICAL ISATTY
      CHARACTER*32 TTYNAM
      EXTERNAL ACCESS, CHDIR, CHMOD, GETCWD, IERRNO, LNBLNK
      EXTERNAL RENAME, UNLINK, ISATTY, TTYNAM
      CHARACTER*512 DIR
      CHARACTER*32 NAME
      INTEGER NBAD
      NBAD = 0

      OPEN (11, FILE='legacy.tmp', STATUS='REPLACE')
      WRITE (11, '(A)') 'DATA'
      IF (ACCESS('legacy.tmp', 'rw') .NE. 0) CALL BAD('ACCESS', NBAD)
      IF (ACCESS('legacy.nope', 'r') .NE. 22) CALL BAD('ACCESS2', NBAD)
      IF (IERRNO() .NE. 22) CALL BAD('IERRNO', NBAD)
      IF (CHMOD('legacy.tmp', 'go-rwx') .NE. 0) CALL BAD('CHMOD', NBAD)
      IF (ISATTY(11)) CALL BAD('ISATTY', NBAD)
      NAME = TTYNAM(11)
      IF (NAME .NE. ' ') CALL BAD('TTYNAM', NBAD)
      CLOSE (11)
      IF (RENAME('legacy.tmp', 'legacy.new') .NE. 0)
     &    CALL BAD('RENAME', NBAD)
      IF (UNLINK('legacy.new') .NE. 0) CALL BAD('UNLINK', NBAD)
      IF (UNLINK('legacy.new') .NE. 2) CALL BAD('UNLINK2', NBAD)
      IF (GETCWD(DIR) .NE. 0) CALL BAD('GETCWD', NBAD)
      IF (CHDIR(DIR(1:LNBLNK(DIR))) .NE. 0) CALL BAD('CHDIR', NBAD)
      IF (CHDIR('/no/such/dir') .NE. 2) CALL BAD('CHDIR2', NBAD)
      IF (NBAD .NE. 0) STOP 1
      WRITE (*, '(A)') 'legacy_file_access: all checks passed'
      END

      SUBROUTINE BAD(WHAT, NBAD)
      CHARACTER*(*) WHAT
      INTEGER NBAD
      WRITE (0, '(A, A)') 'failed: ', WHAT
      NBAD = NBAD + 1
      END
