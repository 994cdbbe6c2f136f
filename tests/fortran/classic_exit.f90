! EXIT flushes what WRITE left in a unit's buffer and ends with the status.
program classic_exit
  use tarvo_portlib, only: exit
  implicit none
  open (30, file='classic_exit.txt', status='replace')
  write (30, '(a)') 'written before exit'
  call exit(4)
  stop 99
end program classic_exit
