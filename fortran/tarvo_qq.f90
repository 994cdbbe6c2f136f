! Interfaces of the QQ compatibility routines and the run-time's unit operations.
module tarvo_qq
  use, intrinsic :: iso_c_binding, only: c_intptr_t
  implicit none
  private :: c_intptr_t
  public

  ! Search handles of GETFILEINFOQQ: an address-sized integer. FILE_FIRST starts a search;
  ! the search ends with FILE_LAST (normal end) or FILE_ERROR (failure).
  integer, parameter :: FILE_HANDLE_KIND = c_intptr_t
  integer(FILE_HANDLE_KIND), parameter :: FILE_FIRST = -1, FILE_LAST = -2, FILE_ERROR = -3

  ! The permit field of a file-information record.
  integer(4), parameter :: FILE_READONLY = 1, FILE_DEVICE = 4, FILE_DIR = 16

  ! SETFILETIMEQQ: the current time.
  integer(4), parameter :: FILE_CURTIME = -1

  ! The records GETFILEINFOQQ fills (275 bytes, packed).
  type FILE_INFO
    sequence
    integer(4) :: creation, lastwrite, lastaccess, length, permit
    character(len=255) :: name
  end type FILE_INFO

  ! The record of GETFILEINFOQQI8 (279 bytes, packed). Its INTEGER(8) size sits at byte 12,
  ! where no Fortran compiler places an INTEGER(8) component, so it is declared as two
  ! words: read it with TRANSFER(INFO%LENGTH, 0_8).
  type FILE_INFOI8
    sequence
    integer(4) :: creation, lastwrite, lastaccess
    integer(4) :: length(2)
    integer(4) :: permit
    character(len=255) :: name
  end type FILE_INFOI8

  interface
    ! Writes the unit's pending output.
    subroutine flushqq(iunit)
      integer(4), intent(in) :: iunit
    end subroutine flushqq

    ! Flushes the unit and commits it to storage; .TRUE. on success.
    logical(4) function commitqq(iunit)
      integer(4), intent(in) :: iunit
    end function commitqq

    ! The calling thread's last system error number.
    integer(4) function getlasterrorqq()
    end function getlasterrorqq

    ! --- paths -----------------------------------------------------------------------
    ! The absolute, canonical form of NAME (which need not exist); characters stored.
    integer(4) function fullpathqq(name, pathbuf)
      character(len=*), intent(in) :: name
      character(len=*), intent(out) :: pathbuf
    end function fullpathqq

    ! Splits the absolute form of PATH; DIR keeps its final "/", EXT its "."; DRIVE is
    ! blank. Returns the length of the directory.
    integer(4) function splitpathqq(path, drive, dir, name, ext)
      character(len=*), intent(in) :: path
      character(len=*), intent(out) :: drive, dir, name, ext
    end function splitpathqq

    ! --- search ----------------------------------------------------------------------
    ! Looks for FILENAME in its directory, then in each directory listed in the
    ! environment variable VARNAME; the full name found, its length or 0.
    integer(4) function findfileqq(filename, varname, pathbuf)
      character(len=*), intent(in) :: filename, varname
      character(len=*), intent(out) :: pathbuf
    end function findfileqq

    ! --- maintenance -----------------------------------------------------------------
    ! Deletes the regular files matching FILES ("dir/*.tmp"); the number deleted.
    integer(4) function delfilesqq(files)
      character(len=*), intent(in) :: files
    end function delfilesqq

    logical(4) function makedirqq(dirname)
      character(len=*), intent(in) :: dirname
    end function makedirqq

    logical(4) function deldirqq(dirname)
      character(len=*), intent(in) :: dirname
    end function deldirqq

    logical(4) function changedirqq(dirname)
      character(len=*), intent(in) :: dirname
    end function changedirqq

    logical(4) function renamefileqq(oldname, newname)
      character(len=*), intent(in) :: oldname, newname
    end function renamefileqq

    ! Sets access and modification time to TIMEDATE (seconds since 1970), or to now
    ! with FILE_CURTIME.
    logical(4) function setfiletimeqq(filename, timedate)
      character(len=*), intent(in) :: filename
      integer(4), intent(in) :: timedate
    end function setfiletimeqq

    ! Not supported: always .FALSE. with error 22.
    logical(4) function setfileaccessqq(filename, access)
      character(len=*), intent(in) :: filename
      integer(4), intent(in) :: access
    end function setfileaccessqq

    ! --- drives (there are none) -------------------------------------------------------
    ! With a blank first character: the working directory and its length; else 0.
    integer(4) function getdrivedirqq(drivedir)
      character(len=*), intent(inout) :: drivedir
    end function getdrivedirqq

    logical(4) function changedriveqq(drive)
      character(len=*), intent(in) :: drive
    end function changedriveqq

    ! All blank: no drive letters.
    character(len=26) function getdrivesqq()
    end function getdrivesqq
  end interface

  ! One entry per call for the names matching FILES; HANDLE starts as FILE_FIRST.
  ! Returns the length of the name in BUFFER, 0 when the search has ended.
  interface getfileinfoqq
    integer(4) function getfileinfoqq(files, buffer, handle)
      import :: FILE_INFO, FILE_HANDLE_KIND
      character(len=*), intent(in) :: files
      type(FILE_INFO), intent(inout) :: buffer
      integer(FILE_HANDLE_KIND), intent(inout) :: handle
    end function getfileinfoqq

    integer(4) function getfileinfoqqi8(files, buffer, handle)
      import :: FILE_INFOI8, FILE_HANDLE_KIND
      character(len=*), intent(in) :: files
      type(FILE_INFOI8), intent(inout) :: buffer
      integer(FILE_HANDLE_KIND), intent(inout) :: handle
    end function getfileinfoqqi8
  end interface getfileinfoqq

  ! Always .FALSE.: TOTAL and AVAIL are left as they are.
  interface getdrivesizeqq
    logical(4) function getdrivesizeqq(drive, total, avail)
      character(len=*), intent(in) :: drive
      integer(4), intent(inout) :: total, avail
    end function getdrivesizeqq

    logical(4) function getdrivesizeqqi8(drive, total, avail)
      character(len=*), intent(in) :: drive
      integer(8), intent(inout) :: total, avail
    end function getdrivesizeqqi8
  end interface getdrivesizeqq

  include 'qq_fpcontrol.inc'
end module tarvo_qq
