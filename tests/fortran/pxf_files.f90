! Tests the library on the program's OPEN units: gfortran units only.
! Files, directories and the program's own units through the tarvo_posix module.
program pxf_files
  use tarvo_posix
  use tarvo_check
  implicit none
  integer(4) :: ierror, fd, fd31, flags, jstat = 0
  integer(8) :: size
  character(len=40) :: line
  character(len=1) :: ch

  call pxfmkdir('pxf_files.d', 0, int(o'755', 4), ierror)
  call pxfchdir('pxf_files.d   ', 0, ierror)
  call check_int('pxfchdir into the new directory', ierror, 0)

  ! A unit opened with OPEN: its descriptor, WRITE output flushed to it, characters, positions.
  open (30, file='unit.txt', access='stream', form='formatted', status='replace')
  write (30, '(a)') 'line one'
  call pxffileno(30, fd, ierror)
  call check_true('pxffileno of an OPEN unit', ierror == 0 .and. fd > 2)
  write (30, '(a)') 'two'
  call pxffflush(30, ierror)
  call pxfstructcreate('stat', jstat, ierror)
  call pxffstat(fd, jstat, ierror)
  call pxfint8get(jstat, 'st_size', size, ierror)
  call check_int8('WRITE output on the descriptor after pxffflush', size, 13_8)
  call pxffseek(30, -1, ipxfconst('SEEK_END'), ierror)
  call pxffgetc(30, ch, ierror)
  call pxffgetc(30, ch, ierror)
  call check_int('pxffgetc at the end of the file', ierror, EEND)
  call check_str('character kept at the end', ch, achar(10))
  close (30)
  call pxffileno(30, fd, ierror)
  call check_int('pxffileno of a closed unit', ierror, ipxfconst('EBADF'))

  ! A descriptor attached to a unit works with READ.
  call pxfopen('unit.txt', 0, ipxfconst('O_RDWR'), 0, fd, ierror)
  call pxffdopen(fd, 31, 'r+', ierror)
  read (31, '(a)') line
  call check_str('READ on the attached unit', line, 'line one')
  ! Like the program's own OPEN units, the unit's descriptor does not cross exec.
  call pxffileno(31, fd31, ierror)
  call pxffcntl(fd31, ipxfconst('F_GETFD'), 0, flags, ierror)
  call check_int('the attached unit closes on exec', iand(flags, 1), 1)  ! FD_CLOEXEC
  close (31)
  call pxfclose(fd, ierror)

  call pxfunlink('unit.txt', 0, ierror)
  call pxfchdir('..', 0, ierror)
  call pxfrmdir('pxf_files.d', 0, ierror)
  call check_int('pxfrmdir', ierror, 0)
  call pxfstructfree(jstat, ierror)
  call checks_done('pxf_files')
end program pxf_files
