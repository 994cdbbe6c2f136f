! ABORT prints "abort: " and the message, then ends the program by SIGABRT.
program classic_abort
  use tarvo_portlib, only: abort
  implicit none
  call abort('stopping here')
  stop 99
end program classic_abort
