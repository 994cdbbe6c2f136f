! Calls, through the module and without it, names that flang's own run-time also defines;
! the test checks that the program defines none of the library's names itself, so every
! call reaches the library.
program clash
  use tarvo
  character(len=24) :: when
  character(len=64) :: name
  if (access('.', 'r') /= 0) stop 1
  when = fdate()
  call getlog(name)
  call flush(6)
  call old_style()
end program clash

subroutine old_style()
  integer :: iargc, n
  external iargc, getarg
  character(len=64) :: word
  n = iargc()
  call getarg(0, word)
  if (n < 0 .or. word == ' ') stop 2
end subroutine old_style
