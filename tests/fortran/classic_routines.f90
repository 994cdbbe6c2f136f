! Tests the library on the program's OPEN units: gfortran units only.
! The classic routines through the tarvo_portlib module, on gfortran's own units. Many of
! these names are also gfortran intrinsics; the checks hold for the library's versions.
program classic_routines
  use tarvo_portlib
  use tarvo_check
  implicit none
  integer(4) :: sb(13), y, m, d
  integer(8) :: sb8(13) = 77
  integer(2) :: y2, m2, d2
  character(len=1) :: ch
  character(len=200) :: value, line
  character(len=24) :: text

  ! Status arrays: FSTAT flushes what WRITE buffered; element 13 is never written.
  open (10, file='classic.bin', status='replace', access='stream', form='unformatted')
  write (10) 'abc'
  call check_int('fstat (INTEGER(8))', fstat(10, sb8), 0)
  call check_int8('fstat size', sb8(8) + sb8(13), 80_8)
  call check_int('stat of a missing file', stat('no-such-file', sb), 2)

  ! Character I/O on a stream unit: the sequence the native unit table is tested with.
  call check_int('fseek to the start', fseek(10, 0, 0), 0)
  call check_int('fgetc', fgetc(10, ch), 0)
  call check_str('fgetc character', ch, 'a')
  call check_int('ftell', ftell(10), 1)
  call check_int('fseek to the end', fseek(10, 0, 2), 0)
  call check_int('ierrno after a successful seek', ierrno(), 0)
  call check_int('fstat of a unit that is not open', fstat(31, sb), 22)
  call check_int('fgetc at end of file', fgetc(10, ch), -1)
  call check_str('fgetc at end of file keeps the character', ch, 'a')
  call check_int('end of file records nothing', ierrno(), 22)
  call check_int('fputc', fputc(10, 'd'), 0)
  call check_int8('ftelli8', ftelli8(10), 4_8)
  call check_int('fseek by an INTEGER(8) offset', fseek(10, -4_8, 1), 0)
  call check_int('fseek before the start', fseek(10, -1, 0), 22)
  call check_int('fseek beyond 4 GiB', fseek(10, 5_8 * 2_8**30, 0), 0)
  call check_int8('ftelli8 beyond 4 GiB', ftelli8(10), 5_8 * 2_8**30)
  call check_int('ftell keeps the low 32 bits', getpos(10), 2**30)
  call flush(10)
  close (10, status='delete')
  call check_int('fgetc of a unit that is not open', fgetc(31, ch), 22)
  call check_int('fseek of a unit that is not open', fseek(31, 0, 0), 9)
  call check_int('ftell of a unit that is not open', ftell(31), -9)

  ! Through the module: CTIME has no newline, GETDAT is generic over kinds.
  text = ctime(0)
  call check_true('ctime of the epoch', text(21:) == '1970' .or. text(21:) == '1969')
  call getdat(y, m, d)
  call getdat(y2, m2, d2)
  call check_true('getdat in both kinds', y == y2 .and. m == m2 .and. d == d2)

  ! SYSTEM flushes the program's units first, so the command's output comes after theirs.
  open (20, file='classic.txt', status='replace')
  write (20, '(a)') 'first'
  call check_int('system', system('echo second >> classic.txt'), 0)
  close (20)
  open (20, file='classic.txt', status='old')
  read (20, '(a)') line, value
  call check_str('lines of the program and of the command', trim(line) // trim(value), 'firstsecond')
  close (20, status='delete')

  call checks_done('classic_routines')
end program classic_routines
