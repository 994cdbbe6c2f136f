! Terminal, users and groups, system names and file locks through the tarvo_posix module,
! compared with what the system's own commands report.
program pxf_system
  use, intrinsic :: iso_c_binding, only: c_int, c_char, c_size_t, c_null_char
  use tarvo_posix
  use tarvo_check
  implicit none
  interface
    integer(c_int) function posix_openpt(flags) bind(c)
      import :: c_int
      integer(c_int), value :: flags
    end function posix_openpt
    integer(c_int) function grantpt(fd) bind(c)
      import :: c_int
      integer(c_int), value :: fd
    end function grantpt
    integer(c_int) function unlockpt(fd) bind(c)
      import :: c_int
      integer(c_int), value :: fd
    end function unlockpt
    integer(c_int) function ptsname_r(fd, buf, size) bind(c)
      import :: c_int, c_char, c_size_t
      integer(c_int), value :: fd
      character(kind=c_char) :: buf(*)
      integer(c_size_t), value :: size
    end function ptsname_r
    integer(c_int) function fork() bind(c)
      import :: c_int
    end function fork
    subroutine exit_now(status) bind(c, name='_exit')
      import :: c_int
      integer(c_int), value :: status
    end subroutine exit_now
  end interface
  integer(4) :: ierror

  call terminal_round_trip()
  call user_and_group_equal_getent()
  call uname_equals_the_command()
  call lock_held_by_a_child()
  call checks_done('pxf_system')

contains

  ! The first line a shell command prints.
  function command_output(command) result(line)
    character(len=*), intent(in) :: command
    character(len=256) :: line
    integer :: unit
    call execute_command_line(command // ' > pxf_system.out')
    line = ' '
    open (newunit=unit, file='pxf_system.out', status='old', action='read')
    read (unit, '(a)', end=1) line
1   close (unit, status='delete')
  end function command_output

  subroutine terminal_round_trip()
    character(len=64, kind=c_char) :: name
    character(len=64) :: s
    integer(4) :: master, tty, jt, lflag, echo, cc(32), ialen, ilen, speed
    logical(4) :: is_tty
    master = posix_openpt(ipxfconst('O_RDWR') + ipxfconst('O_NOCTTY'))
    call check_int('grantpt and unlockpt', grantpt(master) + unlockpt(master), 0)
    call check_int('ptsname_r', ptsname_r(master, name, len(name, c_size_t)), 0)
    name = name(1:index(name, c_null_char) - 1)
    call pxfopen(name, 0, ipxfconst('O_RDWR') + ipxfconst('O_NOCTTY'), 0, tty, ierror)
    call pxfisatty(tty, is_tty, ierror)
    call check_true('pxfisatty of the terminal', is_tty)
    call pxfttyname(tty, s, ilen, ierror)
    call check_str('pxfttyname', s(1:ilen), trim(name))

    call pxfstructcreate('termios', jt, ierror)
    call pxftcgetattr(tty, jt, ierror)
    call check_int('pxftcgetattr', ierror, 0)
    echo = ipxfconst('ECHO')
    call pxfintget(jt, 'c_lflag', lflag, ierror)
    call pxfintset(jt, 'c_lflag', iand(lflag, not(echo)), ierror)
    call pxfcfsetospeed(jt, ipxfconst('B2400'), ierror)
    call pxftcsetattr(tty, TCSANOW, jt, ierror)
    call check_int('pxftcsetattr', ierror, 0)
    call pxfstructfree(jt, ierror)
    call pxfstructcreate('termios', jt, ierror)
    call pxftcgetattr(tty, jt, ierror)
    call pxfintget(jt, 'c_lflag', lflag, ierror)
    call check_int('ECHO after the round trip', iand(lflag, echo), 0)
    call pxfcfgetospeed(jt, speed, ierror)
    call check_int('output speed after the round trip', speed, ipxfconst('B2400'))
    ialen = 32
    call pxfaintget(jt, 'c_cc', cc, ialen, ierror)
    call check_true('control characters are bytes', all(cc >= 0 .and. cc <= 255))
    call pxftcflush(tty, TCIOFLUSH, ierror)
    call check_int('pxftcflush', ierror, 0)
    call pxfstructfree(jt, ierror)
    call pxfclose(tty, ierror)
    call pxfclose(master, ierror)
  end subroutine terminal_round_trip

  subroutine user_and_group_equal_getent()
    character(len=256) :: entry, text
    integer(4) :: jp, jg, uid, gid, ilen, n
    call pxfstructcreate('passwd', jp, ierror)
    ierror = 0
    call pxfgetpwuid(0, jp, ierror)
    call check_int('pxfgetpwuid', ierror, 0)
    entry = command_output('getent passwd 0')
    call pxfstrget(jp, 'pw_name', text, ilen, ierror)
    n = len_trim(text)
    call pxfintget(jp, 'pw_uid', uid, ierror)
    call pxfintget(jp, 'pw_gid', gid, ierror)
    write (text(n + 1:), '(":x:",i0,":",i0,":")') uid, gid
    call check_str('name, uid and gid as getent has them', entry(1:len_trim(text)), trim(text))
    call pxfstrget(jp, 'pw_shell', text, ilen, ierror)
    call check_str('pw_shell is the last field', entry(len_trim(entry) - ilen + 1:len_trim(entry)), text(1:ilen))

    call pxfstructcreate('group', jg, ierror)
    ierror = 0
    call pxfgetgrnam('root   ', 0, jg, ierror)
    call check_int('pxfgetgrnam of a trimmed name', ierror, 0)
    call pxfintget(jg, 'gr_gid', gid, ierror)
    call pxfstrget(jg, 'gr_name', text, ilen, ierror)
    entry = command_output('getent group root')
    write (text(ilen + 1:), '(":x:",i0,":")') gid
    call check_str('group as getent has it', entry(1:len_trim(text)), trim(text))
    call pxfstructfree(jp, ierror)
    call pxfstructfree(jg, ierror)
  end subroutine user_and_group_equal_getent

  subroutine uname_equals_the_command()
    character(len=256) :: text
    integer(4) :: ju, ilen
    call pxfstructcreate('utsname', ju, ierror)
    call pxfuname(ju, ierror)
    call pxfstrget(ju, 'sysname', text, ilen, ierror)
    call check_str('sysname', text, command_output('uname -s'))
    call pxfstrget(ju, 'nodename', text, ilen, ierror)
    call check_str('nodename', text, command_output('uname -n'))
    call pxfstrget(ju, 'machine', text, ilen, ierror)
    call check_str('machine', text, command_output('uname -m'))
    call pxfstructfree(ju, ierror)
  end subroutine uname_equals_the_command

  subroutine lock_held_by_a_child()
    integer(4) :: fd, jl, ready(2), done(2), child, n, out, itype, ipid
    integer(8) :: start
    character(len=1) :: byte
    call pxfopen('pxf_system.lock', 0, ipxfconst('O_CREAT') + ipxfconst('O_RDWR'), int(o'644', 4), fd, ierror)
    call pxfwrite(fd, '0123456789', 10, n, ierror)
    call pxfpipe(ready(1), ready(2), ierror)
    call pxfpipe(done(1), done(2), ierror)
    call pxfstructcreate('flock', jl, ierror)
    call pxfintset(jl, 'l_whence', ipxfconst('SEEK_SET'), ierror)
    call pxfint8set(jl, 'l_start', 4_8, ierror)
    call pxfint8set(jl, 'l_len', 2_8, ierror)
    child = fork()
    if (child == 0) then
      call pxfintset(jl, 'l_type', F_WRLCK, ierror)
      call pxffcntl(fd, ipxfconst('F_SETLK'), jl, out, ierror)
      call pxfwrite(ready(2), 'r', 1, n, ierror)
      call pxfread(done(1), byte, 1, n, ierror)
      call exit_now(0)
    end if
    call pxfread(ready(1), byte, 1, n, ierror)
    call pxfintset(jl, 'l_type', F_RDLCK, ierror)
    call pxfint8set(jl, 'l_start', 0_8, ierror)
    call pxfint8set(jl, 'l_len', 0_8, ierror)
    call pxffcntl(fd, ipxfconst('F_GETLK'), jl, out, ierror)
    call check_int('pxffcntl F_GETLK', ierror, 0)
    call pxfintget(jl, 'l_type', itype, ierror)
    call pxfintget(jl, 'l_pid', ipid, ierror)
    call pxfint8get(jl, 'l_start', start, ierror)
    call check_int('conflicting lock type', itype, F_WRLCK)
    call check_int('holder of the lock', ipid, child)
    call check_int8('start of the held range', start, 4_8)
    call pxfwrite(done(2), 'd', 1, n, ierror)
    call pxfstructfree(jl, ierror)
    call pxfclose(fd, ierror)
    call pxfunlink('pxf_system.lock', 0, ierror)
  end subroutine lock_held_by_a_child

end program pxf_system
