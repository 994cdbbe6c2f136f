! Interfaces of the classic portability routines. Many of these names are also compiler
! intrinsics: using this module (or declaring the name EXTERNAL) selects the library's.
module tarvo_portlib
  implicit none
  public

  ! Length of the result of TTYNAM through this interface.
  integer, parameter :: TTYNAM_LEN = 256

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
  end interface
end module tarvo_portlib
