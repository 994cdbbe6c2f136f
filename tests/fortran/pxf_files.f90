! Files, directories and the program's own units through the tarvo_posix module.
program pxf_files
  use tarvo_posix
  use tarvo_check
  implicit none
  integer(4) :: ierror, fd, jstat, jdirent, idirid, ilen, n, entries, mode, fd2
  integer(8) :: size
  character(len=256) :: name
  character(len=40) :: line
  character(len=1) :: ch

  call pxfmkdir('pxf_files.d', 0, int(o'755', 4), ierror)
  call pxfchdir('pxf_files.d   ', 0, ierror)
  call check_int('pxfchdir into the new directory', ierror, 0)
  call pxfgetcwd(name, ilen, ierror)
  call check_str('pxfgetcwd', name(ilen - 11:ilen), '/pxf_files.d')

  ! A file written through a descriptor, then its status by name.
  call pxfopen('one.txt', 0, ipxfconst('O_CREAT') + ipxfconst('O_WRONLY'), int(o'644', 4), fd, ierror)
  call check_int('pxfopen with O_CREAT', ierror, 0)
  line = 'hello'
  call pxfwrite(fd, line, 5, n, ierror)
  call check_int('pxfwrite count', n, 5)
  call pxfclose(fd, ierror)
  jstat = 0
  call pxfstructcreate('stat', jstat, ierror)
  call pxfstat('one.txt', 0, jstat, ierror)
  call pxfint8get(jstat, 'st_size', size, ierror)
  call check_int8('st_size', size, 5_8)
  call pxfintget(jstat, 'st_mode', mode, ierror)
  call check_true('pxfisreg', pxfisreg(mode))
  call check_false('pxfisdir', pxfisdir(mode))
  call pxfopen('missing', 0, ipxfconst('O_RDONLY'), 0, fd, ierror)
  call check_int('pxfopen of a missing file', ierror, ipxfconst('ENOENT'))
  call check_int('descriptor of a failed open', fd, -1)

  ! A unit opened with OPEN: its descriptor, flushed output, characters and positions.
  open (30, file='unit.txt', access='stream', form='formatted', status='replace')
  write (30, '(a)') 'line one'
  call pxffileno(30, fd, ierror)
  call check_true('pxffileno of an OPEN unit', ierror == 0 .and. fd > 2)
  write (30, '(a)') 'two'
  call pxffflush(30, ierror)
  call check_int('pxffflush', ierror, 0)
  call pxffstat(fd, jstat, ierror)
  call pxfint8get(jstat, 'st_size', size, ierror)
  call check_int8('WRITE output on the descriptor after pxffflush', size, 13_8)
  call pxffseek(30, 0, ipxfconst('SEEK_SET'), ierror)
  call pxffgetc(30, ch, ierror)
  call check_str('pxffgetc', ch, 'l')
  call pxfftell(30, n, ierror)
  call check_int('pxfftell', n, 1)
  call pxffseek(30, 0, ipxfconst('SEEK_END'), ierror)
  call pxffgetc(30, ch, ierror)
  call check_int('pxffgetc at the end of the file', ierror, EEND)
  call check_str('character kept at the end', ch, 'l')
  close (30)
  call pxffileno(30, fd, ierror)
  call check_int('pxffileno of a closed unit', ierror, ipxfconst('EBADF'))
  call pxffputc(30, 'x', ierror)
  call check_int('pxffputc on a closed unit', ierror, -ipxfconst('EBADF'))

  ! A descriptor attached to a unit works with READ and WRITE.
  call pxfopen('unit.txt', 0, ipxfconst('O_RDWR'), 0, fd, ierror)
  call pxffdopen(fd, 31, 'r+', ierror)
  call check_int('pxffdopen', ierror, 0)
  read (31, '(a)') line
  call check_str('READ on the attached unit', line, 'line one')
  close (31)
  call pxfdup(fd, fd2, ierror)
  call pxfclose(fd, ierror)
  call pxflseek(fd2, 0, ipxfconst('SEEK_SET'), n, ierror)
  line = ' '
  call pxfread(fd2, line, 40, n, ierror)
  call check_int('bytes read back', n, 13)
  call check_str('text read back', line(6:12), 'one' // achar(10) // 'two')
  call pxfclose(fd2, ierror)

  ! Listing the directory.
  jdirent = 0
  call pxfstructcreate('dirent', jdirent, ierror)
  call pxfopendir('.', 0, idirid, ierror)
  entries = 0
  do
    call pxfreaddir(idirid, jdirent, ierror)
    if (ierror /= 0) exit
    call pxfstrget(jdirent, 'd_name', name, ilen, ierror)
    entries = entries + 1
  end do
  call check_int('end of the directory', ierror, EENDDIR)
  call check_int('entries listed', entries, 4)
  call pxfclosedir(idirid, ierror)
  call check_int('pxfclosedir clears the handle', idirid, 0)

  call pxfunlink('one.txt', 0, ierror)
  call pxfunlink('unit.txt', 0, ierror)
  call pxfchdir('..', 0, ierror)
  call pxfrmdir('pxf_files.d', 0, ierror)
  call check_int('pxfrmdir', ierror, 0)
  call pxfstructfree(jdirent, ierror)
  call pxfstructfree(jstat, ierror)
  call checks_done('pxf_files')
end program pxf_files
