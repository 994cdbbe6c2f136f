C     The classic style: SIGNAL called as a subroutine with its flag, the random and shift
C     routines declared EXTERNAL so that the compiler's intrinsics do not take their names.
      PROGRAM LEGACY
      USE TARVO_CHECK
      EXTERNAL SIGNAL, KILL, GETPID, HANDLR, RAND, IRAND, SRAND, LSHIFT
      INTEGER KILL, GETPID, IRAND, LSHIFT, K
      REAL RAND, X
      COMMON /HITS/ NHITS
      NHITS = 0
      CALL SIGNAL(12, HANDLR, -1)
      CALL CHECK_INT('KILL', KILL(GETPID(), 12), 0)
      CALL CHECK_INT('HANDLER RAN WITH ITS NUMBER', NHITS, 12)
      CALL SRAND(5)
      X = RAND(0)
      K = IRAND(0)
      CALL SRAND(5)
      CALL CHECK_TRUE('RAND AFTER SRAND', RAND(0) .EQ. X)
      CALL CHECK_INT('IRAND CONTINUES', IRAND(0), K)
      CALL CHECK_INT('LSHIFT', LSHIFT(1, 33), 2)
      CALL CHECKS_DONE('legacy_signal_random')
      END

      SUBROUTINE HANDLR(ISIG)
      INTEGER ISIG
      COMMON /HITS/ NHITS
      NHITS = NHITS + ISIG
      END
