! The gfortran run-time's own routines, called n times each. Kept in a unit of their own,
! compiled without the library's modules, so that each name below is the compiler's
! intrinsic and not a library routine of the same name.
module gfortran_side
  use iso_c_binding
  implicit none
  character(len=256), save :: path = ' '
contains

  subroutine g_set_path(text, n) bind(c)
    character(kind=c_char), intent(in) :: text(*)
    integer(c_int), value :: n
    integer :: i
    path = ' '
    do i = 1, n
      path(i:i) = text(i)
    end do
  end subroutine

  integer(c_int) function g_open(unit, text, n, mode) bind(c)
    integer(c_int), value :: unit, n, mode
    character(kind=c_char), intent(in) :: text(*)
    character(len=256) :: name
    integer :: i
    name = ' '
    do i = 1, n
      name(i:i) = text(i)
    end do
    if (mode == 0) then
      open(unit, file=name, status='old', action='read', access='stream', iostat=g_open)
    else if (mode == 1) then
      open(unit, file=name, status='replace', action='write', access='stream', iostat=g_open)
    else
      open(unit, file=name, status='old', action='readwrite', iostat=g_open)
    end if
  end function

  subroutine g_close(unit) bind(c)
    integer(c_int), value :: unit
    close(unit)
  end subroutine

  subroutine g_access(n) bind(c)
    integer(c_int), value :: n
    integer :: i, s
    do i = 1, n
      s = access(trim(path), 'r')
    end do
  end subroutine

  subroutine g_stat(n) bind(c)
    integer(c_int), value :: n
    integer :: i, s, v(13)
    do i = 1, n
      s = stat(trim(path), v)
    end do
  end subroutine

  subroutine g_lstat(n) bind(c)
    integer(c_int), value :: n
    integer :: i, s, v(13)
    do i = 1, n
      s = lstat(trim(path), v)
    end do
  end subroutine

  subroutine g_fstat(n, unit) bind(c)
    integer(c_int), value :: n, unit
    integer :: i, s, v(13)
    do i = 1, n
      s = fstat(unit, v)
    end do
  end subroutine

  subroutine g_getcwd(n) bind(c)
    integer(c_int), value :: n
    integer :: i, s
    character(len=1024) :: d
    do i = 1, n
      s = getcwd(d)
    end do
  end subroutine

  subroutine g_time(n) bind(c)
    integer(c_int), value :: n
    integer :: i, t
    do i = 1, n
      t = time()
    end do
  end subroutine

  subroutine g_fdate(n) bind(c)
    integer(c_int), value :: n
    integer :: i
    character(len=24) :: d
    do i = 1, n
      d = fdate()
    end do
  end subroutine

  subroutine g_ctime(n) bind(c)
    integer(c_int), value :: n
    integer :: i
    character(len=24) :: d
    do i = 1, n
      d = ctime(1000000000)
    end do
  end subroutine

  subroutine g_ltime(n) bind(c)
    integer(c_int), value :: n
    integer :: i, v(9)
    do i = 1, n
      call ltime(1000000000, v)
    end do
  end subroutine

  subroutine g_gmtime(n) bind(c)
    integer(c_int), value :: n
    integer :: i, v(9)
    do i = 1, n
      call gmtime(1000000000, v)
    end do
  end subroutine

  subroutine g_secnds(n) bind(c)
    integer(c_int), value :: n
    integer :: i
    real :: s
    do i = 1, n
      s = secnds(0.0)
    end do
  end subroutine

  subroutine g_etime(n) bind(c)
    integer(c_int), value :: n
    integer :: i
    real :: v(2), s
    do i = 1, n
      s = etime(v)
    end do
  end subroutine

  subroutine g_dtime(n) bind(c)
    integer(c_int), value :: n
    integer :: i
    real :: v(2), s
    do i = 1, n
      s = dtime(v)
    end do
  end subroutine

  subroutine g_idate(n) bind(c)
    integer(c_int), value :: n
    integer :: i, v(3)
    do i = 1, n
      call idate(v)
    end do
  end subroutine

  subroutine g_itime(n) bind(c)
    integer(c_int), value :: n
    integer :: i, v(3)
    do i = 1, n
      call itime(v)
    end do
  end subroutine

  subroutine g_getpid(n) bind(c)
    integer(c_int), value :: n
    integer :: i, p
    do i = 1, n
      p = getpid()
    end do
  end subroutine

  subroutine g_getuid(n) bind(c)
    integer(c_int), value :: n
    integer :: i, p
    do i = 1, n
      p = getuid()
    end do
  end subroutine

  subroutine g_hostnm(n) bind(c)
    integer(c_int), value :: n
    integer :: i, s
    character(len=256) :: h
    do i = 1, n
      s = hostnm(h)
    end do
  end subroutine

  subroutine g_getlog(n) bind(c)
    integer(c_int), value :: n
    integer :: i
    character(len=64) :: u
    do i = 1, n
      call getlog(u)
    end do
  end subroutine

  subroutine g_getenv(n) bind(c)
    integer(c_int), value :: n
    integer :: i
    character(len=256) :: v
    do i = 1, n
      call getenv('HOME', v)
    end do
  end subroutine

  ! Reads on, back to the start at the end of the file.
  subroutine g_fgetc(n, unit) bind(c)
    integer(c_int), value :: n, unit
    integer :: i, s
    character :: c
    do i = 1, n
      s = fgetc(unit, c)
      if (s /= 0) call fseek(unit, 0, 0)
    end do
  end subroutine

  subroutine g_fputc(n, unit) bind(c)
    integer(c_int), value :: n, unit
    integer :: i, s
    do i = 1, n
      s = fputc(unit, 'x')
    end do
  end subroutine

  subroutine g_fseek(n, unit) bind(c)
    integer(c_int), value :: n, unit
    integer :: i
    do i = 1, n
      call fseek(unit, 7, 0)
    end do
  end subroutine

  subroutine g_ftell(n, unit) bind(c)
    integer(c_int), value :: n, unit
    integer :: i, p
    do i = 1, n
      p = ftell(unit)
    end do
  end subroutine

  subroutine g_flush(n, unit) bind(c)
    integer(c_int), value :: n, unit
    integer :: i
    do i = 1, n
      call flush(unit)
    end do
  end subroutine

  subroutine g_isatty(n, unit) bind(c)
    integer(c_int), value :: n, unit
    integer :: i
    logical :: t
    do i = 1, n
      t = isatty(unit)
    end do
  end subroutine

  subroutine g_ttynam(n, unit) bind(c)
    integer(c_int), value :: n, unit
    integer :: i
    character(len=64) :: t
    do i = 1, n
      t = ttynam(unit)
    end do
  end subroutine

end module
