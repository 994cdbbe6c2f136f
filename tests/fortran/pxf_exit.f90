! PXFEXIT flushes what WRITE left in a unit's buffer and ends with the status.
program pxf_exit
  use tarvo_posix, only: pxfexit
  implicit none
  open (30, file='pxf_exit.txt', status='replace')
  write (30, '(a)') 'written before exit'
  call pxfexit(6)
  stop 99
end program pxf_exit
