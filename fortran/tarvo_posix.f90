! Interfaces of the POSIX binding (PXF routines).
module tarvo_posix
  implicit none
  public

  ! The binding's own error codes (also answered by PXFCONST).
  integer(4), parameter :: EARRAYLEN = 125, ENONAME = 126, ENOHANDLE = 127, ETRUNC = 129, EEND = -1

  ! Structure type names for PXFSTRUCTCREATE and PXFSTRUCTCOPY.
  character(len=*), parameter :: PXF_SIGSET = 'sigset', PXF_SIGACTION = 'sigaction', &
    PXF_UTSNAME = 'utsname', PXF_TMS = 'tms', PXF_DIRENT = 'dirent', PXF_STAT = 'stat', &
    PXF_UTIMBUF = 'utimbuf', PXF_FLOCK = 'flock', PXF_TERMIOS = 'termios', PXF_GROUP = 'group', &
    PXF_PASSWD = 'passwd'

  interface
    ! Length of STRING without trailing blanks.
    integer(4) function ipxflentrim(string)
      character(len=*), intent(in) :: string
    end function ipxflentrim

    ! Compares I1 and I2 as unsigned numbers: ICMPR is -1, 0 or 1; IDIFF (also the
    ! result) is the distance between them.
    integer(4) function pxfucompare(i1, i2, icmpr, idiff)
      integer(4), intent(in) :: i1, i2
      integer(4), intent(out) :: icmpr, idiff
    end function pxfucompare

    ! --- constants ------------------------------------------------------------------
    ! The value of the constant CONSTNAME (cut at its first blank, any case); IERROR is
    ! ENONAME and IVAL -1 for a name the system does not have.
    subroutine pxfconst(constname, ival, ierror)
      character(len=*), intent(in) :: constname
      integer(4), intent(inout) :: ival
      integer(4), intent(out) :: ierror
    end subroutine pxfconst

    ! The value, or -1 for an unknown name (use PXFCONST for constants whose value is -1).
    integer(4) function ipxfconst(constname)
      character(len=*), intent(in) :: constname
    end function ipxfconst

    logical(4) function pxfisconst(constname)
      character(len=*), intent(in) :: constname
    end function pxfisconst

    ! --- structure instances --------------------------------------------------------
    subroutine pxfstructcreate(structname, jhandle, ierror)
      character(len=*), intent(in) :: structname
      integer(4), intent(inout) :: jhandle
      integer(4), intent(out) :: ierror
    end subroutine pxfstructcreate

    ! Copies the instance JHANDLE1 into JHANDLE2, both of the type STRUCTNAME.
    subroutine pxfstructcopy(structname, jhandle1, jhandle2, ierror)
      character(len=*), intent(in) :: structname
      integer(4), intent(in) :: jhandle1, jhandle2
      integer(4), intent(out) :: ierror
    end subroutine pxfstructcopy

    ! Releases the instance; JHANDLE becomes 0.
    subroutine pxfstructfree(jhandle, ierror)
      integer(4), intent(inout) :: jhandle
      integer(4), intent(out) :: ierror
    end subroutine pxfstructfree

    ! --- field access ---------------------------------------------------------------
    subroutine pxfintget(jhandle, compname, value, ierror)
      integer(4), intent(in) :: jhandle
      character(len=*), intent(in) :: compname
      integer(4), intent(inout) :: value
      integer(4), intent(out) :: ierror
    end subroutine pxfintget

    subroutine pxfintset(jhandle, compname, value, ierror)
      integer(4), intent(in) :: jhandle
      character(len=*), intent(in) :: compname
      integer(4), intent(in) :: value
      integer(4), intent(out) :: ierror
    end subroutine pxfintset

    subroutine pxfint8get(jhandle, compname, value, ierror)
      integer(4), intent(in) :: jhandle
      character(len=*), intent(in) :: compname
      integer(8), intent(inout) :: value
      integer(4), intent(out) :: ierror
    end subroutine pxfint8get

    subroutine pxfint8set(jhandle, compname, value, ierror)
      integer(4), intent(in) :: jhandle
      character(len=*), intent(in) :: compname
      integer(8), intent(in) :: value
      integer(4), intent(out) :: ierror
    end subroutine pxfint8set

    ! IALEN elements of an array field (c_cc); above the field's length IALEN is cut to it
    ! and IERROR is EARRAYLEN.
    subroutine pxfaintget(jhandle, compname, value, ialen, ierror)
      integer(4), intent(in) :: jhandle
      character(len=*), intent(in) :: compname
      integer(4), intent(inout) :: value(*)
      integer(4), intent(inout) :: ialen
      integer(4), intent(out) :: ierror
    end subroutine pxfaintget

    subroutine pxfaintset(jhandle, compname, value, ialen, ierror)
      integer(4), intent(in) :: jhandle
      character(len=*), intent(in) :: compname
      integer(4), intent(in) :: value(*)
      integer(4), intent(inout) :: ialen
      integer(4), intent(out) :: ierror
    end subroutine pxfaintset

    subroutine pxfaint8get(jhandle, compname, value, ialen, ierror)
      integer(4), intent(in) :: jhandle
      character(len=*), intent(in) :: compname
      integer(8), intent(inout) :: value(*)
      integer(4), intent(inout) :: ialen
      integer(4), intent(out) :: ierror
    end subroutine pxfaint8get

    subroutine pxfaint8set(jhandle, compname, value, ialen, ierror)
      integer(4), intent(in) :: jhandle
      character(len=*), intent(in) :: compname
      integer(8), intent(in) :: value(*)
      integer(4), intent(inout) :: ialen
      integer(4), intent(out) :: ierror
    end subroutine pxfaint8set

    ! Element INDEX (from 1) of an array field.
    subroutine pxfeintget(jhandle, compname, index, value, ierror)
      integer(4), intent(in) :: jhandle
      character(len=*), intent(in) :: compname
      integer(4), intent(in) :: index
      integer(4), intent(inout) :: value
      integer(4), intent(out) :: ierror
    end subroutine pxfeintget

    subroutine pxfeintset(jhandle, compname, index, value, ierror)
      integer(4), intent(in) :: jhandle
      character(len=*), intent(in) :: compname
      integer(4), intent(in) :: index
      integer(4), intent(in) :: value
      integer(4), intent(out) :: ierror
    end subroutine pxfeintset

    ! The text of a field; ILEN receives its full length, IERROR is ETRUNC when VALUE is
    ! too short for it.
    subroutine pxfstrget(jhandle, compname, value, ilen, ierror)
      integer(4), intent(in) :: jhandle
      character(len=*), intent(in) :: compname
      character(len=*), intent(inout) :: value
      integer(4), intent(out) :: ilen, ierror
    end subroutine pxfstrget

    ! Stores the first ILEN characters of VALUE, or VALUE less its trailing blanks when
    ! ILEN is 0.
    subroutine pxfstrset(jhandle, compname, value, ilen, ierror)
      integer(4), intent(in) :: jhandle
      character(len=*), intent(in) :: compname
      character(len=*), intent(in) :: value
      integer(4), intent(in) :: ilen
      integer(4), intent(out) :: ierror
    end subroutine pxfstrset

    ! Member INDEX (from 1 to gr_nmem) of the gr_mem list of a "group" instance.
    subroutine pxfestrget(jhandle, compname, index, value, ilen, ierror)
      integer(4), intent(in) :: jhandle
      character(len=*), intent(in) :: compname
      integer(4), intent(in) :: index
      character(len=*), intent(inout) :: value
      integer(4), intent(out) :: ilen, ierror
    end subroutine pxfestrget

    ! A handle for the procedure SUB (an INTEGER FUNCTION or SUBROUTINE of one INTEGER
    ! argument); the same procedure always gets the same handle.
    subroutine pxfgetsubhandle(sub, jhandle, ierror)
      external :: sub
      integer(4), intent(out) :: jhandle, ierror
    end subroutine pxfgetsubhandle

    ! Calls the procedure JHANDLE names with IVAL.
    subroutine pxfcallsubhandle(jhandle, ival, ierror)
      integer(4), intent(in) :: jhandle
      integer(4), intent(inout) :: ival
      integer(4), intent(out) :: ierror
    end subroutine pxfcallsubhandle

    ! --- accessors of kinds no structure has: each answers IERROR = ENONAME ----------
    subroutine pxfrealget(jhandle, compname, value, ierror)
      integer(4), intent(in) :: jhandle
      character(len=*), intent(in) :: compname
      real(4), intent(inout) :: value
      integer(4), intent(out) :: ierror
    end subroutine pxfrealget
    subroutine pxfrealset(jhandle, compname, value, ierror)
      integer(4), intent(in) :: jhandle
      character(len=*), intent(in) :: compname
      real(4), intent(inout) :: value
      integer(4), intent(out) :: ierror
    end subroutine pxfrealset
    subroutine pxfarealget(jhandle, compname, value, ialen, ierror)
      integer(4), intent(in) :: jhandle
      character(len=*), intent(in) :: compname
      integer(4), intent(inout) :: ialen
      real(4), intent(inout) :: value(*)
      integer(4), intent(out) :: ierror
    end subroutine pxfarealget
    subroutine pxfarealset(jhandle, compname, value, ialen, ierror)
      integer(4), intent(in) :: jhandle
      character(len=*), intent(in) :: compname
      integer(4), intent(inout) :: ialen
      real(4), intent(inout) :: value(*)
      integer(4), intent(out) :: ierror
    end subroutine pxfarealset
    subroutine pxferealget(jhandle, compname, index, value, ierror)
      integer(4), intent(in) :: jhandle
      character(len=*), intent(in) :: compname
      integer(4), intent(in) :: index
      real(4), intent(inout) :: value
      integer(4), intent(out) :: ierror
    end subroutine pxferealget
    subroutine pxferealset(jhandle, compname, index, value, ierror)
      integer(4), intent(in) :: jhandle
      character(len=*), intent(in) :: compname
      integer(4), intent(in) :: index
      real(4), intent(inout) :: value
      integer(4), intent(out) :: ierror
    end subroutine pxferealset
    subroutine pxfdblget(jhandle, compname, value, ierror)
      integer(4), intent(in) :: jhandle
      character(len=*), intent(in) :: compname
      real(8), intent(inout) :: value
      integer(4), intent(out) :: ierror
    end subroutine pxfdblget
    subroutine pxfdblset(jhandle, compname, value, ierror)
      integer(4), intent(in) :: jhandle
      character(len=*), intent(in) :: compname
      real(8), intent(inout) :: value
      integer(4), intent(out) :: ierror
    end subroutine pxfdblset
    subroutine pxfadblget(jhandle, compname, value, ialen, ierror)
      integer(4), intent(in) :: jhandle
      character(len=*), intent(in) :: compname
      integer(4), intent(inout) :: ialen
      real(8), intent(inout) :: value(*)
      integer(4), intent(out) :: ierror
    end subroutine pxfadblget
    subroutine pxfadblset(jhandle, compname, value, ialen, ierror)
      integer(4), intent(in) :: jhandle
      character(len=*), intent(in) :: compname
      integer(4), intent(inout) :: ialen
      real(8), intent(inout) :: value(*)
      integer(4), intent(out) :: ierror
    end subroutine pxfadblset
    subroutine pxfedblget(jhandle, compname, index, value, ierror)
      integer(4), intent(in) :: jhandle
      character(len=*), intent(in) :: compname
      integer(4), intent(in) :: index
      real(8), intent(inout) :: value
      integer(4), intent(out) :: ierror
    end subroutine pxfedblget
    subroutine pxfedblset(jhandle, compname, index, value, ierror)
      integer(4), intent(in) :: jhandle
      character(len=*), intent(in) :: compname
      integer(4), intent(in) :: index
      real(8), intent(inout) :: value
      integer(4), intent(out) :: ierror
    end subroutine pxfedblset
    subroutine pxflgclget(jhandle, compname, value, ierror)
      integer(4), intent(in) :: jhandle
      character(len=*), intent(in) :: compname
      logical(4), intent(inout) :: value
      integer(4), intent(out) :: ierror
    end subroutine pxflgclget
    subroutine pxflgclset(jhandle, compname, value, ierror)
      integer(4), intent(in) :: jhandle
      character(len=*), intent(in) :: compname
      logical(4), intent(inout) :: value
      integer(4), intent(out) :: ierror
    end subroutine pxflgclset
    subroutine pxfalgclget(jhandle, compname, value, ialen, ierror)
      integer(4), intent(in) :: jhandle
      character(len=*), intent(in) :: compname
      integer(4), intent(inout) :: ialen
      logical(4), intent(inout) :: value(*)
      integer(4), intent(out) :: ierror
    end subroutine pxfalgclget
    subroutine pxfalgclset(jhandle, compname, value, ialen, ierror)
      integer(4), intent(in) :: jhandle
      character(len=*), intent(in) :: compname
      integer(4), intent(inout) :: ialen
      logical(4), intent(inout) :: value(*)
      integer(4), intent(out) :: ierror
    end subroutine pxfalgclset
    subroutine pxfelgclget(jhandle, compname, index, value, ierror)
      integer(4), intent(in) :: jhandle
      character(len=*), intent(in) :: compname
      integer(4), intent(in) :: index
      logical(4), intent(inout) :: value
      integer(4), intent(out) :: ierror
    end subroutine pxfelgclget
    subroutine pxfelgclset(jhandle, compname, index, value, ierror)
      integer(4), intent(in) :: jhandle
      character(len=*), intent(in) :: compname
      integer(4), intent(in) :: index
      logical(4), intent(inout) :: value
      integer(4), intent(out) :: ierror
    end subroutine pxfelgclset
    subroutine pxfcharget(jhandle, compname, value, ierror)
      integer(4), intent(in) :: jhandle
      character(len=*), intent(in) :: compname
      character(len=*), intent(inout) :: value
      integer(4), intent(out) :: ierror
    end subroutine pxfcharget
    subroutine pxfcharset(jhandle, compname, value, ierror)
      integer(4), intent(in) :: jhandle
      character(len=*), intent(in) :: compname
      character(len=*), intent(inout) :: value
      integer(4), intent(out) :: ierror
    end subroutine pxfcharset
    subroutine pxfacharget(jhandle, compname, value, ialen, ierror)
      integer(4), intent(in) :: jhandle
      character(len=*), intent(in) :: compname
      integer(4), intent(inout) :: ialen
      character(len=*), intent(inout) :: value(*)
      integer(4), intent(out) :: ierror
    end subroutine pxfacharget
    subroutine pxfacharset(jhandle, compname, value, ialen, ierror)
      integer(4), intent(in) :: jhandle
      character(len=*), intent(in) :: compname
      integer(4), intent(inout) :: ialen
      character(len=*), intent(inout) :: value(*)
      integer(4), intent(out) :: ierror
    end subroutine pxfacharset
    subroutine pxfecharget(jhandle, compname, index, value, ierror)
      integer(4), intent(in) :: jhandle
      character(len=*), intent(in) :: compname
      integer(4), intent(in) :: index
      character(len=*), intent(inout) :: value
      integer(4), intent(out) :: ierror
    end subroutine pxfecharget
    subroutine pxfecharset(jhandle, compname, index, value, ierror)
      integer(4), intent(in) :: jhandle
      character(len=*), intent(in) :: compname
      integer(4), intent(in) :: index
      character(len=*), intent(inout) :: value
      integer(4), intent(out) :: ierror
    end subroutine pxfecharset
    subroutine pxfeint8get(jhandle, compname, index, value, ierror)
      integer(4), intent(in) :: jhandle
      character(len=*), intent(in) :: compname
      integer(4), intent(in) :: index
      integer(8), intent(inout) :: value
      integer(4), intent(out) :: ierror
    end subroutine pxfeint8get
    subroutine pxfeint8set(jhandle, compname, index, value, ierror)
      integer(4), intent(in) :: jhandle
      character(len=*), intent(in) :: compname
      integer(4), intent(in) :: index
      integer(8), intent(inout) :: value
      integer(4), intent(out) :: ierror
    end subroutine pxfeint8set
    subroutine pxfastrget(jhandle, compname, value, ilen, ialen, ierror)
      integer(4), intent(in) :: jhandle
      character(len=*), intent(in) :: compname
      character(len=*), intent(inout) :: value(*)
      integer(4), intent(inout) :: ilen, ialen
      integer(4), intent(out) :: ierror
    end subroutine pxfastrget
    subroutine pxfastrset(jhandle, compname, value, ilen, ialen, ierror)
      integer(4), intent(in) :: jhandle
      character(len=*), intent(in) :: compname
      character(len=*), intent(inout) :: value(*)
      integer(4), intent(inout) :: ilen, ialen
      integer(4), intent(out) :: ierror
    end subroutine pxfastrset
    subroutine pxfestrset(jhandle, compname, index, value, ilen, ierror)
      integer(4), intent(in) :: jhandle
      character(len=*), intent(in) :: compname
      integer(4), intent(in) :: index
      character(len=*), intent(in) :: value
      integer(4), intent(in) :: ilen
      integer(4), intent(out) :: ierror
    end subroutine pxfestrset
  end interface
end module tarvo_posix
