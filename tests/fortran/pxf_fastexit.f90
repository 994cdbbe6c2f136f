! PXFFASTEXIT ends the process at once: what WRITE left in a unit's buffer is lost.
program pxf_fastexit
  use tarvo_posix, only: pxffastexit
  implicit none
  open (30, file='pxf_fastexit.txt', status='replace')
  write (30, '(a)') 'never reaches the file'
  call pxffastexit(7)
  stop 99
end program pxf_fastexit
