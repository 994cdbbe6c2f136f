C     The handler takes its number by value through an implicit interface, which flang
C     refuses: gfortran only.
C     The classic way: EXTERNAL declarations, a dollar-sign constant, an
C     INTEGER(2) result of RUNQQ and a handler taking its number by value.
      PROGRAM LEGQQS
      USE, INTRINSIC :: ISO_C_BINDING, ONLY: C_INTPTR_T
      USE TARVO_CHECK
      INTEGER SRT$INTEGER4
      PARAMETER (SRT$INTEGER4 = 327680)
      INTEGER(2) RUNQQ
      INTEGER RAISEQQ, SIGNALQQ, LEGHND, CALLS
      EXTERNAL SORTQQ, RUNQQ, RAISEQQ, SIGNALQQ, LEGHND
      INTEGER(C_INTPTR_T) N
      INTEGER IA(5)
      COMMON /LEGCNT/ CALLS
      DATA IA /4, -1, 3, 0, 2/, CALLS /0/
      N = 5
      CALL SORTQQ(LOC(IA), N, SRT$INTEGER4)
      CALL CHECK_INT('SORTQQ', IA(1) * 10 + IA(5), -6)
      CALL CHECK_INT('RUNQQ', INT(RUNQQ('/bin/false', ' ')), -1)
      CALL CHECK_INT('SIGNALQQ', SIGNALQQ(2, LEGHND), 0)
      CALL CHECK_INT('RAISEQQ', RAISEQQ(2), 0)
      CALL CHECK_INT('handler', CALLS, 2)
      CALL CHECKS_DONE('legacy_qq_system')
      END

      INTEGER FUNCTION LEGHND(SIGNUM)
      INTEGER, VALUE :: SIGNUM
      INTEGER CALLS
      COMMON /LEGCNT/ CALLS
      CALLS = CALLS + SIGNUM
      LEGHND = 0
      END
