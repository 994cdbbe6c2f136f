! Ending the program through the run-time flushes what WRITE left in a unit's buffer.
program end_exit
  use runtime_shim
  implicit none
  open (30, file='end_exit.txt', status='replace')
  write (30, '(a)') 'written before exit'
  call exit_program(3)
  stop 99
end program end_exit
