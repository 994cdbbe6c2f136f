! Aborting through the run-time prints the message and ends the program by SIGABRT.
program end_abort
  use runtime_shim
  implicit none
  call abort_program('abort: from the test' // c_null_char)
  stop 99
end program end_abort
