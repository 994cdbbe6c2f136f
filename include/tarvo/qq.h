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
