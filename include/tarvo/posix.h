/* Tarvo Fortran portability library: the POSIX binding (PXF routines).
 * Every argument is passed by reference; hidden CHARACTER lengths follow the visible
 * arguments in order. Routines report through their last visible argument, IERROR. */
#ifndef TARVO_POSIX_H
#define TARVO_POSIX_H

#include <tarvo/records.h>

#ifdef __cplusplus
extern "C" {
#endif

/* --- constants ------------------------------------------------------------------- */

/* SUBROUTINE PXFCONST(CONSTNAME, IVAL, IERROR) */
void pxfconst_(const char *constname, int32_t *ival, int32_t *ierror, tarvo_len_t constname_len) TARVO_NOEXCEPT;
/* INTEGER FUNCTION IPXFCONST(CONSTNAME): the value, or -1 for an unknown name. */
int32_t ipxfconst_(const char *constname, tarvo_len_t constname_len) TARVO_NOEXCEPT;
/* LOGICAL FUNCTION PXFISCONST(CONSTNAME) */
int32_t pxfisconst_(const char *constname, tarvo_len_t constname_len) TARVO_NOEXCEPT;

/* --- structure instances --------------------------------------------------------- */

/* SUBROUTINE PXFSTRUCTCREATE(STRUCTNAME, JHANDLE, IERROR) */
void pxfstructcreate_(const char *structname, int32_t *jhandle, int32_t *ierror, tarvo_len_t structname_len) TARVO_NOEXCEPT;
/* SUBROUTINE PXFSTRUCTCOPY(STRUCTNAME, JHANDLE1, JHANDLE2, IERROR): JHANDLE1 into JHANDLE2. */
void pxfstructcopy_(const char *structname, const int32_t *jhandle1, const int32_t *jhandle2,
                    int32_t *ierror, tarvo_len_t structname_len) TARVO_NOEXCEPT;
/* SUBROUTINE PXFSTRUCTFREE(JHANDLE, IERROR): JHANDLE becomes 0. */
void pxfstructfree_(int32_t *jhandle, int32_t *ierror) TARVO_NOEXCEPT;

/* --- field access ---------------------------------------------------------------- */

/* SUBROUTINE PXFINTGET(JHANDLE, COMPNAME, VALUE, IERROR), PXFINTSET(...) */
void pxfintget_(const int32_t *jhandle, const char *compname, int32_t *value, int32_t *ierror,
                tarvo_len_t compname_len) TARVO_NOEXCEPT;
void pxfintset_(const int32_t *jhandle, const char *compname, const int32_t *value, int32_t *ierror,
                tarvo_len_t compname_len) TARVO_NOEXCEPT;
/* SUBROUTINE PXFINT8GET(JHANDLE, COMPNAME, VALUE, IERROR), PXFINT8SET(...); VALUE INTEGER(8) */
void pxfint8get_(const int32_t *jhandle, const char *compname, int64_t *value, int32_t *ierror,
                 tarvo_len_t compname_len) TARVO_NOEXCEPT;
void pxfint8set_(const int32_t *jhandle, const char *compname, const int64_t *value, int32_t *ierror,
                 tarvo_len_t compname_len) TARVO_NOEXCEPT;
/* SUBROUTINE PXFAINTGET(JHANDLE, COMPNAME, VALUE, IALEN, IERROR), PXFAINTSET(...) */
void pxfaintget_(const int32_t *jhandle, const char *compname, int32_t *value, int32_t *ialen,
                 int32_t *ierror, tarvo_len_t compname_len) TARVO_NOEXCEPT;
void pxfaintset_(const int32_t *jhandle, const char *compname, const int32_t *value, int32_t *ialen,
                 int32_t *ierror, tarvo_len_t compname_len) TARVO_NOEXCEPT;
/* SUBROUTINE PXFAINT8GET(JHANDLE, COMPNAME, VALUE, IALEN, IERROR), PXFAINT8SET(...) */
void pxfaint8get_(const int32_t *jhandle, const char *compname, int64_t *value, int32_t *ialen,
                  int32_t *ierror, tarvo_len_t compname_len) TARVO_NOEXCEPT;
void pxfaint8set_(const int32_t *jhandle, const char *compname, const int64_t *value, int32_t *ialen,
                  int32_t *ierror, tarvo_len_t compname_len) TARVO_NOEXCEPT;
/* SUBROUTINE PXFEINTGET(JHANDLE, COMPNAME, INDEX, VALUE, IERROR), PXFEINTSET(...) */
void pxfeintget_(const int32_t *jhandle, const char *compname, const int32_t *index, int32_t *value,
                 int32_t *ierror, tarvo_len_t compname_len) TARVO_NOEXCEPT;
void pxfeintset_(const int32_t *jhandle, const char *compname, const int32_t *index, const int32_t *value,
                 int32_t *ierror, tarvo_len_t compname_len) TARVO_NOEXCEPT;
/* SUBROUTINE PXFSTRGET(JHANDLE, COMPNAME, VALUE, ILEN, IERROR): ILEN receives the length. */
void pxfstrget_(const int32_t *jhandle, const char *compname, char *value, int32_t *ilen, int32_t *ierror,
                tarvo_len_t compname_len, tarvo_len_t value_len) TARVO_NOEXCEPT;
/* SUBROUTINE PXFSTRSET(JHANDLE, COMPNAME, VALUE, ILEN, IERROR): the first ILEN characters,
 * or VALUE less its trailing blanks when ILEN is 0. */
void pxfstrset_(const int32_t *jhandle, const char *compname, const char *value, const int32_t *ilen,
                int32_t *ierror, tarvo_len_t compname_len, tarvo_len_t value_len) TARVO_NOEXCEPT;
/* SUBROUTINE PXFESTRGET(JHANDLE, COMPNAME, INDEX, VALUE, ILEN, IERROR) */
void pxfestrget_(const int32_t *jhandle, const char *compname, const int32_t *index, char *value,
                 int32_t *ilen, int32_t *ierror, tarvo_len_t compname_len, tarvo_len_t value_len) TARVO_NOEXCEPT;

/* SUBROUTINE PXFGETSUBHANDLE(SUB, JHANDLE, IERROR): a handle for the procedure SUB. */
void pxfgetsubhandle_(void (*sub)(void), int32_t *jhandle, int32_t *ierror) TARVO_NOEXCEPT;
/* SUBROUTINE PXFCALLSUBHANDLE(JHANDLE, IVAL, IERROR): calls the procedure with IVAL; the
 * procedure's INTEGER result is also the result here (0 when the handle names nothing). */
int32_t pxfcallsubhandle_(const int32_t *jhandle, int32_t *ival, int32_t *ierror) TARVO_NOEXCEPT;

/* Accessors of the kinds no structure has. Each stores ENONAME in IERROR and sets errno
 * to EINVAL, whatever the other arguments. Argument lists by form, after JHANDLE and
 * COMPNAME (the hidden length of COMPNAME, then of a CHARACTER VALUE, follow):
 *   SINGLE        VALUE, IERROR
 *   ARRAY         VALUE(*), IALEN, IERROR
 *   ELEMENT       INDEX, VALUE, IERROR
 *   TEXT_ARRAY    VALUE(*), ILEN, IALEN, IERROR     (CHARACTER VALUE)
 *   TEXT_ELEMENT  INDEX, VALUE, ILEN, IERROR        (CHARACTER VALUE)
 * The CHARACTER forms of SINGLE, ARRAY and ELEMENT carry the hidden length of VALUE. */
#define TARVO_PXF_STUB_ACCESSORS(X)                                                   \
    X(pxfrealget_, SINGLE, float) X(pxfrealset_, SINGLE, float)                       \
    X(pxfarealget_, ARRAY, float) X(pxfarealset_, ARRAY, float)                       \
    X(pxferealget_, ELEMENT, float) X(pxferealset_, ELEMENT, float)                   \
    X(pxfdblget_, SINGLE, double) X(pxfdblset_, SINGLE, double)                       \
    X(pxfadblget_, ARRAY, double) X(pxfadblset_, ARRAY, double)                       \
    X(pxfedblget_, ELEMENT, double) X(pxfedblset_, ELEMENT, double)                   \
    X(pxflgclget_, SINGLE, int32_t) X(pxflgclset_, SINGLE, int32_t)                   \
    X(pxfalgclget_, ARRAY, int32_t) X(pxfalgclset_, ARRAY, int32_t)                   \
    X(pxfelgclget_, ELEMENT, int32_t) X(pxfelgclset_, ELEMENT, int32_t)               \
    X(pxfcharget_, CHAR_SINGLE, char) X(pxfcharset_, CHAR_SINGLE, char)               \
    X(pxfacharget_, CHAR_ARRAY, char) X(pxfacharset_, CHAR_ARRAY, char)               \
    X(pxfecharget_, CHAR_ELEMENT, char) X(pxfecharset_, CHAR_ELEMENT, char)           \
    X(pxfeint8get_, ELEMENT, int64_t) X(pxfeint8set_, ELEMENT, int64_t)               \
    X(pxfastrget_, TEXT_ARRAY, char) X(pxfastrset_, TEXT_ARRAY, char)                 \
    X(pxfestrset_, TEXT_ELEMENT, char)

#define TARVO_PXF_HEAD const int32_t *jhandle, const char *compname
#define TARVO_PXF_FORM_SINGLE(T) TARVO_PXF_HEAD, T *value, int32_t *ierror, tarvo_len_t compname_len
#define TARVO_PXF_FORM_ARRAY(T) \
    TARVO_PXF_HEAD, T *value, int32_t *ialen, int32_t *ierror, tarvo_len_t compname_len
#define TARVO_PXF_FORM_ELEMENT(T) \
    TARVO_PXF_HEAD, const int32_t *index, T *value, int32_t *ierror, tarvo_len_t compname_len
#define TARVO_PXF_FORM_CHAR_SINGLE(T) TARVO_PXF_FORM_SINGLE(T), tarvo_len_t value_len
#define TARVO_PXF_FORM_CHAR_ARRAY(T) TARVO_PXF_FORM_ARRAY(T), tarvo_len_t value_len
#define TARVO_PXF_FORM_CHAR_ELEMENT(T) TARVO_PXF_FORM_ELEMENT(T), tarvo_len_t value_len
#define TARVO_PXF_FORM_TEXT_ARRAY(T)                                                  \
    TARVO_PXF_HEAD, T *value, int32_t *ilen, int32_t *ialen, int32_t *ierror,         \
        tarvo_len_t compname_len, tarvo_len_t value_len
#define TARVO_PXF_FORM_TEXT_ELEMENT(T)                                                \
    TARVO_PXF_HEAD, const int32_t *index, T *value, int32_t *ilen, int32_t *ierror,   \
        tarvo_len_t compname_len, tarvo_len_t value_len

#define TARVO_PXF_DECLARE_STUB(name, form, T) void name(TARVO_PXF_FORM_##form(T)) TARVO_NOEXCEPT;
TARVO_PXF_STUB_ACCESSORS(TARVO_PXF_DECLARE_STUB)
#undef TARVO_PXF_DECLARE_STUB

/* --- files and directories --------------------------------------------------------- */
/* The path routines take PATH and ILEN: with ILEN 0 the path is PATH less trailing white
 * space (at least one character), otherwise its first ILEN characters. IERROR is 0, or the
 * system's errno when the call fails. */

/* SUBROUTINE PXFOPEN(PATH, ILEN, IOPENFLAG, IMODE, IFILDES, IERROR) */
void pxfopen_(const char *path, const int32_t *ilen, const int32_t *iopenflag, const int32_t *imode,
              int32_t *ifildes, int32_t *ierror, tarvo_len_t path_len) TARVO_NOEXCEPT;
/* SUBROUTINE PXFCREAT(PATH, ILEN, IMODE, IFILDES, IERROR) */
void pxfcreat_(const char *path, const int32_t *ilen, const int32_t *imode, int32_t *ifildes, int32_t *ierror,
               tarvo_len_t path_len) TARVO_NOEXCEPT;
/* SUBROUTINE PXFCHDIR(PATH, ILEN, IERROR) */
void pxfchdir_(const char *path, const int32_t *ilen, int32_t *ierror, tarvo_len_t path_len) TARVO_NOEXCEPT;
/* SUBROUTINE PXFMKDIR(PATH, ILEN, IMODE, IERROR) */
void pxfmkdir_(const char *path, const int32_t *ilen, const int32_t *imode, int32_t *ierror, tarvo_len_t path_len) TARVO_NOEXCEPT;
/* SUBROUTINE PXFRMDIR(PATH, ILEN, IERROR) */
void pxfrmdir_(const char *path, const int32_t *ilen, int32_t *ierror, tarvo_len_t path_len) TARVO_NOEXCEPT;
/* SUBROUTINE PXFUNLINK(PATH, ILEN, IERROR) */
void pxfunlink_(const char *path, const int32_t *ilen, int32_t *ierror, tarvo_len_t path_len) TARVO_NOEXCEPT;
/* SUBROUTINE PXFACCESS(PATH, ILEN, IAMODE, IERROR) */
void pxfaccess_(const char *path, const int32_t *ilen, const int32_t *iamode, int32_t *ierror,
                tarvo_len_t path_len) TARVO_NOEXCEPT;
/* SUBROUTINE PXFCHMOD(PATH, ILEN, IMODE, IERROR) */
void pxfchmod_(const char *path, const int32_t *ilen, const int32_t *imode, int32_t *ierror, tarvo_len_t path_len) TARVO_NOEXCEPT;
/* SUBROUTINE PXFLINK(EXISTING, LENEXIST, NEW, LENNEW, IERROR) */
void pxflink_(const char *existing, const int32_t *lenexist, const char *created, const int32_t *lennew,
              int32_t *ierror, tarvo_len_t existing_len, tarvo_len_t created_len) TARVO_NOEXCEPT;
/* SUBROUTINE PXFRENAME(OLD, LENOLD, NEW, LENNEW, IERROR) */
void pxfrename_(const char *old, const int32_t *lenold, const char *renamed, const int32_t *lennew,
                int32_t *ierror, tarvo_len_t old_len, tarvo_len_t renamed_len) TARVO_NOEXCEPT;
/* SUBROUTINE PXFSTAT(PATH, ILEN, JSTAT, IERROR): JSTAT a "stat" instance. */
void pxfstat_(const char *path, const int32_t *ilen, const int32_t *jstat, int32_t *ierror, tarvo_len_t path_len) TARVO_NOEXCEPT;
/* SUBROUTINE PXFUTIME(PATH, ILEN, JUTIMBUF, IERROR): PATH ends at its first blank, ILEN is
 * not used; JUTIMBUF a "utimbuf" instance, or 0 for the current time. */
void pxfutime_(const char *path, const int32_t *ilen, const int32_t *jutimbuf, int32_t *ierror,
               tarvo_len_t path_len) TARVO_NOEXCEPT;
/* SUBROUTINE PXFPATHCONF(PATH, ILEN, NAME, IVAL, IERROR) */
void pxfpathconf_(const char *path, const int32_t *ilen, const int32_t *name, int32_t *ival, int32_t *ierror,
                  tarvo_len_t path_len) TARVO_NOEXCEPT;

/* SUBROUTINE PXFOPENDIR(DIRNAME, LENDIRNAME, IDIRID, IERROR) */
void pxfopendir_(const char *dirname, const int32_t *lendirname, int32_t *idirid, int32_t *ierror,
                 tarvo_len_t dirname_len) TARVO_NOEXCEPT;
/* SUBROUTINE PXFREADDIR(IDIRID, JDIRENT, IERROR): 128 at the end of the stream. */
void pxfreaddir_(const int32_t *idirid, const int32_t *jdirent, int32_t *ierror) TARVO_NOEXCEPT;
/* SUBROUTINE PXFREWINDDIR(IDIRID, IERROR) */
void pxfrewinddir_(const int32_t *idirid, int32_t *ierror) TARVO_NOEXCEPT;
/* SUBROUTINE PXFCLOSEDIR(IDIRID, IERROR): IDIRID becomes 0. */
void pxfclosedir_(int32_t *idirid, int32_t *ierror) TARVO_NOEXCEPT;

/* SUBROUTINE PXFGETCWD(BUF, ILEN, IERROR): ILEN receives the length. */
void pxfgetcwd_(char *buf, int32_t *ilen, int32_t *ierror, tarvo_len_t buf_len) TARVO_NOEXCEPT;
/* SUBROUTINE PXFUMASK(ICMASK, IPREVCMASK, IERROR) */
void pxfumask_(const int32_t *icmask, int32_t *iprevcmask, int32_t *ierror) TARVO_NOEXCEPT;
/* SUBROUTINE PXFFSTAT(IFILDES, JSTAT, IERROR) */
void pxffstat_(const int32_t *ifildes, const int32_t *jstat, int32_t *ierror) TARVO_NOEXCEPT;
/* SUBROUTINE PXFFPATHCONF(IFILDES, NAME, IVAL, IERROR) */
void pxffpathconf_(const int32_t *ifildes, const int32_t *name, int32_t *ival, int32_t *ierror) TARVO_NOEXCEPT;
/* SUBROUTINE PXFDUP(IFILDES, IFID, IERROR) */
void pxfdup_(const int32_t *ifildes, int32_t *ifid, int32_t *ierror) TARVO_NOEXCEPT;
/* SUBROUTINE PXFDUP2(IFILDES, IFILDES2, IERROR): the new descriptor is the result. */
int32_t pxfdup2_(const int32_t *ifildes, const int32_t *ifildes2, int32_t *ierror) TARVO_NOEXCEPT;
/* SUBROUTINE PXFCLOSE(IFILDES, IERROR) */
void pxfclose_(const int32_t *ifildes, int32_t *ierror) TARVO_NOEXCEPT;
/* SUBROUTINE PXFREAD(IFILDES, BUF, NBYTE, NREAD, IERROR): -1 when an argument is absent. */
void pxfread_(const int32_t *ifildes, void *buf, const int32_t *nbyte, int32_t *nread, int32_t *ierror) TARVO_NOEXCEPT;
/* SUBROUTINE PXFWRITE(IFILDES, BUF, NBYTE, NWRITTEN, IERROR) */
void pxfwrite_(const int32_t *ifildes, const void *buf, const int32_t *nbyte, int32_t *nwritten, int32_t *ierror) TARVO_NOEXCEPT;
/* SUBROUTINE PXFLSEEK(IFILDES, IOFFSET, IWHENCE, IPOSITION, IERROR) */
void pxflseek_(const int32_t *ifildes, const int32_t *ioffset, const int32_t *iwhence, int32_t *iposition,
               int32_t *ierror) TARVO_NOEXCEPT;
/* SUBROUTINE PXFPIPE(IREADFD, IWRITEFD, IERROR) */
void pxfpipe_(int32_t *ireadfd, int32_t *iwritefd, int32_t *ierror) TARVO_NOEXCEPT;

/* LOGICAL FUNCTION PXFISDIR(M), PXFISCHR, PXFISBLK, PXFISREG, PXFISFIFO: the file type in
 * a mode value (st_mode). */
int32_t pxfisdir_(const int32_t *m) TARVO_NOEXCEPT;
int32_t pxfischr_(const int32_t *m) TARVO_NOEXCEPT;
int32_t pxfisblk_(const int32_t *m) TARVO_NOEXCEPT;
int32_t pxfisreg_(const int32_t *m) TARVO_NOEXCEPT;
int32_t pxfisfifo_(const int32_t *m) TARVO_NOEXCEPT;

/* --- Fortran units as POSIX streams ------------------------------------------------ */

/* SUBROUTINE PXFPOSIXIO(NEW, OLD, IERROR): IERROR is EINVAL whenever NEW is 0. */
void pxfposixio_(const int32_t *inew, int32_t *iold, int32_t *ierror) TARVO_NOEXCEPT;
/* SUBROUTINE PXFFILENO(IUNIT, IFILDES, IERROR) */
void pxffileno_(const int32_t *iunit, int32_t *ifildes, int32_t *ierror) TARVO_NOEXCEPT;
/* SUBROUTINE PXFFDOPEN(IFILDES, IUNIT, ACCESS, IERROR) */
void pxffdopen_(const int32_t *ifildes, const int32_t *iunit, const char *access, int32_t *ierror,
                tarvo_len_t access_len) TARVO_NOEXCEPT;
/* SUBROUTINE PXFFFLUSH(IUNIT, IERROR) */
void pxffflush_(const int32_t *iunit, int32_t *ierror) TARVO_NOEXCEPT;
/* SUBROUTINE PXFFSEEK(IUNIT, IOFFSET, IWHENCE, IERROR) */
void pxffseek_(const int32_t *iunit, const int32_t *ioffset, const int32_t *iwhence, int32_t *ierror) TARVO_NOEXCEPT;
/* SUBROUTINE PXFFTELL(IUNIT, IOFFSET, IERROR) */
void pxfftell_(const int32_t *iunit, int32_t *ioffset, int32_t *ierror) TARVO_NOEXCEPT;
/* SUBROUTINE PXFGETC(CH, IERROR), PXFFGETC(IUNIT, CH, IERROR): EEND at the end of file. */
void pxfgetc_(char *ch, int32_t *ierror, tarvo_len_t ch_len) TARVO_NOEXCEPT;
void pxffgetc_(const int32_t *iunit, char *ch, int32_t *ierror, tarvo_len_t ch_len) TARVO_NOEXCEPT;
/* SUBROUTINE PXFPUTC(CH, IERROR), PXFFPUTC(IUNIT, CH, IERROR) */
void pxfputc_(const char *ch, int32_t *ierror, tarvo_len_t ch_len) TARVO_NOEXCEPT;
void pxffputc_(const int32_t *iunit, const char *ch, int32_t *ierror, tarvo_len_t ch_len) TARVO_NOEXCEPT;

/* --- processes ----------------------------------------------------------------------- */

/* SUBROUTINE PXFFORK(IPID, IERROR): the child sees IPID 0. */
void pxffork_(int32_t *ipid, int32_t *ierror) TARVO_NOEXCEPT;
/* SUBROUTINE PXFEXECV(PATH, LENPATH, ARGV, LENARGV, IARGC, IERROR): returns only on failure.
 * A length of 0 stands for the declared length less trailing white space (at least one
 * character); ARGV is CHARACTER*(*) ARGV(IARGC). */
void pxfexecv_(const char *path, const int32_t *lenpath, const char *argv, const int32_t *lenargv,
               const int32_t *iargc, int32_t *ierror, tarvo_len_t path_len, tarvo_len_t argv_len) TARVO_NOEXCEPT;
/* SUBROUTINE PXFEXECVE(PATH, LENPATH, ARGV, LENARGV, IARGC, ENV, LENENV, IENVC, IERROR) */
void pxfexecve_(const char *path, const int32_t *lenpath, const char *argv, const int32_t *lenargv,
                const int32_t *iargc, const char *env, const int32_t *lenenv, const int32_t *ienvc, int32_t *ierror,
                tarvo_len_t path_len, tarvo_len_t argv_len, tarvo_len_t env_len) TARVO_NOEXCEPT;
/* SUBROUTINE PXFEXECVP(FILE, LENFILE, ARGV, LENARGV, IARGC, IERROR): searches PATH; lengths unchecked. */
void pxfexecvp_(const char *file, const int32_t *lenfile, const char *argv, const int32_t *lenargv,
                const int32_t *iargc, int32_t *ierror, tarvo_len_t file_len, tarvo_len_t argv_len) TARVO_NOEXCEPT;
/* SUBROUTINE PXFWAIT(ISTAT, IRETPID, IERROR) */
void pxfwait_(int32_t *istat, int32_t *iretpid, int32_t *ierror) TARVO_NOEXCEPT;
/* SUBROUTINE PXFWAITPID(IPID, ISTAT, IOPTIONS, IRETPID, IERROR) */
void pxfwaitpid_(const int32_t *ipid, int32_t *istat, const int32_t *ioptions, int32_t *iretpid,
                 int32_t *ierror) TARVO_NOEXCEPT;
/* LOGICAL FUNCTION PXFWIFEXITED(ISTAT), PXFWIFSIGNALED, PXFWIFSTOPPED; INTEGER FUNCTION
 * IPXFWEXITSTATUS(ISTAT), IPXFWTERMSIG, IPXFWSTOPSIG: the parts of a wait status. */
int32_t pxfwifexited_(const int32_t *istat) TARVO_NOEXCEPT;
int32_t ipxfwexitstatus_(const int32_t *istat) TARVO_NOEXCEPT;
int32_t pxfwifsignaled_(const int32_t *istat) TARVO_NOEXCEPT;
int32_t ipxfwtermsig_(const int32_t *istat) TARVO_NOEXCEPT;
int32_t pxfwifstopped_(const int32_t *istat) TARVO_NOEXCEPT;
int32_t ipxfwstopsig_(const int32_t *istat) TARVO_NOEXCEPT;
/* SUBROUTINE PXFEXIT(ISTATUS): flushes the Fortran units first. */
void pxfexit_(const int32_t *istatus) TARVO_NOEXCEPT;
/* SUBROUTINE PXFFASTEXIT(ISTATUS): ends the process at once. */
void pxffastexit_(const int32_t *istatus) TARVO_NOEXCEPT;
/* SUBROUTINE PXFKILL(IPID, ISIG, IERROR) */
void pxfkill_(const int32_t *ipid, const int32_t *isig, int32_t *ierror) TARVO_NOEXCEPT;

/* --- signals ------------------------------------------------------------------------- */

/* SUBROUTINE PXFSIGACTION(ISIG, JSIGACT, JOSIGACT, IERROR): either handle may be 0. */
void pxfsigaction_(const int32_t *isig, const int32_t *jsigact, const int32_t *josigact,
                   int32_t *ierror) TARVO_NOEXCEPT;
/* SUBROUTINE PXFSIGEMPTYSET(JSIGSET, IERROR), PXFSIGFILLSET */
void pxfsigemptyset_(const int32_t *jsigset, int32_t *ierror) TARVO_NOEXCEPT;
void pxfsigfillset_(const int32_t *jsigset, int32_t *ierror) TARVO_NOEXCEPT;
/* SUBROUTINE PXFSIGADDSET(JSIGSET, ISIGNO, IERROR), PXFSIGDELSET */
void pxfsigaddset_(const int32_t *jsigset, const int32_t *isigno, int32_t *ierror) TARVO_NOEXCEPT;
void pxfsigdelset_(const int32_t *jsigset, const int32_t *isigno, int32_t *ierror) TARVO_NOEXCEPT;
/* SUBROUTINE PXFSIGISMEMBER(JSIGSET, ISIGNO, ISMEMBER, IERROR) */
void pxfsigismember_(const int32_t *jsigset, const int32_t *isigno, int32_t *ismember, int32_t *ierror) TARVO_NOEXCEPT;
/* SUBROUTINE PXFSIGPROCMASK(IHOW, JSIGSET, JOSIGSET, IERROR): exported under this name. */
void fortran_pxfsigprocmask(const int32_t *ihow, const int32_t *jsigset, const int32_t *josigset,
                            int32_t *ierror) TARVO_NOEXCEPT;
/* SUBROUTINE PXFSIGPENDING(JSIGSET, IERROR), PXFSIGSUSPEND */
void pxfsigpending_(const int32_t *jsigset, int32_t *ierror) TARVO_NOEXCEPT;
void pxfsigsuspend_(const int32_t *jsigset, int32_t *ierror) TARVO_NOEXCEPT;
/* SUBROUTINE PXFALARM(ISECONDS, ISECLEFT, IERROR), PXFSLEEP */
void pxfalarm_(const int32_t *iseconds, int32_t *isecleft, int32_t *ierror) TARVO_NOEXCEPT;
void pxfsleep_(const int32_t *iseconds, int32_t *isecleft, int32_t *ierror) TARVO_NOEXCEPT;
/* SUBROUTINE PXFPAUSE(IERROR) */
void pxfpause_(int32_t *ierror) TARVO_NOEXCEPT;

/* --- environment and command line ------------------------------------------------- */

/* SUBROUTINE PXFGETENV(ENVNAME, LENNAME, VALUE, LENVAL, IERROR) */
void pxfgetenv_(const char *envname, const int32_t *lenname, char *value, int32_t *lenval, int32_t *ierror,
                tarvo_len_t envname_len, tarvo_len_t value_len) TARVO_NOEXCEPT;
/* SUBROUTINE PXFSETENV(ENVNAME, LENNAME, NEWVALUE, LENNEW, IOVERWRITE, IERROR) */
void pxfsetenv_(const char *envname, const int32_t *lenname, const char *newvalue, const int32_t *lennew,
                const int32_t *ioverwrite, int32_t *ierror, tarvo_len_t envname_len,
                tarvo_len_t newvalue_len) TARVO_NOEXCEPT;
/* SUBROUTINE PXFCLEARENV(IERROR) */
void pxfclearenv_(int32_t *ierror) TARVO_NOEXCEPT;
/* SUBROUTINE PXFGETARG(M, VALUE, ILEN, IERROR): M 0 is the command name. */
void pxfgetarg_(const int32_t *m, char *value, int32_t *ilen, int32_t *ierror, tarvo_len_t value_len) TARVO_NOEXCEPT;
/* INTEGER FUNCTION IPXFARGC(): the arguments after the command name. */
int32_t ipxfargc_(void) TARVO_NOEXCEPT;
/* --- terminal control ------------------------------------------------------------ */

/* SUBROUTINE PXFTCGETATTR(IFILDES, JTERMIOS, IERROR): JTERMIOS a "termios" instance. */
void pxftcgetattr_(const int32_t *ifildes, const int32_t *jtermios, int32_t *ierror) TARVO_NOEXCEPT;
/* SUBROUTINE PXFTCSETATTR(IFILDES, IOPTACTS, JTERMIOS, IERROR) */
void pxftcsetattr_(const int32_t *ifildes, const int32_t *ioptacts, const int32_t *jtermios,
                   int32_t *ierror) TARVO_NOEXCEPT;
/* SUBROUTINE PXFCFGETISPEED(JTERMIOS, IOSPEED, IERROR), PXFCFGETOSPEED(...): speed codes (B9600). */
void pxfcfgetispeed_(const int32_t *jtermios, int32_t *iospeed, int32_t *ierror) TARVO_NOEXCEPT;
void pxfcfgetospeed_(const int32_t *jtermios, int32_t *iospeed, int32_t *ierror) TARVO_NOEXCEPT;
/* SUBROUTINE PXFCFSETISPEED(JTERMIOS, ISPEED, IERROR), PXFCFSETOSPEED(...) */
void pxfcfsetispeed_(const int32_t *jtermios, const int32_t *ispeed, int32_t *ierror) TARVO_NOEXCEPT;
void pxfcfsetospeed_(const int32_t *jtermios, const int32_t *ispeed, int32_t *ierror) TARVO_NOEXCEPT;
/* SUBROUTINE PXFTCSENDBREAK(IFILDES, IDURATION, IERROR) */
void pxftcsendbreak_(const int32_t *ifildes, const int32_t *iduration, int32_t *ierror) TARVO_NOEXCEPT;
/* SUBROUTINE PXFTCDRAIN(IFILDES, IERROR) */
void pxftcdrain_(const int32_t *ifildes, int32_t *ierror) TARVO_NOEXCEPT;
/* SUBROUTINE PXFTCFLUSH(IFILDES, IQUEUE, IERROR) */
void pxftcflush_(const int32_t *ifildes, const int32_t *iqueue, int32_t *ierror) TARVO_NOEXCEPT;
/* SUBROUTINE PXFTCFLOW(IFILDES, IACTION, IERROR) */
void pxftcflow_(const int32_t *ifildes, const int32_t *iaction, int32_t *ierror) TARVO_NOEXCEPT;
/* SUBROUTINE PXFTCGETPGRP(IFILDES, IPGID, IERROR), PXFTCSETPGRP(IFILDES, IPGID, IERROR) */
void pxftcgetpgrp_(const int32_t *ifildes, int32_t *ipgid, int32_t *ierror) TARVO_NOEXCEPT;
void pxftcsetpgrp_(const int32_t *ifildes, const int32_t *ipgid, int32_t *ierror) TARVO_NOEXCEPT;
/* SUBROUTINE PXFCTERMID(S, ILEN, IERROR), PXFTTYNAME(IFILDES, S, ILEN, IERROR): ETRUNC when
 * the name is longer than S. */
void pxfctermid_(char *s, int32_t *ilen, int32_t *ierror, tarvo_len_t s_len) TARVO_NOEXCEPT;
void pxfttyname_(const int32_t *ifildes, char *s, int32_t *ilen, int32_t *ierror, tarvo_len_t s_len) TARVO_NOEXCEPT;
/* SUBROUTINE PXFISATTY(IFILDES, ISATTY, IERROR): ISATTY LOGICAL; IERROR always 0. */
void pxfisatty_(const int32_t *ifildes, int32_t *isatty, int32_t *ierror) TARVO_NOEXCEPT;

/* --- users, groups and identity -------------------------------------------------- */

/* SUBROUTINE PXFGETGRGID(IGID, JGROUP, IERROR), PXFGETGRNAM(NAME, ILEN, JGROUP, IERROR):
 * JGROUP a "group" instance; IERROR is not written on success (preset it). */
void pxfgetgrgid_(const int32_t *igid, const int32_t *jgroup, int32_t *ierror) TARVO_NOEXCEPT;
void pxfgetgrnam_(const char *name, const int32_t *ilen, const int32_t *jgroup, int32_t *ierror,
                  tarvo_len_t name_len) TARVO_NOEXCEPT;
/* SUBROUTINE PXFGETPWUID(IUID, JPASSWD, IERROR), PXFGETPWNAM(NAME, ILEN, JPASSWD, IERROR):
 * JPASSWD a "passwd" instance; IERROR is not written on success (preset it). */
void pxfgetpwuid_(const int32_t *iuid, const int32_t *jpasswd, int32_t *ierror) TARVO_NOEXCEPT;
void pxfgetpwnam_(const char *name, const int32_t *ilen, const int32_t *jpasswd, int32_t *ierror,
                  tarvo_len_t name_len) TARVO_NOEXCEPT;
/* SUBROUTINE PXFGETLOGIN(S, ILEN, IERROR) */
void pxfgetlogin_(char *s, int32_t *ilen, int32_t *ierror, tarvo_len_t s_len) TARVO_NOEXCEPT;
/* SUBROUTINE PXFGETPID(IPID, IERROR), PXFGETPPID, PXFGETUID(IUID, IERROR), PXFGETEUID,
 * PXFGETGID(IGID, IERROR), PXFGETEGID, PXFGETPGRP(IPGRP, IERROR), PXFSETSID(ISID, IERROR) */
void pxfgetpid_(int32_t *ipid, int32_t *ierror) TARVO_NOEXCEPT;
void pxfgetppid_(int32_t *ipid, int32_t *ierror) TARVO_NOEXCEPT;
void pxfgetuid_(int32_t *iuid, int32_t *ierror) TARVO_NOEXCEPT;
void pxfgeteuid_(int32_t *iuid, int32_t *ierror) TARVO_NOEXCEPT;
void pxfgetgid_(int32_t *igid, int32_t *ierror) TARVO_NOEXCEPT;
void pxfgetegid_(int32_t *igid, int32_t *ierror) TARVO_NOEXCEPT;
void pxfgetpgrp_(int32_t *ipgrp, int32_t *ierror) TARVO_NOEXCEPT;
void pxfsetsid_(int32_t *isid, int32_t *ierror) TARVO_NOEXCEPT;
/* SUBROUTINE PXFSETUID(IUID, IERROR), PXFSETGID(IGID, IERROR), PXFSETPGID(IPID, IPGID, IERROR) */
void pxfsetuid_(const int32_t *iuid, int32_t *ierror) TARVO_NOEXCEPT;
void pxfsetgid_(const int32_t *igid, int32_t *ierror) TARVO_NOEXCEPT;
void pxfsetpgid_(const int32_t *ipid, const int32_t *ipgid, int32_t *ierror) TARVO_NOEXCEPT;
/* SUBROUTINE PXFGETGROUPS(IGIDSETSIZE, IGROUPLIST, INGROUPS, IERROR) */
void pxfgetgroups_(const int32_t *igidsetsize, int32_t *igrouplist, int32_t *ingroups, int32_t *ierror) TARVO_NOEXCEPT;

/* --- system information, time and file control ----------------------------------- */

/* SUBROUTINE PXFUNAME(JUNAME, IERROR): JUNAME a "utsname" instance. */
void pxfuname_(const int32_t *juname, int32_t *ierror) TARVO_NOEXCEPT;
/* SUBROUTINE PXFTIME(ITIME, IERROR): IERROR -1 when ITIME is absent (null). */
void pxftime_(int32_t *itime, int32_t *ierror) TARVO_NOEXCEPT;
/* SUBROUTINE PXFLOCALTIME(ISECNDS, IATIME, IERROR): IATIME(9) second, minute, hour, day,
 * month 1-12, full year, weekday 0-6, day of year 1-366, daylight-saving flag. */
void pxflocaltime_(const int32_t *isecnds, int32_t *iatime, int32_t *ierror) TARVO_NOEXCEPT;
/* SUBROUTINE PXFTIMES(JTMS, ITIME, IERROR): JTMS a "tms" instance. */
void pxftimes_(const int32_t *jtms, int32_t *itime, int32_t *ierror) TARVO_NOEXCEPT;
/* SUBROUTINE PXFSYSCONF(NAME, IVAL, IERROR): a value of -1 is reported as a failure. */
void pxfsysconf_(const int32_t *name, int32_t *ival, int32_t *ierror) TARVO_NOEXCEPT;
/* SUBROUTINE PXFMKFIFO(PATH, ILEN, IMODE, IERROR) */
void pxfmkfifo_(const char *path, const int32_t *ilen, const int32_t *imode, int32_t *ierror,
                tarvo_len_t path_len) TARVO_NOEXCEPT;
/* SUBROUTINE PXFCHOWN(PATH, ILEN, IOWNER, IGROUP, IERROR) */
void pxfchown_(const char *path, const int32_t *ilen, const int32_t *iowner, const int32_t *igroup,
               int32_t *ierror, tarvo_len_t path_len) TARVO_NOEXCEPT;
/* SUBROUTINE PXFFCNTL(IFILDES, ICMD, IARGIN, IARGOUT, IERROR): IARGIN is a value for F_DUPFD,
 * F_SETFD, F_SETFL, a "flock" handle for F_GETLK, F_SETLK, F_SETLKW, else passed by address. */
void pxffcntl_(const int32_t *ifildes, const int32_t *icmd, int32_t *iargin, int32_t *iargout,
               int32_t *ierror) TARVO_NOEXCEPT;

#ifdef __cplusplus
}
#endif
#endif
