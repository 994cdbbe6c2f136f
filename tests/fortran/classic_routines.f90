! The classic routines through the tarvo_portlib module, on gfortran's own units. Many of
! these names are also gfortran intrinsics; the checks hold for the library's versions.
program classic_routines
  use tarvo_portlib
  use tarvo_check
  implicit none
  integer(4) :: sb(13), tl(9), tg(9), y, m, d, n
  integer(8) :: sb8(13)
  integer(2) :: y2, m2, d2
  character(len=1) :: ch
  character(len=200) :: name, value, env, line
  character(len=64) :: host
  character(len=4) :: short
  character(len=8) :: hms
  character(len=24) :: text
  character(len=3), parameter :: months(12) = ['Jan', 'Feb', 'Mar', 'Apr', 'May', 'Jun', &
                                               'Jul', 'Aug', 'Sep', 'Oct', 'Nov', 'Dec']
  real(4) :: e(2), dt(2), t1, t2, total

  ! --- status arrays: FSTAT flushes what WRITE buffered; element 13 is never written ---
  open (10, file='classic.bin', status='replace', access='stream', form='unformatted')
  write (10) 'abc'
  sb8 = 77
  call check_int('fstat (INTEGER(8))', fstat(10, sb8), 0)
  call check_int8('fstat size', sb8(8), 3_8)
  sb = 77
  call check_int('stat', stat('classic.bin', sb), 0)
  call check_int('stat size', sb(8), 3)
  call check_int('stat element 13', sb(13), 77)
  call check_int('stat of a missing file', stat('no-such-file', sb), 2)

  ! --- character I/O on a stream unit: the sequence the native unit table is tested with ---
  call check_int('fseek to the start', fseek(10, 0, 0), 0)
  call check_int('fgetc', fgetc(10, ch), 0)
  call check_str('fgetc character', ch, 'a')
  call check_int('ftell', ftell(10), 1)
  call check_int8('getposi8', getposi8(10), 1_8)
  call check_int('fseek to the end', fseek(10, 0, 2), 0)
  call check_int('ierrno after a successful seek', ierrno(), 0)
  call check_int('fstat of a unit that is not open', fstat(31, sb), 22)
  call check_int('fgetc at end of file', fgetc(10, ch), -1)
  call check_str('fgetc at end of file keeps the character', ch, 'a')
  call check_int('end of file records nothing', ierrno(), 22)
  call check_int('fputc', fputc(10, 'd'), 0)
  call check_int8('ftelli8', ftelli8(10), 4_8)
  call check_int('fseek by an INTEGER(8) offset', fseek(10, -4_8, 1), 0)
  call check_int('fgetc after the seek', fgetc(10, ch), 0)
  call check_str('fgetc character after the seek', ch, 'a')
  call check_int('fseek before the start', fseek(10, -1, 0), 22)
  call check_int('ierrno after the bad seek', ierrno(), 22)
  call check_int('fseek beyond 4 GiB', fseek(10, 5_8 * 2_8**30, 0), 0)
  call check_int8('ftelli8 beyond 4 GiB', ftelli8(10), 5_8 * 2_8**30)
  call check_int('ftell keeps the low 32 bits', ftell(10), 2**30)
  call check_int('getpos keeps the low 32 bits', getpos(10), 2**30)
  call flush(10)
  close (10)
  call check_int('stati8', stat('classic.bin', sb8), 0)
  call check_int8('file written through fputc', sb8(8), 4_8)
  call check_int('fgetc of a unit that is not open', fgetc(31, ch), 22)
  call check_int('fputc of a unit that is not open', fputc(31, 'x'), 22)
  call check_int('fseek of a unit that is not open', fseek(31, 0, 0), 9)
  call check_int('ftell of a unit that is not open', ftell(31), -9)
  call check_int('getpos of a unit that is not open', getpos(31), -9)
  open (10, file='classic.bin')
  close (10, status='delete')

  ! --- time and date, checked against one another in whatever zone the test runs ---
  call gmtime(0, tg)
  call check_true('gmtime of the epoch, day of year from 0', all(tg == [0, 0, 0, 1, 0, 70, 4, 0, 0]))
  call ltime(0, tl)
  call check_int('ltime day of year from 1', tl(8), merge(1, 365, tl(6) == 70))
  write (hms, '(i2.2,":",i2.2,":",i2.2)') tl(3), tl(2), tl(1)
  text = ctime(0)
  call check_str('ctime of the epoch shows the ltime clock', text(12:19), hms)
  call check_str('ctime of the epoch, no newline through the module', text(21:24), &
                 merge('1970', '1969', tl(6) == 70))
  call getdat(y, m, d)
  call getdat(y2, m2, d2)
  call check_true('getdat in both kinds', y == y2 .and. m == m2 .and. d == d2)
  write (line, '(i2.2,"-",a,"-",i0)') d, months(m), y
  call check_str('date4', date4(), line)
  call check_str('date', date(), line(1:7) // line(10:11))
  text = fdate()
  call check_str('fdate names the month', text(5:7), months(m))
  call check_false('setdat refuses', setdat(y, m, d))
  t1 = secnds(0.0)
  call check_true('secnds across midnight', abs(secnds(t1 + 10.0) - 86390.0) < 2.0)

  ! --- processor time: monotone, and the DTIME intervals add up to the total ---
  t1 = etime(e)
  total = dtime(dt)
  do n = 1, 3
    call burn()
    total = total + dtime(dt)
  end do
  t2 = etime(e)
  call check_true('etime is monotone', t2 >= t1)
  call check_true('dtime intervals add up to etime', abs(total - t2) < 0.05)

  ! --- environment and host ---
  call get_environment_variable('HOME', env)
  call getenv('HOME X', value)
  call check_str('getenv: the name ends at its first blank', value, env)
  n = 0
  do
    call scanenv('PATH', name, value)
    if (name == ' ') exit
    n = n + 1
    call get_environment_variable(trim(name), env)
    call check_str('scanenv name ' // trim(name), name(1:4), 'PATH')
    call check_str('scanenv value of ' // trim(name), value, env)
  end do
  call check_true('scanenv found PATH', n >= 1)
  call scanenv('PATH', name, value)
  call check_str('scanenv stays at the end', name // value, ' ')
  call check_int('hostnm', hostnm(host), 0)
  call check_int('hostnm into 4 characters', hostnm(short), merge(-1, 0, len_trim(host) > 4))
  call check_str('hostnm cut', short, host(1:4))
  call getlog(name)
  call check_true('getlog', name /= ' ')
  call check_int('kill with signal 0', kill(getpid(), 0), 0)
  call sleep(-1)

  ! SYSTEM flushes the program's units first, so the command's output comes after theirs.
  open (20, file='classic.txt', status='replace')
  write (20, '(a)') 'first'
  call check_int('system', system('echo second >> classic.txt'), 0)
  call check_int('system status of exit 3', system('exit 3'), 3 * 256)
  close (20)
  open (20, file='classic.txt', status='old')
  read (20, '(a)') line
  call check_str('line written by the program', line, 'first')
  read (20, '(a)') line
  call check_str('line written by the command', line, 'second')
  close (20, status='delete')

  call checks_done('classic_routines')

contains

  subroutine burn()
    real(8) :: x
    integer :: i
    x = 1
    do i = 1, 3000000
      x = sqrt(x + i)
    end do
    if (x < 0) print *, x
  end subroutine burn

end program classic_routines
