! A pseudo-terminal and a file lock held by a child, through the tarvo_posix module. The
! terminal and the child come from the C library directly.
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
  call lock_held_by_a_child()
  call checks_done('pxf_system')

contains

  subroutine terminal_round_trip()
    character(len=64, kind=c_char) :: name
    character(len=64) :: s
    integer(4) :: master, tty, jt, lflag, echo, ilen, speed
    logical(4) :: is_tty
    master = posix_openpt(ipxfconst('O_RDWR') + ipxfconst('O_NOCTTY'))
    call check_int('pseudo-terminal', grantpt(master) + unlockpt(master) + &
                   ptsname_r(master, name, len(name, c_size_t)), 0)
    name = name(1:index(name, c_null_char) - 1)
    call pxfopen(name, 0, ipxfconst('O_RDWR') + ipxfconst('O_NOCTTY'), 0, tty, ierror)
    call pxfisatty(tty, is_tty, ierror)
    call check_true('pxfisatty of the terminal', is_tty)
    call pxfttyname(tty, s, ilen, ierror)
    call check_str('pxfttyname', s(1:ilen), trim(name))
    ! ECHO off and a new speed, then read back through a fresh instance.
    echo = ipxfconst('ECHO')
    call pxfstructcreate('termios', jt, ierror)
    call pxftcgetattr(tty, jt, ierror)
    call pxfintget(jt, 'c_lflag', lflag, ierror)
    call pxfintset(jt, 'c_lflag', iand(lflag, not(echo)), ierror)
    call pxfcfsetospeed(jt, ipxfconst('B2400'), ierror)
    call pxftcsetattr(tty, TCSANOW, jt, ierror)
    call check_int('pxftcsetattr', ierror, 0)
    call pxfstructfree(jt, ierror)
    call pxfstructcreate('termios', jt, ierror)
    call pxftcgetattr(tty, jt, ierror)
    call pxfintget(jt, 'c_lflag', lflag, ierror)
    call pxfcfgetospeed(jt, speed, ierror)
    call check_int('ECHO after the round trip', iand(lflag, echo), 0)
    call check_int('speed after the round trip', speed, ipxfconst('B2400'))
    call pxfstructfree(jt, ierror)
    call pxfclose(tty, ierror)
    call pxfclose(master, ierror)
  end subroutine terminal_round_trip

  ! A child locks bytes 4-5 and waits; F_GETLK in the parent names it as the holder.
  subroutine lock_held_by_a_child()
    integer(4) :: fd, jl, ready(2), done(2), child, n, out, itype, ipid
    character(len=1) :: byte
    call pxfopen('pxf_system.lock', 0, ipxfconst('O_CREAT') + ipxfconst('O_RDWR'), int(o'644', 4), fd, ierror)
    call pxfwrite(fd, '0123456789', 10, n, ierror)
    call pxfpipe(ready(1), ready(2), ierror)
    call pxfpipe(done(1), done(2), ierror)
    call pxfstructcreate('flock', jl, ierror)
    call pxfintset(jl, 'l_type', F_WRLCK, ierror)
    call pxfint8set(jl, 'l_start', 4_8, ierror)
    call pxfint8set(jl, 'l_len', 2_8, ierror)
    child = fork()
    if (child == 0) then
      call pxffcntl(fd, ipxfconst('F_SETLK'), jl, out, ierror)
      call pxfwrite(ready(2), 'r', 1, n, ierror)
      call pxfread(done(1), byte, 1, n, ierror)
      call exit_now(0)
    end if
    call pxfread(ready(1), byte, 1, n, ierror)
    call pxfint8set(jl, 'l_start', 0_8, ierror)
    call pxfint8set(jl, 'l_len', 0_8, ierror)
    call pxffcntl(fd, ipxfconst('F_GETLK'), jl, out, ierror)
    call check_int('pxffcntl F_GETLK', ierror, 0)
    call pxfintget(jl, 'l_type', itype, ierror)
    call pxfintget(jl, 'l_pid', ipid, ierror)
    call check_int('conflicting lock type', itype, F_WRLCK)
    call check_int('holder of the lock', ipid, child)
    call pxfwrite(done(2), 'd', 1, n, ierror)
    call pxfstructfree(jl, ierror)
    call pxfclose(fd, ierror)
    call pxfunlink('pxf_system.lock', 0, ierror)
  end subroutine lock_held_by_a_child

end program pxf_system
