! RAISEQQ(SIG_ABORT) ends the program by the abort signal.
program qq_abort
  use tarvo_qq, only: raiseqq, SIG_ABORT
  implicit none
  integer(4) :: status
  status = raiseqq(SIG_ABORT)
  stop 99
end program qq_abort
