! Interfaces of the POSIX binding (PXF routines).
module tarvo_posix
  implicit none
  public

  ! The binding's own error codes (also answered by PXFCONST, except EENDDIR, the end of a
  ! directory stream), and the interfaces of the accessors of kinds no structure has.
  include 'tarvo_posix_generated.inc'

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

    ! --- files and directories ------------------------------------------------------
    ! The path routines take PATH and its length ILEN: with ILEN 0 the path is PATH less
    ! trailing white space, otherwise its first ILEN characters. IERROR is 0 or errno.
    subroutine pxfopen(path, ilen, iopenflag, imode, ifildes, ierror)
      character(len=*), intent(in) :: path
      integer(4), intent(in) :: ilen, iopenflag, imode
      integer(4), intent(out) :: ifildes, ierror
    end subroutine pxfopen

    subroutine pxfcreat(path, ilen, imode, ifildes, ierror)
      character(len=*), intent(in) :: path
      integer(4), intent(in) :: ilen, imode
      integer(4), intent(out) :: ifildes, ierror
    end subroutine pxfcreat

    subroutine pxfchdir(path, ilen, ierror)
      character(len=*), intent(in) :: path
      integer(4), intent(in) :: ilen
      integer(4), intent(out) :: ierror
    end subroutine pxfchdir

    subroutine pxfmkdir(path, ilen, imode, ierror)
      character(len=*), intent(in) :: path
      integer(4), intent(in) :: ilen, imode
      integer(4), intent(out) :: ierror
    end subroutine pxfmkdir

    subroutine pxfrmdir(path, ilen, ierror)
      character(len=*), intent(in) :: path
      integer(4), intent(in) :: ilen
      integer(4), intent(out) :: ierror
    end subroutine pxfrmdir

    subroutine pxfunlink(path, ilen, ierror)
      character(len=*), intent(in) :: path
      integer(4), intent(in) :: ilen
      integer(4), intent(out) :: ierror
    end subroutine pxfunlink

    subroutine pxfaccess(path, ilen, iamode, ierror)
      character(len=*), intent(in) :: path
      integer(4), intent(in) :: ilen, iamode
      integer(4), intent(out) :: ierror
    end subroutine pxfaccess

    subroutine pxfchmod(path, ilen, imode, ierror)
      character(len=*), intent(in) :: path
      integer(4), intent(in) :: ilen, imode
      integer(4), intent(out) :: ierror
    end subroutine pxfchmod

    subroutine pxflink(existing, lenexist, new, lennew, ierror)
      character(len=*), intent(in) :: existing, new
      integer(4), intent(in) :: lenexist, lennew
      integer(4), intent(out) :: ierror
    end subroutine pxflink

    subroutine pxfrename(old, lenold, new, lennew, ierror)
      character(len=*), intent(in) :: old, new
      integer(4), intent(in) :: lenold, lennew
      integer(4), intent(out) :: ierror
    end subroutine pxfrename

    ! Status of PATH into the "stat" instance JSTAT.
    subroutine pxfstat(path, ilen, jstat, ierror)
      character(len=*), intent(in) :: path
      integer(4), intent(in) :: ilen, jstat
      integer(4), intent(out) :: ierror
    end subroutine pxfstat

    ! Times from the "utimbuf" instance JUTIMBUF, or now when JUTIMBUF is 0. PATH ends at
    ! its first blank; ILEN is not used.
    subroutine pxfutime(path, ilen, jutimbuf, ierror)
      character(len=*), intent(in) :: path
      integer(4), intent(in) :: ilen, jutimbuf
      integer(4), intent(out) :: ierror
    end subroutine pxfutime

    ! The limit NAME (a _PC_ constant) of PATH; ILEN may not exceed len(PATH).
    subroutine pxfpathconf(path, ilen, name, ival, ierror)
      character(len=*), intent(in) :: path
      integer(4), intent(in) :: ilen, name
      integer(4), intent(out) :: ival, ierror
    end subroutine pxfpathconf

    ! Directory streams: IDIRID names the stream until PXFCLOSEDIR sets it to 0. Each
    ! PXFREADDIR puts the next name in the "dirent" instance JDIRENT (field d_name); at the
    ! end IERROR is EENDDIR.
    subroutine pxfopendir(dirname, lendirname, idirid, ierror)
      character(len=*), intent(in) :: dirname
      integer(4), intent(in) :: lendirname
      integer(4), intent(out) :: idirid, ierror
    end subroutine pxfopendir

    subroutine pxfreaddir(idirid, jdirent, ierror)
      integer(4), intent(in) :: idirid, jdirent
      integer(4), intent(out) :: ierror
    end subroutine pxfreaddir

    subroutine pxfrewinddir(idirid, ierror)
      integer(4), intent(in) :: idirid
      integer(4), intent(out) :: ierror
    end subroutine pxfrewinddir

    subroutine pxfclosedir(idirid, ierror)
      integer(4), intent(inout) :: idirid
      integer(4), intent(out) :: ierror
    end subroutine pxfclosedir

    ! The working directory; ILEN receives its length (0 and ETRUNC when BUF is too short).
    subroutine pxfgetcwd(buf, ilen, ierror)
      character(len=*), intent(inout) :: buf
      integer(4), intent(out) :: ilen, ierror
    end subroutine pxfgetcwd

    subroutine pxfumask(icmask, iprevcmask, ierror)
      integer(4), intent(in) :: icmask
      integer(4), intent(out) :: iprevcmask, ierror
    end subroutine pxfumask

    subroutine pxffstat(ifildes, jstat, ierror)
      integer(4), intent(in) :: ifildes, jstat
      integer(4), intent(out) :: ierror
    end subroutine pxffstat

    subroutine pxffpathconf(ifildes, name, ival, ierror)
      integer(4), intent(in) :: ifildes, name
      integer(4), intent(out) :: ival, ierror
    end subroutine pxffpathconf

    ! --- descriptors ----------------------------------------------------------------
    subroutine pxfdup(ifildes, ifid, ierror)
      integer(4), intent(in) :: ifildes
      integer(4), intent(out) :: ifid, ierror
    end subroutine pxfdup

    subroutine pxfdup2(ifildes, ifildes2, ierror)
      integer(4), intent(in) :: ifildes, ifildes2
      integer(4), intent(out) :: ierror
    end subroutine pxfdup2

    subroutine pxfclose(ifildes, ierror)
      integer(4), intent(in) :: ifildes
      integer(4), intent(out) :: ierror
    end subroutine pxfclose

    ! BUF is any variable or array (a CHARACTER variable, an INTEGER(1) array ...) of at
    ! least NBYTE bytes.
    subroutine pxfread(ifildes, buf, nbyte, nread, ierror)
      integer(4), intent(in) :: ifildes, nbyte
      !GCC$ ATTRIBUTES NO_ARG_CHECK :: buf
      !DIR$ IGNORE_TKR buf
      type(*), dimension(*), intent(inout) :: buf
      integer(4), intent(out) :: nread, ierror
    end subroutine pxfread

    subroutine pxfwrite(ifildes, buf, nbyte, nwritten, ierror)
      integer(4), intent(in) :: ifildes, nbyte
      !GCC$ ATTRIBUTES NO_ARG_CHECK :: buf
      !DIR$ IGNORE_TKR buf
      type(*), dimension(*), intent(in) :: buf
      integer(4), intent(out) :: nwritten, ierror
    end subroutine pxfwrite

    subroutine pxflseek(ifildes, ioffset, iwhence, iposition, ierror)
      integer(4), intent(in) :: ifildes, ioffset, iwhence
      integer(4), intent(out) :: iposition, ierror
    end subroutine pxflseek

    subroutine pxfpipe(ireadfd, iwritefd, ierror)
      integer(4), intent(out) :: ireadfd, iwritefd, ierror
    end subroutine pxfpipe

    ! The file type in a mode value (st_mode).
    logical(4) function pxfisdir(m)
      integer(4), intent(in) :: m
    end function pxfisdir
    logical(4) function pxfischr(m)
      integer(4), intent(in) :: m
    end function pxfischr
    logical(4) function pxfisblk(m)
      integer(4), intent(in) :: m
    end function pxfisblk
    logical(4) function pxfisreg(m)
      integer(4), intent(in) :: m
    end function pxfisreg
    logical(4) function pxfisfifo(m)
      integer(4), intent(in) :: m
    end function pxfisfifo

    ! --- Fortran units as POSIX streams -----------------------------------------------
    ! IERROR is EINVAL whenever NEW is 0, although the setting changes.
    subroutine pxfposixio(new, old, ierror)
      integer(4), intent(in) :: new
      integer(4), intent(out) :: old, ierror
    end subroutine pxfposixio

    ! The descriptor of a unit; EBADF (and a negative IFILDES) when it is not open.
    subroutine pxffileno(iunit, ifildes, ierror)
      integer(4), intent(in) :: iunit
      integer(4), intent(out) :: ifildes, ierror
    end subroutine pxffileno

    ! Connects IUNIT to the open descriptor IFILDES; ACCESS is 'r', 'w', 'a', 'r+', 'w+',
    ! 'a+', 'read', 'write', 'readwrite', 'append', or blank for the descriptor's own mode.
    subroutine pxffdopen(ifildes, iunit, access, ierror)
      integer(4), intent(in) :: ifildes, iunit
      character(len=*), intent(in) :: access
      integer(4), intent(out) :: ierror
    end subroutine pxffdopen

    subroutine pxffflush(iunit, ierror)
      integer(4), intent(in) :: iunit
      integer(4), intent(out) :: ierror
    end subroutine pxffflush

    subroutine pxffseek(iunit, ioffset, iwhence, ierror)
      integer(4), intent(in) :: iunit, ioffset, iwhence
      integer(4), intent(out) :: ierror
    end subroutine pxffseek

    subroutine pxfftell(iunit, ioffset, ierror)
      integer(4), intent(in) :: iunit
      integer(4), intent(inout) :: ioffset
      integer(4), intent(out) :: ierror
    end subroutine pxfftell

    ! One character into CH(1:1); at the end of the file IERROR is EEND and CH is unchanged.
    subroutine pxfgetc(ch, ierror)
      character(len=*), intent(inout) :: ch
      integer(4), intent(out) :: ierror
    end subroutine pxfgetc

    subroutine pxffgetc(iunit, ch, ierror)
      integer(4), intent(in) :: iunit
      character(len=*), intent(inout) :: ch
      integer(4), intent(out) :: ierror
    end subroutine pxffgetc

    subroutine pxfputc(ch, ierror)
      character(len=*), intent(in) :: ch
      integer(4), intent(out) :: ierror
    end subroutine pxfputc

    subroutine pxffputc(iunit, ch, ierror)
      integer(4), intent(in) :: iunit
      character(len=*), intent(in) :: ch
      integer(4), intent(out) :: ierror
    end subroutine pxffputc
  end interface
  include 'posix_process.inc'
  include 'posix_system.inc'
end module tarvo_posix
