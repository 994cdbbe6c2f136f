C     The QQ sorting, signal and time routines the classic way: EXTERNAL declarations,
C     dollar-sign constants and an INTEGER(2) result of RUNQQ.
      PROGRAM LEGQQS
      USE, INTRINSIC :: ISO_C_BINDING, ONLY: C_INTPTR_T
      USE TARVO_CHECK
      INTEGER SRT$INTEGER4, SIG$INT
      PARAMETER (SRT$INTEGER4 = 327680, SIG$INT = 2)
      INTEGER(2) RUNQQ
      INTEGER RAISEQQ, SIGNALQQ, LEGHND
      EXTERNAL SORTQQ, RUNQQ, RAISEQQ, SIGNALQQ, LEGHND
      EXTERNAL PACKTIMEQQ, UNPACKTIMEQQ
      INTEGER(C_INTPTR_T) N, ADR
      INTEGER IA(5), T, CALLS
      INTEGER(2) Y, MO, D, H, MI, S
      COMMON /LEGCNT/ CALLS
      DATA IA /4, -1, 3, 0, 2/
      CALLS = 0

      N = 5
      ADR = LOC(IA)
      CALL SORTQQ(ADR, N, SRT$INTEGER4)
      CALL CHECK_INT('SORTQQ', IA(1) * 10 + IA(5), -6)
      CALL CHECK_INT('RUNQQ INTEGER(2)', INT(RUNQQ('/bin/false', ' ')),
     &               -1)
      CALL CHECK_INT('SIGNALQQ', SIGNALQQ(SIG$INT, LEGHND), 0)
      CALL CHECK_INT('RAISEQQ', RAISEQQ(SIG$INT), 0)
      CALL CHECK_INT('handler calls', CALLS, 1)
      Y = 2000
      MO = 6
      D = 15
      H = 12
      MI = 0
      S = 0
      CALL PACKTIMEQQ(T, Y, MO, D, H, MI, S)
      Y = 0
      CALL UNPACKTIMEQQ(T, Y, MO, D, H, MI, S)
      CALL CHECK_INT('UNPACKTIMEQQ', INT(Y) * 100 + INT(MO), 200006)
      CALL CHECKS_DONE('legacy_qq_system')
      END

C     Receives the QQ number by value.
      INTEGER FUNCTION LEGHND(SIGNUM)
      INTEGER, VALUE :: SIGNUM
      INTEGER CALLS
      COMMON /LEGCNT/ CALLS
      IF (SIGNUM .EQ. 2) CALLS = CALLS + 1
      LEGHND = 0
      END
