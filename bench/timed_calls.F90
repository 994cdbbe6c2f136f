! Each routine called n times in a loop, compiled twice from this one text: without the
! library's modules, each name below is gfortran's own intrinsic (entry points g_*); with
! -DLIBRARY_SIDE the same loops use the library's module and call the library (l_*). Both
! sides are thus the same Fortran loop around a different routine, as a program would have.
#ifdef LIBRARY_SIDE
#define SIDE(name) l_/**/name
! The library's FSEEK is a function; gfortran's a subroutine.
#define SEEK(unit, offset, origin) status = fseek(unit, offset, origin)
#else
#define SIDE(name) g_/**/name
#define SEEK(unit, offset, origin) call fseek(unit, offset, origin)
#endif
#define TIMED(NAME, BODY) \
  subroutine SIDE(NAME)(n) bind(c); integer(c_int), value :: n; integer :: i; do i = 1, n; BODY; end do; end subroutine
#define TIMED_UNIT(NAME, BODY) \
  subroutine SIDE(NAME)(n, unit) bind(c); integer(c_int), value :: n, unit; integer :: i; do i = 1, n; BODY; end do; end subroutine
module SIDE(side)
  use iso_c_binding
#ifdef LIBRARY_SIDE
  use tarvo_portlib
#endif
  implicit none
  character(len=256), save :: path = ' '
  ! What the calls return: kept here so that no call can be left out.
  integer, save :: status, values(13), tarray(9), iarray(3)
  real, save :: seconds, times(2)
  character(len=1024), save :: text
  character, save :: ch
  logical, save :: flag
contains

  subroutine SIDE(set_path)(name, n) bind(c)
    character(kind=c_char), intent(in) :: name(*)
    integer(c_int), value :: n
    integer :: i
    path = ' '
    do i = 1, n
      path(i:i) = name(i)
    end do
  end subroutine

  ! Mode 0 reads a stream, 1 writes one, 2 reads and writes a formatted file.
  integer(c_int) function SIDE(open)(unit, name, n, mode) bind(c)
    integer(c_int), value :: unit, n, mode
    character(kind=c_char), intent(in) :: name(*)
    character(len=256) :: file
    integer :: i
    file = ' '
    do i = 1, n
      file(i:i) = name(i)
    end do
    if (mode == 0) then
      open(unit, file=file, status='old', action='read', access='stream', iostat=SIDE(open))
    else if (mode == 1) then
      open(unit, file=file, status='replace', action='write', access='stream', iostat=SIDE(open))
    else
      open(unit, file=file, status='old', action='readwrite', iostat=SIDE(open))
    end if
  end function

  subroutine SIDE(close)(unit) bind(c)
    integer(c_int), value :: unit
    close(unit)
  end subroutine

  TIMED(access, status = access(trim(path), 'r'))
  TIMED(stat, status = stat(trim(path), values))
  TIMED(lstat, status = lstat(trim(path), values))
  TIMED_UNIT(fstat, status = fstat(unit, values))
  TIMED(getcwd, status = getcwd(text))
  TIMED(time, status = time())
  TIMED(fdate, text = fdate())
  TIMED(ctime, text = ctime(1000000000))
  TIMED(ltime, call ltime(1000000000, tarray))
  TIMED(gmtime, call gmtime(1000000000, tarray))
  TIMED(secnds, seconds = secnds(0.0))
  TIMED(etime, seconds = etime(times))
  TIMED(dtime, seconds = dtime(times))
  TIMED(idate, call idate(iarray))
  TIMED(itime, call itime(iarray))
  TIMED(getpid, status = getpid())
  TIMED(getuid, status = getuid())
  TIMED(hostnm, status = hostnm(text))
  TIMED(getlog, call getlog(text(1:64)))
  TIMED(getenv, call getenv('HOME', text(1:256)))
  ! Reads on, back to the start at the end of the file.
  TIMED_UNIT(fgetc, status = fgetc(unit, ch); if (status /= 0) SEEK(unit, 0, 0))
  TIMED_UNIT(fputc, status = fputc(unit, 'x'))
  TIMED_UNIT(fseek, SEEK(unit, 7, 0))
  TIMED_UNIT(ftell, status = ftell(unit))
  TIMED_UNIT(flush, call flush(unit))
  TIMED_UNIT(isatty, flag = isatty(unit))
  TIMED_UNIT(ttynam, text(1:64) = ttynam(unit))

end module
