! Interfaces of the classic portability routines. Many of these names are also compiler
! intrinsics: using this module (or declaring the name EXTERNAL) selects the library's.
module tarvo_portlib
  use, intrinsic :: iso_c_binding, only: c_intptr_t
  implicit none
  private :: c_intptr_t
  public

  ! Length of the result of TTYNAM through this interface.
  integer, parameter :: TTYNAM_LEN = 256

  ! Kind of TIME's result: the width of the system's time_t (8 bytes on x86-64, 4 on i386).
  integer, parameter :: TIME_KIND = c_intptr_t

  ! Lengths of the text results of the date and time functions through this interface.
  ! CTIME_LEN leaves out CTIME's closing newline (the cut sets errno to 22; see the docs).
  integer, parameter :: CLOCK_LEN = 8, DATE_LEN = 9, DATE4_LEN = 11, JDATE_LEN = 5, &
                        JDATE4_LEN = 7, FDATE_LEN = 24, CTIME_LEN = 24

  ! Named constants written from the library's C tables.
  include 'tarvo_portlib_generated.inc'

  interface
    ! --- errors and strings --------------------------------------------------------
    ! Last error number recorded by a classic routine.
    integer(4) function ierrno()
    end function ierrno

    ! The calling thread's last system error number.
    integer(4) function getlasterror()
    end function getlasterror

    ! Position of the last non-blank character of STRING, 0 if none.
    integer(4) function lnblnk(string)
      character(len=*), intent(in) :: string
    end function lnblnk

    ! The library's title, version and build date into STRING; returns 3.
    integer(4) function for_lodrik_version(string)
      character(len=*), intent(out) :: string
    end function for_lodrik_version

    ! --- file access and naming ----------------------------------------------------
    ! 0 when NAME may be accessed as MODE asks ("r", "w", "x", blank for existence).
    integer(4) function access(name, mode)
      character(len=*), intent(in) :: name, mode
    end function access

    integer(4) function chdir(dirname)
      character(len=*), intent(in) :: dirname
    end function chdir

    ! MODE is octal ("755") or one symbolic clause ("u+x", "go-w", "a=r").
    integer(4) function chmod(name, mode)
      character(len=*), intent(in) :: name, mode
    end function chmod

    integer(4) function getcwd(dirname)
      character(len=*), intent(out) :: dirname
    end function getcwd

    integer(4) function rename(from, to)
      character(len=*), intent(in) :: from, to
    end function rename

    integer(4) function unlink(name)
      character(len=*), intent(in) :: name
    end function unlink

    logical(4) function isatty(iunit)
      integer(4), intent(in) :: iunit
    end function isatty

    ! Name of the terminal connected to IUNIT, blank when it is not a terminal.
    function ttynam(iunit)
      import :: TTYNAM_LEN
      integer(4), intent(in) :: iunit
      character(len=TTYNAM_LEN) :: ttynam
    end function ttynam

    ! --- time and date --------------------------------------------------------------
    integer(TIME_KIND) function time()
      import :: TIME_KIND
    end function time

    real(8) function rtc()
    end function rtc

    ! X = microseconds since the epoch; the result is 0, or -1 on failure.
    integer(4) function clockx(x)
      real(8), intent(out) :: x
    end function clockx

    ! TV = seconds (low 32 bits) and microseconds; IERR = 0 or -1 (then TV = 0).
    subroutine gettimeofday(tv, ierr)
      integer(4), intent(out) :: tv(2), ierr
    end subroutine gettimeofday

    ! Local time as hh:mm:ss (TIME2 and CLOCK are one routine).
    function time2()
      import :: CLOCK_LEN
      character(len=CLOCK_LEN) :: time2
    end function time2

    function clock()
      import :: CLOCK_LEN
      character(len=CLOCK_LEN) :: clock
    end function clock

    ! dd-Mon-yy
    function date()
      import :: DATE_LEN
      character(len=DATE_LEN) :: date
    end function date

    ! dd-Mon-yyyy (dd-Mon-yy for 1996 to 1999)
    function date4()
      import :: DATE4_LEN
      character(len=DATE4_LEN) :: date4
    end function date4

    ! yyddd and yyyyddd, the day of the year counted from 1.
    function jdate()
      import :: JDATE_LEN
      character(len=JDATE_LEN) :: jdate
    end function jdate

    function jdate4()
      import :: JDATE4_LEN
      character(len=JDATE4_LEN) :: jdate4
    end function jdate4

    ! The current time as "Sun Sep 16 01:03:52 1973".
    function fdate()
      import :: FDATE_LEN
      character(len=FDATE_LEN) :: fdate
    end function fdate


    ! TARRAY: second, minute, hour, day, month (0-11), year - 1900, weekday (0 = Sunday),
    ! day of the year (from 1 in LTIME, from 0 in GMTIME), daylight-saving flag.
    subroutine ltime(stime, tarray)
      integer(4), intent(in) :: stime
      integer(4), intent(out) :: tarray(9)
    end subroutine ltime

    subroutine gmtime(stime, tarray)
      integer(4), intent(in) :: stime
      integer(4), intent(out) :: tarray(9)
    end subroutine gmtime

    ! IARRAY = hour, minute, second.
    subroutine itime(iarray)
      integer(4), intent(out) :: iarray(3)
    end subroutine itime

    ! IARRAY = day, month, year mod 100.
    subroutine idate(iarray)
      integer(4), intent(out) :: iarray(3)
    end subroutine idate

    subroutine idate1(month, day, year)
      integer(4), intent(out) :: month, day, year
    end subroutine idate1

    ! Four-digit years, except 96 to 99 for 1996 to 1999.
    subroutine f_idate4(iarray)
      integer(4), intent(out) :: iarray(3)
    end subroutine f_idate4

    subroutine idate4(month, day, year)
      integer(4), intent(out) :: month, day, year
    end subroutine idate4

    ! Seconds since midnight less X, never negative (X taken before midnight works).
    real(4) function secnds(x)
      real(4), intent(in) :: x
    end function secnds

    ! Seconds since the first call of TIMEF, and since the program started.
    real(8) function timef()
    end function timef

    real(8) function dclock()
    end function dclock

    ! Processor time since the start: TARRAY = user, system; the result is their sum.
    real(4) function etime(tarray)
      real(4), intent(out) :: tarray(2)
    end function etime
  end interface

  ! The date and time as four numbers; INTEGER(4) or INTEGER(2) arguments.
  interface getdat
    subroutine getdat(year, month, day)
      integer(4), intent(out) :: year, month, day
    end subroutine getdat
    subroutine getdati2(year, month, day)
      integer(2), intent(out) :: year, month, day
    end subroutine getdati2
  end interface getdat

  interface gettim
    subroutine gettim(hour, minute, second, hundredths)
      integer(4), intent(out) :: hour, minute, second, hundredths
    end subroutine gettim
    subroutine gettimi2(hour, minute, second, hundredths)
      integer(2), intent(out) :: hour, minute, second, hundredths
    end subroutine gettimi2
  end interface gettim

  ! Setting the clock is not offered: always .FALSE.
  interface setdat
    logical(4) function setdat(year, month, day)
      integer(4), intent(in) :: year, month, day
    end function setdat
    logical(4) function setdati2(year, month, day)
      integer(2), intent(in) :: year, month, day
    end function setdati2
  end interface setdat

  interface settim
    logical(4) function settim(hour, minute, second, hundredths)
      integer(4), intent(in) :: hour, minute, second, hundredths
    end function settim
    logical(4) function settimi2(hour, minute, second, hundredths)
      integer(2), intent(in) :: hour, minute, second, hundredths
    end function settimi2
  end interface settim

  ! Processor time since the previous call (the first call: since the start).
  interface dtime
    real(4) function dtime(tarray)
      real(4), intent(out) :: tarray(2)
    end function dtime
    real(8) function dtimer8(tarray)
      real(8), intent(out) :: tarray(2)
    end function dtimer8
  end interface dtime

  ! --- file status arrays ------------------------------------------------------------
  ! STATB(1:12): device, inode, mode, links, owner, group, special device, size, access,
  ! modification and status-change times, block size. STATB(13) is not written, so an
  ! array of 12 elements serves as well as one of 13. The
  ! INTEGER(4) forms give 34 and a size of -1 for files of 2 GiB and more.
  interface stat
    integer(4) function stat(name, statb)
      character(len=*), intent(in) :: name
      integer(4), intent(inout) :: statb(*)
    end function stat
    integer(4) function stati8(name, statb)
      character(len=*), intent(in) :: name
      integer(8), intent(inout) :: statb(*)
    end function stati8
  end interface stat

  ! As STAT, but a final symbolic link is reported, not followed.
  interface lstat
    integer(4) function lstat(name, statb)
      character(len=*), intent(in) :: name
      integer(4), intent(inout) :: statb(*)
    end function lstat
    integer(4) function lstati8(name, statb)
      character(len=*), intent(in) :: name
      integer(8), intent(inout) :: statb(*)
    end function lstati8
  end interface lstat

  ! The file connected to IUNIT (22 when the unit is not open).
  interface fstat
    integer(4) function fstat(iunit, statb)
      integer(4), intent(in) :: iunit
      integer(4), intent(inout) :: statb(*)
    end function fstat
    integer(4) function fstati8(iunit, statb)
      integer(4), intent(in) :: iunit
      integer(8), intent(inout) :: statb(*)
    end function fstati8
  end interface fstat

  interface
    ! --- process, environment and host -----------------------------------------------
    ! The raw wait status of the shell command (the exit code is status / 256).
    integer(4) function system(command)
      character(len=*), intent(in) :: command
    end function system

    ! VALUE of the variable NAME (which ends at its first blank); blanks if unset.
    subroutine getenv(name, value)
      character(len=*), intent(in) :: name
      character(len=*), intent(out) :: value
    end subroutine getenv

    ! One variable per call whose name begins with PATTERN, then blanks.
    subroutine scanenv(pattern, name, value)
      character(len=*), intent(in) :: pattern
      character(len=*), intent(out) :: name, value
    end subroutine scanenv

    subroutine getlog(name)
      character(len=*), intent(out) :: name
    end subroutine getlog

    ! 0, -1 when the host name was cut to NAME's length, or an error number.
    integer(4) function hostnm(name)
      character(len=*), intent(out) :: name
    end function hostnm

    integer(4) function hostnam(name)
      character(len=*), intent(out) :: name
    end function hostnam

    integer(4) function getpid()
    end function getpid

    integer(4) function getuid()
    end function getuid

    integer(4) function getgid()
    end function getgid

    ! 0, or -1 (the reason in GETLASTERROR).
    integer(4) function kill(pid, signum)
      integer(4), intent(in) :: pid, signum
    end function kill

    subroutine sleep(seconds)
      integer(4), intent(in) :: seconds
    end subroutine sleep

    ! Prints "abort: " and MESSAGE (or "Fortran Abort Called") and ends abnormally.
    subroutine abort(message)
      character(len=*), intent(in), optional :: message
    end subroutine abort

    ! Flushes the Fortran units and ends the program with STATUS (0 when absent).
    subroutine exit(status)
      integer(4), intent(in), optional :: status
    end subroutine exit

    ! --- unit character I/O -----------------------------------------------------------
    ! 0, -1 at end of file (CH unchanged), 22 on error.
    integer(4) function fgetc(iunit, ch)
      integer(4), intent(in) :: iunit
      character(len=1), intent(inout) :: ch
    end function fgetc

    ! From unit 5: 0, or -1 at end of file and on any error.
    integer(4) function getc(ch)
      character(len=1), intent(inout) :: ch
    end function getc

    ! 0 or 22.
    integer(4) function fputc(iunit, ch)
      integer(4), intent(in) :: iunit
      character(len=1), intent(in) :: ch
    end function fputc

    ! To unit 6: 0 or 22.
    integer(4) function putc(ch)
      character(len=1), intent(in) :: ch
    end function putc

    ! The byte position, or a negated error number.
    integer(4) function ftell(iunit)
      integer(4), intent(in) :: iunit
    end function ftell

    integer(8) function ftelli8(iunit)
      integer(4), intent(in) :: iunit
    end function ftelli8

    ! As FTELL, without recording an error.
    integer(4) function getpos(iunit)
      integer(4), intent(in) :: iunit
    end function getpos

    integer(8) function getposi8(iunit)
      integer(4), intent(in) :: iunit
    end function getposi8

    ! Writes the unit's pending output.
    subroutine flush(iunit)
      integer(4), intent(in) :: iunit
    end subroutine flush
  end interface

  ! The time STIME as "Sun Sep 16 01:03:52 1973". STIME is INTEGER(4) or INTEGER(8), so
  ! CTIME(TIME()) works on both architectures (an INTEGER(8) time is taken modulo 2**32).
  interface ctime
    function ctime(stime)
      import :: CTIME_LEN
      integer(4), intent(in) :: stime
      character(len=CTIME_LEN) :: ctime
    end function ctime
    module procedure ctime_i8
  end interface ctime

  ! Command-line forms programs write: GETARG(N, BUFFER [, STATUS]) with INTEGER(2) or
  ! default N and STATUS (STATUS: the argument's length, -1 when there is none), and NARGS(),
  ! the number of words on the command line including the command's name.
  interface getarg
    module procedure getarg_i4, getarg_i2, getarg_status_i4, getarg_status_i2
  end interface getarg

  ! Error texts: the text of an error number the library's routines report, including its
  ! own codes 125-129 (which the system also uses for other errors).
  interface
    subroutine gerror(message)
      character(len=*), intent(out) :: message
    end subroutine gerror
    subroutine perror(prefix)
      character(len=*), intent(in) :: prefix
    end subroutine perror
    subroutine tarvo_errtext(code, message)
      integer(4), intent(in) :: code
      character(len=*), intent(out) :: message
    end subroutine tarvo_errtext
  end interface

  ! Positions a unit: ORIGIN 0 from the start, 1 from the current position, 2 from the
  ! end; 0 or an error number. OFFSET is INTEGER(4) or INTEGER(8).
  interface fseek
    integer(4) function fseek(iunit, offset, origin)
      integer(4), intent(in) :: iunit, offset, origin
    end function fseek
    integer(4) function fseeki8(iunit, offset, origin)
      integer(4), intent(in) :: iunit, origin
      integer(8), intent(in) :: offset
    end function fseeki8
  end interface fseek
  include 'portlib_signal.inc'
  include 'portlib_random.inc'
  include 'portlib_bits.inc'
  include 'portlib_ieee.inc'

contains

  function ctime_i8(stime)
    integer(8), intent(in) :: stime
    character(len=CTIME_LEN) :: ctime_i8
    ctime_i8 = ctime(transfer(stime, 0_4))  ! the low 32 bits (little-endian)
  end function ctime_i8

  ! The local time as hh:mm:ss: the subroutine form CALL TIME(CH) of older programs, under a
  ! name of its own because TIME is the function returning seconds.
  subroutine time_text(text)
    character(len=*), intent(out) :: text
    text = clock()
  end subroutine time_text

  integer(4) function nargs()
    nargs = command_argument_count() + 1
  end function nargs

  subroutine getarg_status_i4(n, buffer, status)
    integer(4), intent(in) :: n
    character(len=*), intent(out) :: buffer
    integer(4), intent(out) :: status
    integer :: length, stat
    call get_command_argument(n, buffer, length, stat)
    status = merge(-1, length, stat > 0 .or. n < 0)
    if (status < 0) buffer = ' '
  end subroutine getarg_status_i4

  subroutine getarg_status_i2(n, buffer, status)
    integer(2), intent(in) :: n
    character(len=*), intent(out) :: buffer
    integer(2), intent(out) :: status
    integer(4) :: full
    call getarg_status_i4(int(n, 4), buffer, full)
    status = int(full, 2)
  end subroutine getarg_status_i2

  subroutine getarg_i4(n, buffer)
    integer(4), intent(in) :: n
    character(len=*), intent(out) :: buffer
    integer(4) :: status
    call getarg_status_i4(n, buffer, status)
  end subroutine getarg_i4

  subroutine getarg_i2(n, buffer)
    integer(2), intent(in) :: n
    character(len=*), intent(out) :: buffer
    integer(4) :: status
    call getarg_status_i4(int(n, 4), buffer, status)
  end subroutine getarg_i2
end module tarvo_portlib
