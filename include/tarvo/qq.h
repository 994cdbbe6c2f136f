/* Tarvo Fortran portability library: the QQ compatibility routines. */
#ifndef TARVO_QQ_H
#define TARVO_QQ_H

#include <tarvo/records.h>

#ifdef __cplusplus
extern "C" {
#endif

/* Path resolution: the absolute, canonical form of a terminated name, also for names that
   do not exist, into a buffer of at least TARVO_RESOLVED_SIZE bytes (1024 characters and
   the terminator). */
#define TARVO_RESOLVED_SIZE 1025
void __lodrik_resolve_unix_path(const char *path, char *resolved) TARVO_NOEXCEPT;

/* Path splitting and full paths */
/* INTEGER(4) FUNCTION FULLPATHQQ(NAME, PATHBUF) */
int32_t fullpathqq_(const char *name, char *pathbuf, tarvo_len_t name_len, tarvo_len_t pathbuf_len) TARVO_NOEXCEPT;
/* INTEGER(4) FUNCTION SPLITPATHQQ(PATH, DRIVE, DIR, NAME, EXT) */
int32_t splitpathqq_(const char *path, char *drive, char *dir, char *name, char *ext,
                     tarvo_len_t path_len, tarvo_len_t drive_len, tarvo_len_t dir_len,
                     tarvo_len_t name_len, tarvo_len_t ext_len) TARVO_NOEXCEPT;

/* File search and file information */
/* INTEGER(4) FUNCTION FINDFILEQQ(FILENAME, VARNAME, PATHBUF) */
int32_t findfileqq_(const char *filename, const char *varname, char *pathbuf,
                    tarvo_len_t filename_len, tarvo_len_t varname_len, tarvo_len_t pathbuf_len) TARVO_NOEXCEPT;
/* 1 when dir holds an entry called name (out = dir "/" name, 1281 bytes or more), else 0. */
int search_path(char *out, const char *name, const char *dir) TARVO_NOEXCEPT;
/* INTEGER(4) FUNCTION GETFILEINFOQQ(FILES, BUFFER, HANDLE), HANDLE INTEGER(INT_PTR_KIND()) */
int32_t getfileinfoqq_(const char *files, tarvo_file_info *buffer, intptr_t *handle, tarvo_len_t files_len) TARVO_NOEXCEPT;
/* INTEGER(4) FUNCTION GETFILEINFOQQI8(FILES, BUFFER, HANDLE) */
int32_t getfileinfoqqi8_(const char *files, tarvo_file_info_i8 *buffer, intptr_t *handle,
                         tarvo_len_t files_len) TARVO_NOEXCEPT;

/* File and directory maintenance */
/* INTEGER(4) FUNCTION DELFILESQQ(FILES) */
int32_t delfilesqq_(const char *files, tarvo_len_t files_len) TARVO_NOEXCEPT;
/* LOGICAL(4) FUNCTION MAKEDIRQQ(DIRNAME), DELDIRQQ(DIRNAME), CHANGEDIRQQ(DIRNAME) */
int32_t makedirqq_(const char *dirname, tarvo_len_t dirname_len) TARVO_NOEXCEPT;
int32_t deldirqq_(const char *dirname, tarvo_len_t dirname_len) TARVO_NOEXCEPT;
int32_t changedirqq_(const char *dirname, tarvo_len_t dirname_len) TARVO_NOEXCEPT;
/* LOGICAL(4) FUNCTION RENAMEFILEQQ(OLDNAME, NEWNAME) */
int32_t renamefileqq_(const char *oldname, const char *newname, tarvo_len_t oldname_len,
                      tarvo_len_t newname_len) TARVO_NOEXCEPT;
/* LOGICAL(4) FUNCTION SETFILEACCESSQQ(FILENAME, ACCESS) */
int32_t setfileaccessqq_(const char *filename, const int32_t *access, tarvo_len_t filename_len) TARVO_NOEXCEPT;
/* LOGICAL(4) FUNCTION SETFILETIMEQQ(FILENAME, TIMEDATE) */
int32_t setfiletimeqq_(const char *filename, const int32_t *timedate, tarvo_len_t filename_len) TARVO_NOEXCEPT;
/* LOGICAL(4) FUNCTION CHANGEDRIVEQQ(DRIVE) */
int32_t changedriveqq_(const char *drive, tarvo_len_t drive_len) TARVO_NOEXCEPT;
/* INTEGER(4) FUNCTION GETDRIVEDIRQQ(DRIVEDIR) */
int32_t getdrivedirqq_(char *drivedir, tarvo_len_t drivedir_len) TARVO_NOEXCEPT;
/* CHARACTER(26) FUNCTION GETDRIVESQQ() */
void getdrivesqq_(char *drives, tarvo_len_t drives_len) TARVO_NOEXCEPT;
/* LOGICAL(4) FUNCTION GETDRIVESIZEQQ(DRIVE, TOTAL, AVAIL), and GETDRIVESIZEQQI8 */
int32_t getdrivesizeqq_(const char *drive, void *total, void *avail, tarvo_len_t drive_len) TARVO_NOEXCEPT;
int32_t getdrivesizeqqi8_(const char *drive, void *total, void *avail, tarvo_len_t drive_len) TARVO_NOEXCEPT;

/* Sorting and searching. Type codes of SORTQQ and BSEARCHQQ; codes 1 to 32766 are byte
   strings of that length, compared as memcmp does. */
enum {
    TARVO_SRT_REAL4 = 0x10000,
    TARVO_SRT_REAL8 = 0x20000,
    TARVO_SRT_INTEGER1 = 0x30000,
    TARVO_SRT_INTEGER2 = 0x40000,
    TARVO_SRT_INTEGER4 = 0x50000,
    TARVO_SRT_INTEGER8 = 0x60000,
    TARVO_SRT_REAL16 = 0x80000
};
/* SUBROUTINE SORTQQ(ADRARRAY, COUNT, SIZE), ADRARRAY and COUNT INTEGER(INT_PTR_KIND()) */
void sortqq_(const intptr_t *adrarray, intptr_t *count, const int32_t *size) TARVO_NOEXCEPT;
/* INTEGER(INT_PTR_KIND()) FUNCTION BSEARCHQQ(ADRKEY, ADRARRAY, LENGTH, SIZE) */
intptr_t bsearchqq_(const intptr_t *adrkey, const intptr_t *adrarray, const intptr_t *length,
                    const int32_t *size) TARVO_NOEXCEPT;
/* SUBROUTINE QSORT(ARRAY, LEN, ISIZE, COMPAR): LEN, ISIZE INTEGER(8); QSORT_II: both
   INTEGER(4); QSORT_IL: LEN INTEGER(4), ISIZE INTEGER(8). COMPAR(A, B) returns INTEGER(4). */
typedef int (*tarvo_compare)(const void *, const void *);
void qsort_(void *array, const int64_t *len, const int64_t *isize, tarvo_compare compar) TARVO_NOEXCEPT;
void qsort_ii_(void *array, const int32_t *len, const int32_t *isize, tarvo_compare compar) TARVO_NOEXCEPT;
void qsort_il_(void *array, const int32_t *len, const int64_t *isize, tarvo_compare compar) TARVO_NOEXCEPT;

/* Processes and environment */
/* LOGICAL(4) FUNCTION SYSTEMQQ(COMMANDLINE) */
int32_t systemqq_(const char *commandline, tarvo_len_t commandline_len) TARVO_NOEXCEPT;
/* INTEGER(4) FUNCTION RUNQQ(FILENAME, COMMANDLINE) */
int32_t runqq_(const char *filename, const char *commandline, tarvo_len_t filename_len,
               tarvo_len_t commandline_len) TARVO_NOEXCEPT;
/* SUBROUTINE SLEEPQQ(DURATION), milliseconds */
void sleepqq_(const int32_t *duration) TARVO_NOEXCEPT;
/* SUBROUTINE BEEPQQ() */
void beepqq_(void) TARVO_NOEXCEPT;
/* INTEGER(4) FUNCTION GETENVQQ(VARNAME, VALUE) */
int32_t getenvqq_(const char *varname, char *value, tarvo_len_t varname_len, tarvo_len_t value_len) TARVO_NOEXCEPT;
/* LOGICAL(4) FUNCTION SETENVQQ(VARNAMEVALUE) */
int32_t setenvqq_(const char *varnamevalue, tarvo_len_t varnamevalue_len) TARVO_NOEXCEPT;
/* SUBROUTINE SETERRORMODEQQ(PROMPT): does nothing */
void seterrormodeqq_(const void *prompt) TARVO_NOEXCEPT;
/* LOGICAL(4) FUNCTION ESTABLISHQQ(...): always .FALSE. here */
int32_t establishqq_(void) TARVO_NOEXCEPT;

/* Signals and math errors. QQ signal numbers and the sub-codes a SIG_FPE handler receives. */
enum {
    TARVO_QQ_SIGINT = 2,
    TARVO_QQ_SIGILL = 4,
    TARVO_QQ_SIGFPE = 8,
    TARVO_QQ_SIGSEGV = 11,
    TARVO_QQ_SIGTERM = 15,
    TARVO_QQ_SIGUSR1 = 16,
    TARVO_QQ_SIGUSR2 = 17,
    TARVO_QQ_SIGUSR3 = 20,
    TARVO_QQ_SIGABRT = 22,
    TARVO_QQ_FPE_INVALID = 129,
    TARVO_QQ_FPE_ZERODIVIDE = 131,
    TARVO_QQ_FPE_OVERFLOW = 132,
    TARVO_QQ_FPE_UNDERFLOW = 133,
    TARVO_QQ_FPE_INEXACT = 134,
    TARVO_QQ_SIG_ERR = -1        /* SIGNALQQ and RAISEQQ: an unknown signal number */
};
/* INTEGER(4) FUNCTION SIGNALQQ(SIGNUM, HANDLER); HANDLER receives its arguments by value */
int32_t signalqq_(const int32_t *signum, void (*handler)(void)) TARVO_NOEXCEPT;
/* INTEGER(4) FUNCTION RAISEQQ(SIG) */
int32_t raiseqq_(const int32_t *sig) TARVO_NOEXCEPT;
/* SUBROUTINE MATHERRQQ(NAME, LENGTH, INFO, RETCODE), LENGTH and RETCODE INTEGER(2) */
void matherrqq_(const char *name, const int16_t *length, int32_t *info, int16_t *retcode,
                tarvo_len_t name_len) TARVO_NOEXCEPT;

/* Time packing: seconds since 1970 and local calendar parts */
/* SUBROUTINE PACKTIMEQQ(TIMEDATE, IYR, IMON, IDAY, IHR, IMIN, ISEC), parts INTEGER(2) */
void packtimeqq_(int32_t *timedate, const int16_t *iyr, const int16_t *imon, const int16_t *iday,
                 const int16_t *ihr, const int16_t *imin, const int16_t *isec) TARVO_NOEXCEPT;
/* SUBROUTINE UNPACKTIMEQQ(TIMEDATE, IYR, IMON, IDAY, IHR, IMIN, ISEC), parts INTEGER(2) */
void unpacktimeqq_(const int32_t *timedate, int16_t *iyr, int16_t *imon, int16_t *iday, int16_t *ihr,
                   int16_t *imin, int16_t *isec) TARVO_NOEXCEPT;

/* Floating-point control: the control and status words have the x87 layout. */
/* SUBROUTINE GETCONTROLFPQQ(CONTROL), SCWRQQ(CONTROL), INTEGER(2) CONTROL */
void getcontrolfpqq_(int16_t *control) TARVO_NOEXCEPT;
void scwrqq_(int16_t *control) TARVO_NOEXCEPT;
/* SUBROUTINE SETCONTROLFPQQ(CONTROL), LCWRQQ(CONTROL) */
void setcontrolfpqq_(const int16_t *control) TARVO_NOEXCEPT;
void lcwrqq_(const int16_t *control) TARVO_NOEXCEPT;
/* SUBROUTINE GETSTATUSFPQQ(STATUS), SSWRQQ(STATUS), INTEGER(2) STATUS */
void getstatusfpqq_(int16_t *status) TARVO_NOEXCEPT;
void sswrqq_(int16_t *status) TARVO_NOEXCEPT;
/* SUBROUTINE CLEARSTATUSFPQQ() */
void clearstatusfpqq_(void) TARVO_NOEXCEPT;
#if defined(__i386__)
/* i386 only, C calling convention: the x87 unit in the abstract word's layout. */
unsigned int _control87(unsigned int new_word, unsigned int mask) TARVO_NOEXCEPT;
unsigned int _status87(void) TARVO_NOEXCEPT;
unsigned int _clear87(void) TARVO_NOEXCEPT;
/* The whole x87 state into or from a 108-byte buffer; saving reinitialises the unit. */
void save_fp_state(void *buf) TARVO_NOEXCEPT;
void restore_fp_state(const void *buf) TARVO_NOEXCEPT;
#endif

#ifdef __cplusplus
}
#endif
#endif
