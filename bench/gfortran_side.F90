! The gfortran run-time's own routines, called n times each. Kept in a unit of their own,
! compiled without the library's modules, so that each name below is the compiler's
! intrinsic and not a library routine of the same name.
#define TIMED(NAME, BODY) \
  subroutine NAME(n) bind(c); integer(c_int), value :: n; integer :: i; do i = 1, n; BODY; end do; end subroutine
#define TIMED_UNIT(NAME, BODY) \
  subroutine NAME(n, unit) bind(c); integer(c_int), value :: n, unit; integer :: i; do i = 1, n; BODY; end do; end subroutine
module gfortran_side
  use iso_c_binding
  implicit none
  character(len=256), save :: path = ' '
  ! What the calls return: kept here so that no call can be left out.
  integer, save :: status, values(13), tarray(9), iarray(3)
  real, save :: seconds, times(2)
  character(len=1024), save :: text
  character, save :: ch
  logical, save :: flag
contains

  subroutine g_set_path(name, n) bind(c)
    character(kind=c_char), intent(in) :: name(*)
    integer(c_int), value :: n
    integer :: i
    path = ' '
    do i = 1, n
      path(i:i) = name(i)
    end do
  end subroutine

  ! Mode 0 reads a stream, 1 writes one, 2 reads and writes a formatted file.
  integer(c_int) function g_open(unit, name, n, mode) bind(c)
    integer(c_int), value :: unit, n, mode
    character(kind=c_char), intent(in) :: name(*)
    character(len=256) :: file
    integer :: i
    file = ' '
    do i = 1, n
      file(i:i) = name(i)
    end do
    if (mode == 0) then
      open(unit, file=file, status='old', action='read', access='stream', iostat=g_open)
    else if (mode == 1) then
      open(unit, file=file, status='replace', action='write', access='stream', iostat=g_open)
    else
      open(unit, file=file, status='old', action='readwrite', iostat=g_open)
    end if
  end function

  subroutine g_close(unit) bind(c)
    integer(c_int), value :: unit
    close(unit)
  end subroutine

  TIMED(g_access, status = access(trim(path), 'r'))
  TIMED(g_stat, status = stat(trim(path), values))
  TIMED(g_lstat, status = lstat(trim(path), values))
  TIMED_UNIT(g_fstat, status = fstat(unit, values))
  TIMED(g_getcwd, status = getcwd(text))
  TIMED(g_time, status = time())
  TIMED(g_fdate, text = fdate())
  TIMED(g_ctime, text = ctime(1000000000))
  TIMED(g_ltime, call ltime(1000000000, tarray))
  TIMED(g_gmtime, call gmtime(1000000000, tarray))
  TIMED(g_secnds, seconds = secnds(0.0))
  TIMED(g_etime, seconds = etime(times))
  TIMED(g_dtime, seconds = dtime(times))
  TIMED(g_idate, call idate(iarray))
  TIMED(g_itime, call itime(iarray))
  TIMED(g_getpid, status = getpid())
  TIMED(g_getuid, status = getuid())
  TIMED(g_hostnm, status = hostnm(text))
  TIMED(g_getlog, call getlog(text(1:64)))
  TIMED(g_getenv, call getenv('HOME', text(1:256)))
  ! Reads on, back to the start at the end of the file.
  TIMED_UNIT(g_fgetc, status = fgetc(unit, ch); if (status /= 0) call fseek(unit, 0, 0))
  TIMED_UNIT(g_fputc, status = fputc(unit, 'x'))
  TIMED_UNIT(g_fseek, call fseek(unit, 7, 0))
  TIMED_UNIT(g_ftell, status = ftell(unit))
  TIMED_UNIT(g_flush, call flush(unit))
  TIMED_UNIT(g_isatty, flag = isatty(unit))
  TIMED_UNIT(g_ttynam, text(1:64) = ttynam(unit))

end module
