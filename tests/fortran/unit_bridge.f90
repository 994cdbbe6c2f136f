! The run-time's unit operations inside a gfortran program: they act on the program's own
! units, opened with OPEN, and a descriptor attached to a unit works with READ and WRITE.
! Reads unit 26 three times in whatever thread calls it, each time with an old error left in
! errno (a module procedure: an internal one would need an executable stack to be called
! through its address).
module reads_in_thread
  use runtime_shim
  implicit none
  integer :: thread_reads(3)
contains
  subroutine read_in_thread() bind(c)
    integer :: i
    do i = 1, 3
      call set_errno(5)
      thread_reads(i) = readchar(26)
    end do
  end subroutine
end module reads_in_thread

program unit_bridge
  use runtime_shim
  use reads_in_thread
  use tarvo_check
  implicit none
  integer :: fd, n, ios
  character(len=80) :: line, arg
  character(len=2) :: short

  call check_int('gfortran back end chosen', backend_is_gfortran(), 1)

  ! A stream unit: the descriptor shows what WRITE buffered, then characters and positions.
  open (10, file='bridge.bin', status='replace', access='stream', form='unformatted')
  write (10) 'abc'
  fd = gethandle(10)
  call check_true('descriptor of unit 10', fd > 2)
  call check_int8('pending output flushed before the descriptor is used', size_of(fd), 3_8)
  call check_int('writechar', writechar(10, ichar('d')), 0)
  call check_int8('curpos after writechar', curpos(10), 4_8)
  call check_int('seek to start', fseek_unit(10, 0_8, 0), 0)
  call check_int('readchar', readchar(10), ichar('a'))
  call check_int('seek to end', fseek_unit(10, 0_8, 2), 0)
  call check_int('readchar at end of file', readchar(10), -2)
  call check_int('seek before the start', fseek_unit(10, -1_8, 0), -22)
  call check_int('seek with an unknown origin', fseek_unit(10, 0_8, 7), -22)
  call check_int('seek relative', fseek_unit(10, -2_8, 1), 0)
  call check_int('readchar after relative seek', readchar(10), ichar('c'))
  close (10, status='delete')

  ! A unit that is not open is an error, never end of file.
  call check_int('gethandle of a closed unit', gethandle(11), -1)
  call check_int('readchar of a closed unit', readchar(11), -9)
  call check_int('writechar of a closed unit', writechar(11, 65), -9)
  call check_int('seek of a closed unit', fseek_unit(11, 0_8, 0), -9)
  call check_int8('curpos of a closed unit', curpos(11), -9_8)
  call check_int('still not connected', gethandle(11), -1)
  call check_true('standard output is preconnected', gethandle(6) == 1)

  ! Attach a descriptor whose offset has moved: READ continues there, WRITE follows it.
  open (12, file='attach.txt', status='replace')
  write (12, '(a)') 'hello'
  write (12, '(a)') 'world'
  close (12)
  fd = c_open('attach.txt' // c_null_char, 1, 6)
  call check_int('fdopen read-write', fdopen_unit(fd, 20, 'r+' // c_null_char), 0)
  read (20, '(a)', iostat=ios) line
  call check_int('READ on the attached unit', ios, 0)
  call check_str('READ continues at the descriptor offset', line, 'world')
  write (20, '(a)') 'more'
  close (20)
  open (12, file='attach.txt', status='old')
  read (12, '(a)') line
  read (12, '(a)') line
  read (12, '(a)') line
  call check_str('WRITE on the attached unit', line, 'more')
  close (12)

  ! Append access puts the shared description in append mode.
  fd = c_open_write_only('attach.txt' // c_null_char)
  call check_int('fdopen append', fdopen_unit(fd, 21, 'a' // c_null_char), 0)
  write (21, '(a)') 'tail'
  close (21)
  open (12, file='attach.txt', status='old')
  do n = 1, 4
    read (12, '(a)') line
  end do
  call check_str('appended line', line, 'tail')
  close (12, status='delete')

  ! A pipe read through READ.
  fd = pipe_with('piped' // achar(10) // c_null_char)
  call check_int('fdopen of a pipe', fdopen_unit(fd, 22, 'r' // c_null_char), 0)
  read (22, '(a)', iostat=ios) line
  call check_int('READ from the pipe', ios, 0)
  call check_str('pipe text', line, 'piped')
  call check_int('seek on a pipe', fseek_unit(22, 0_8, 0), -29)
  call check_int8('position on a pipe', curpos(22), -29_8)
  close (22)

  ! Whether a unit can seek is learnt anew for every connection under the same number:
  ! a file, a pipe after CLOSE, a file again after an OPEN without CLOSE. (On a stream
  ! unit gfortran itself would report a position on the pipe.)
  open (23, file='seekable.txt', status='replace', access='stream')
  call check_int8('position on a file', curpos(23), 0_8)
  close (23)
  fd = pipe_with('x' // achar(10) // c_null_char)
  write (line, '(a,i0)') '/proc/self/fd/', fd
  open (23, file=trim(line), status='old', action='read', access='stream')
  call check_int8('position on the pipe that replaced it', curpos(23), -29_8)
  call check_int('seek on that pipe', fseek_unit(23, 0_8, 0), -29)
  open (23, file='seekable.txt', status='old', access='stream')
  call check_int('seek on the file that replaced the pipe', fseek_unit(23, 1_8, 0), 0)
  call check_int8('position there', curpos(23), 1_8)
  close (23, status='delete')
  n = c_close(fd)
  call check_int('no character from the closed unit', readchar(23), -9)
  call check_int8('no position on the closed unit', curpos(23), -9_8)
  call check_int('no descriptor for the closed unit', gethandle(23), -1)
  ! The descriptor is the new connection's, also when the old one's number is taken.
  open (24, file='three.txt', status='replace', access='stream')
  write (24) 'abc'
  call check_int8('descriptor of the first file', size_of(gethandle(24)), 3_8)
  open (25, file='five.txt', status='replace', access='stream')
  write (25) 'abcde'
  flush (25)
  close (24, status='delete')
  open (24, file='five.txt', status='old', access='stream')
  call check_int8('descriptor after reopening', size_of(gethandle(24)), 5_8)
  close (24)
  close (25, status='delete')

  ! Each thread clears its own errno before a read: an error left over in a new thread does
  ! not make the end of the file an error, in the main thread or in the new one.
  open (26, file='one.txt', status='replace', access='stream')
  write (26) 'x'
  call check_int('seek to the start', fseek_unit(26, 0_8, 0), 0)
  call set_errno(5)
  call check_int('a character', readchar(26), ichar('x'))
  call check_int('end of file with an old error about', readchar(26), -2)
  call check_int('seek to the start again', fseek_unit(26, 0_8, 0), 0)
  call in_new_thread(c_funloc(read_in_thread))
  call check_true('the same in a new thread', all(thread_reads == [ichar('x'), -2, -2]))
  close (26, status='delete')

  ! Attaching checks its arguments.
  call check_int('fdopen of a bad descriptor', fdopen_unit(-1, 23, 'r' // c_null_char), 9)
  fd = c_open('/dev/null' // c_null_char, 0, 0)
  call check_int('fdopen writing a read-only descriptor', fdopen_unit(fd, 23, 'w' // c_null_char), 22)
  n = c_close(fd)

  ! The command line comes from the gfortran run-time.
  call check_int('nargs', nargs(), command_argument_count() + 1)
  call get_command_argument(0, arg)
  line = ' '
  n = getarg_len(0, line, len(line))
  call check_str('getarg 0', line, arg)
  call check_int('getarg 0 length', n, len_trim(arg))
  n = getarg_len(0, short, len(short))
  call check_str('getarg cut', short, arg(1:2))
  call check_int('getarg of a missing word', getarg_len(5, line, len(line)), -1)

  call checks_done('unit_bridge')
end program unit_bridge
