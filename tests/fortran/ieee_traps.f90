! Trapped exceptions reach the Fortran handler with their codes and end the process with
! status 9: REAL(8) arithmetic (SSE on x86-64, x87 on i386) and REAL(10) (x87), each in
! a child process. The handler reports its arguments through a pipe.
module ieee_traps_support
  use, intrinsic :: iso_c_binding
  implicit none
  integer(c_int) :: fds(2)
  interface
    integer(c_int) function c_fork() bind(c, name='fork')
      import :: c_int
    end function c_fork
    integer(c_int) function c_waitpid(pid, status, options) bind(c, name='waitpid')
      import :: c_int
      integer(c_int), value :: pid, options
      integer(c_int), intent(out) :: status
    end function c_waitpid
    integer(c_int) function c_pipe(fds) bind(c, name='pipe')
      import :: c_int
      integer(c_int), intent(out) :: fds(2)
    end function c_pipe
    integer(c_intptr_t) function c_io(fd, buf, n) bind(c, name='write')
      import :: c_int, c_intptr_t, c_size_t
      integer(c_int), value :: fd
      integer(c_int), intent(in) :: buf(2)
      integer(c_size_t), value :: n
    end function c_io
    integer(c_intptr_t) function c_read(fd, buf, n) bind(c, name='read')
      import :: c_int, c_intptr_t, c_size_t
      integer(c_int), value :: fd
      integer(c_int), intent(out) :: buf(2)
      integer(c_size_t), value :: n
    end function c_read
    integer(c_int) function c_close(fd) bind(c, name='close')
      import :: c_int
      integer(c_int), value :: fd
    end function c_close
    subroutine c_exit(status) bind(c, name='_exit')
      import :: c_int
      integer(c_int), value :: status
    end subroutine c_exit
  end interface
contains
  subroutine report(signum, code)
    integer(4), intent(in) :: signum, code
    if (c_io(fds(2), [signum, code], 8_c_size_t) /= 8) call c_exit(3)
  end subroutine report
end module ieee_traps_support

program ieee_traps
  use ieee_traps_support
  use tarvo_portlib, only: ieee_handler, IEEE_CODE_ZERODIVIDE, IEEE_CODE_OVERFLOW, &
                           IEEE_CODE_UNDERFLOW, IEEE_CODE_INVALID
  use tarvo_check
  implicit none
  character(len=9), parameter :: keyword(4) = [character(len=9) :: 'division', 'common', 'underflow', 'inv']
  integer(4), parameter :: code(4) = [IEEE_CODE_ZERODIVIDE, IEEE_CODE_OVERFLOW, IEEE_CODE_UNDERFLOW, &
                                      IEEE_CODE_INVALID]
  real(8), volatile :: x8, y8
  real(10), volatile :: x10, y10
  integer :: i, kind10

  do kind10 = 0, 1
    do i = 1, 4
      call expect_trap(i, kind10 == 1)
    end do
  end do
  call checks_done('ieee_traps')

contains

  subroutine expect_trap(which, extended)
    integer, intent(in) :: which
    logical, intent(in) :: extended
    integer(c_int) :: pid, status, got(2), rc
    character(len=40) :: what
    write (what, '(a,a)') trim(keyword(which)), merge(' REAL(10)', ' REAL(8) ', extended)
    call check_int('pipe', c_pipe(fds), 0)
    pid = c_fork()
    if (pid == 0) then
      if (ieee_handler('set', keyword(which), report) /= 0) call c_exit(2)
      if (extended) then
        call provoke10(which)
      else
        call provoke8(which)
      end if
      call c_exit(0)
    end if
    rc = c_close(fds(2))
    got = 0
    if (c_read(fds(1), got, 8_c_size_t) /= 8) got = 0
    rc = c_close(fds(1))
    call check_int(trim(what) // ' waited', c_waitpid(pid, status, 0), pid)
    call check_int(trim(what) // ' exit status', status, 9 * 256)
    call check_int(trim(what) // ' signal', got(1), 8)
    call check_int(trim(what) // ' code', got(2), code(which))
  end subroutine expect_trap

  subroutine provoke8(which)
    integer, intent(in) :: which
    x8 = 0
    y8 = 1
    select case (which)
    case (1); x8 = y8 / x8
    case (2); x8 = huge(y8) * (y8 + y8)
    case (3); x8 = tiny(y8) / (y8 + 1d10)
    case (4); x8 = x8 / x8
    end select
  end subroutine provoke8

  subroutine provoke10(which)
    integer, intent(in) :: which
    x10 = 0
    y10 = 1
    select case (which)
    case (1); x10 = y10 / x10
    case (2); x10 = huge(y10) * (y10 + y10)
    case (3); x10 = tiny(y10) / (y10 + 1e10_10)
    case (4); x10 = x10 / x10
    end select
    y10 = x10 + y10  ! a later x87 instruction delivers the pending trap
  end subroutine provoke10

end program ieee_traps
