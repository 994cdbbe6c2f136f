! Trapped exceptions reach the Fortran handler with their codes, in REAL(8) arithmetic (SSE
! on x86-64, x87 on i386) and REAL(10) (x87), each in a child process. The handler ends the
! child with the code less 100, so the parent reads the code from the exit status.
program ieee_traps
  use, intrinsic :: iso_c_binding, only: c_int
  use tarvo_portlib, only: ieee_handler, IEEE_CODE_ZERODIVIDE, IEEE_CODE_OVERFLOW, &
                           IEEE_CODE_UNDERFLOW, IEEE_CODE_INVALID
  use tarvo_check
  implicit none
  interface
    integer(c_int) function fork() bind(c)
      import :: c_int
    end function fork
    integer(c_int) function waitpid(pid, status, options) bind(c)
      import :: c_int
      integer(c_int), value :: pid, options
      integer(c_int), intent(out) :: status
    end function waitpid
    subroutine c_exit(status) bind(c, name='_exit')
      import :: c_int
      integer(c_int), value :: status
    end subroutine c_exit
  end interface
  character(len=9), parameter :: keyword(4) = [character(len=9) :: 'division', 'common', 'underflow', 'inv']
  integer(4), parameter :: code(4) = [IEEE_CODE_ZERODIVIDE, IEEE_CODE_OVERFLOW, IEEE_CODE_UNDERFLOW, &
                                      IEEE_CODE_INVALID]
  real(8), volatile :: x8
  real(10), volatile :: x10
  integer(c_int) :: pid, status, which, kind10

  do kind10 = 0, 1
    do which = 1, 4
      pid = fork()
      if (pid == 0) then
        if (ieee_handler('set', keyword(which), handler) /= 0) call c_exit(2)
        x8 = 0
        x10 = 0
        if (kind10 == 1) x10 = provoke10(which) + 1
        if (kind10 == 0) x8 = provoke8(which)
        call c_exit(0)
      end if
      call check_int('waitpid', waitpid(pid, status, 0), pid)
      call check_int(trim(keyword(which)) // merge(' REAL(10)', ' REAL(8) ', kind10 == 1), status, &
                     (code(which) - 100) * 256)
    end do
  end do
  call checks_done('ieee_traps')

contains

  subroutine handler(signum, code)
    integer(4), intent(in) :: signum, code
    if (signum /= 8) call c_exit(1)
    call c_exit(code - 100)
  end subroutine handler

  real(8) function provoke8(which)
    integer(c_int), intent(in) :: which
    real(8), parameter :: a(4) = [1d0, huge(1d0), tiny(1d0), 0d0], b(4) = [0d0, 1d-10, 1d10, 0d0]
    provoke8 = a(which) / (x8 + b(which))
  end function provoke8

  real(10) function provoke10(which)
    integer(c_int), intent(in) :: which
    real(10), parameter :: a(4) = [1.0_10, huge(1.0_10), tiny(1.0_10), 0.0_10], &
                           b(4) = [0.0_10, 1e-10_10, 1e10_10, 0.0_10]
    provoke10 = a(which) / (x10 + b(which))
  end function provoke10

end program ieee_traps
