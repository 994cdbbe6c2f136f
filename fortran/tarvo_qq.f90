! Interfaces of the QQ compatibility routines and the run-time's unit operations.
module tarvo_qq
  use, intrinsic :: iso_c_binding, only: c_intptr_t
  implicit none
  private :: c_intptr_t
  public

  ! Search handles of GETFILEINFOQQ: an address-sized integer. FILE_FIRST starts a search;
  ! the search ends with FILE_LAST (normal end) or FILE_ERROR (failure).
  integer, parameter :: FILE_HANDLE_KIND = c_intptr_t
  ! FILE_FIRST, FILE_LAST, FILE_ERROR; the permit bits FILE_READONLY, FILE_DEVICE, FILE_DIR;
  ! FILE_CURTIME (SETFILETIMEQQ: the current time); the error numbers ERR_NOENT ... as the
  ! QQ routines record them; each also under its dollar-sign name (FILE$FIRST, ERR$NOENT).
  include 'tarvo_qq_generated.inc'

  ! The drive routines' name of the current drive: a blank (the system has no drive letters).
  character(len=1), parameter :: FILE_CURDRIVE = ' ', FILE$CURDRIVE = FILE_CURDRIVE

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

  ! The same records under the names existing programs write, in the natural layout, so
  ! that INFO%LENGTH of FILE$INFOI8 is one INTEGER(8). GETFILEINFOQQ converts.
  type FILE$INFO
    integer(4) :: creation, lastwrite, lastaccess, length, permit
    character(len=255) :: name
  end type FILE$INFO

  type FILE$INFOI8
    integer(4) :: creation, lastwrite, lastaccess
    integer(8) :: length
    integer(4) :: permit
    character(len=255) :: name
  end type FILE$INFOI8

  ! The other width of a search handle or a sort count (programs declare both widths).
  integer, parameter, private :: OTHER_HANDLE_KIND = merge(4, 8, FILE_HANDLE_KIND == 8)
  private :: next_natural, next_natural_i8, handle_value, store_handle

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
    module procedure info_other_handle, infoi8_other_handle
    module procedure info_natural, infoi8_natural
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
  include 'qq_sort.inc'
  include 'qq_process.inc'
  include 'qq_signal.inc'
  include 'qq_timepack.inc'
  include 'qq_fpcontrol.inc'

contains

  integer(4) function info_other_handle(files, buffer, handle)
    character(len=*), intent(in) :: files
    type(FILE_INFO), intent(inout) :: buffer
    integer(OTHER_HANDLE_KIND), intent(inout) :: handle
    integer(FILE_HANDLE_KIND) :: h
    h = handle
    info_other_handle = getfileinfoqq(files, buffer, h)
    handle = int(h, OTHER_HANDLE_KIND)
  end function info_other_handle

  integer(4) function infoi8_other_handle(files, buffer, handle)
    character(len=*), intent(in) :: files
    type(FILE_INFOI8), intent(inout) :: buffer
    integer(OTHER_HANDLE_KIND), intent(inout) :: handle
    integer(FILE_HANDLE_KIND) :: h
    h = handle
    infoi8_other_handle = getfileinfoqqi8(files, buffer, h)
    handle = int(h, OTHER_HANDLE_KIND)
  end function infoi8_other_handle

  ! The natural records: the packed record is filled and copied field by field.
  integer(4) function next_natural(files, buffer, handle)
    character(len=*), intent(in) :: files
    type(FILE$INFO), intent(inout) :: buffer
    integer(FILE_HANDLE_KIND), intent(inout) :: handle
    type(FILE_INFO) :: packed
    packed = FILE_INFO(buffer%creation, buffer%lastwrite, buffer%lastaccess, buffer%length, &
                       buffer%permit, buffer%name)
    next_natural = getfileinfoqq(files, packed, handle)
    buffer = FILE$INFO(packed%creation, packed%lastwrite, packed%lastaccess, packed%length, &
                       packed%permit, packed%name)
  end function next_natural

  integer(4) function next_natural_i8(files, buffer, handle)
    character(len=*), intent(in) :: files
    type(FILE$INFOI8), intent(inout) :: buffer
    integer(FILE_HANDLE_KIND), intent(inout) :: handle
    type(FILE_INFOI8) :: packed
    packed = FILE_INFOI8(buffer%creation, buffer%lastwrite, buffer%lastaccess, &
                         transfer(buffer%length, [0_4, 0_4]), buffer%permit, buffer%name)
    next_natural_i8 = getfileinfoqqi8(files, packed, handle)
    buffer = FILE$INFOI8(packed%creation, packed%lastwrite, packed%lastaccess, &
                         transfer(packed%length, 0_8), packed%permit, packed%name)
  end function next_natural_i8

  ! The natural records take a handle of either width.
  integer(4) function info_natural(files, buffer, handle)
    character(len=*), intent(in) :: files
    type(FILE$INFO), intent(inout) :: buffer
    class(*), intent(inout) :: handle
    integer(FILE_HANDLE_KIND) :: h
    h = handle_value(handle)
    info_natural = next_natural(files, buffer, h)
    call store_handle(handle, h)
  end function info_natural

  integer(4) function infoi8_natural(files, buffer, handle)
    character(len=*), intent(in) :: files
    type(FILE$INFOI8), intent(inout) :: buffer
    class(*), intent(inout) :: handle
    integer(FILE_HANDLE_KIND) :: h
    h = handle_value(handle)
    infoi8_natural = next_natural_i8(files, buffer, h)
    call store_handle(handle, h)
  end function infoi8_natural

  integer(FILE_HANDLE_KIND) function handle_value(handle)
    class(*), intent(in) :: handle
    handle_value = FILE_ERROR
    select type (handle)
    type is (integer(4))
      handle_value = handle
    type is (integer(8))
      handle_value = int(handle, FILE_HANDLE_KIND)
    end select
  end function handle_value

  subroutine store_handle(handle, h)
    class(*), intent(inout) :: handle
    integer(FILE_HANDLE_KIND), intent(in) :: h
    select type (handle)
    type is (integer(4))
      handle = int(h, 4)
    type is (integer(8))
      handle = h
    end select
  end subroutine store_handle

  subroutine sortqq_other_count(adrarray, count, size)
    integer(c_intptr_t), intent(in) :: adrarray
    integer(OTHER_HANDLE_KIND), intent(inout) :: count
    integer(4), intent(in) :: size
    integer(c_intptr_t) :: full
    full = count
    call sortqq(adrarray, full, size)
    count = int(full, OTHER_HANDLE_KIND)
  end subroutine sortqq_other_count

  integer(c_intptr_t) function bsearchqq_other_length(adrkey, adrarray, length, size)
    integer(c_intptr_t), intent(in) :: adrkey, adrarray
    integer(OTHER_HANDLE_KIND), intent(in) :: length
    integer(4), intent(in) :: size
    bsearchqq_other_length = bsearchqq(adrkey, adrarray, int(length, c_intptr_t), size)
  end function bsearchqq_other_length

  ! The control and status words in INTEGER(4) variables: the 16 bits, zero-extended.
  subroutine fpword_out_i4(control)
    integer(4), intent(out) :: control
    integer(2) :: word
    call getcontrolfpqq(word)
    control = iand(int(word, 4), 65535)
  end subroutine fpword_out_i4

  subroutine fpword_in_i4(control)
    integer(4), intent(in) :: control
    call setcontrolfpqq(int(iand(control, 65535) - merge(65536, 0, btest(control, 15)), 2))
  end subroutine fpword_in_i4

  subroutine fpstatus_out_i4(status)
    integer(4), intent(out) :: status
    integer(2) :: word
    call getstatusfpqq(word)
    status = iand(int(word, 4), 65535)
  end subroutine fpstatus_out_i4
end module tarvo_qq
