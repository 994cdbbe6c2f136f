C     The classic calling style: IEEE_HANDLER and IEEE_FLAGS declared EXTERNAL. An overflow
C     trapped for the "common" exceptions calls the handler with 132, then the program ends
C     with status 9.
      PROGRAM LEGACY_IEEE
      USE TARVO_CHECK
      INTEGER IEEE_FLAGS, IR
      INTEGER IEEE_HANDLER
      CHARACTER*18 OUT
      REAL*8 BIG
      VOLATILE BIG
      EXTERNAL IEEE_FLAGS, IEEE_HANDLER, ONFPE
      IR = IEEE_FLAGS('SET', 'DIRECTION', 'TOZERO', OUT)
      CALL CHECK_INT('IEEE_FLAGS SET', IR, 0)
      IR = IEEE_FLAGS('GET', 'DIRECTION', ' ', OUT)
      CALL CHECK_INT('IEEE_FLAGS GET', IR, 3)
      CALL CHECK_STR('IEEE_FLAGS OUT', OUT, 'tozero')
      IR = IEEE_FLAGS('GET', 'ROUNDING', ' ', OUT)
      CALL CHECK_INT('IEEE_FLAGS UNKNOWN MODE', IR, 1)
      CALL CHECK_STR('IEEE_FLAGS UNKNOWN', OUT, 'mode not available')
      IF (IEEE_HANDLER('SET', 'COMMON', ONFPE) .NE. 0) STOP 2
      BIG = HUGE(BIG)
      BIG = BIG * 4
      STOP 3
      END

      SUBROUTINE ONFPE(SIG, CODE)
      INTEGER SIG, CODE
      WRITE (0, '(A,I0,A,I0)') 'handler ', SIG, ' code ', CODE
C     The program ends inside the trap without flushing: the handler does it.
      FLUSH (0)
      END
