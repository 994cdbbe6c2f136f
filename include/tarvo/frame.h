/* Tarvo Fortran portability library: frame entry points (strings, errors, version).
 * Every argument is passed by reference except where marked "by value"; hidden
 * CHARACTER lengths follow the visible arguments. */
#ifndef TARVO_FRAME_H
#define TARVO_FRAME_H

#include <tarvo/records.h>

#ifdef __cplusplus
extern "C" {
#endif

/* INTEGER FUNCTION LNBLNK(STRING): position of the last non-blank, 0 if none. */
int32_t lnblnk_(const char *string, tarvo_len_t string_len) TARVO_NOEXCEPT;
/* INTEGER FUNCTION IPXFLENTRIM(STRING): length without trailing blanks. */
int32_t ipxflentrim_(const char *string, tarvo_len_t string_len) TARVO_NOEXCEPT;
/* INTEGER FUNCTION PXFUCOMPARE(I1, I2, ICMPR, IDIFF): unsigned comparison. */
int32_t pxfucompare_(const int32_t *i1, const int32_t *i2, int32_t *icmpr, int32_t *idiff) TARVO_NOEXCEPT;

/* INTEGER FUNCTION IERRNO(): last error of the classic routines. */
int32_t ierrno_(void) TARVO_NOEXCEPT;
/* INTEGER FUNCTION GETLASTERROR() and GETLASTERRORQQ(): the thread's errno. */
int32_t getlasterror_(void) TARVO_NOEXCEPT;
int32_t getlasterrorqq_(void) TARVO_NOEXCEPT;
/* Value plus one (by value). */
int32_t for_getsystemerror_dummy(int32_t value) TARVO_NOEXCEPT;

/* Error texts, the library's own codes (125-129, -1, 1001-1018) included.
 * SUBROUTINE TARVO_ERRTEXT(CODE, MESSAGE), GERROR(MESSAGE) for IERRNO's number, and
 * PERROR(PREFIX), which prints "PREFIX: text" on standard error. */
void tarvo_errtext_(const int32_t *code, char *message, tarvo_len_t message_len) TARVO_NOEXCEPT;
void gerror_(char *message, tarvo_len_t message_len) TARVO_NOEXCEPT;
void perror_(const char *prefix, tarvo_len_t prefix_len) TARVO_NOEXCEPT;

/* Diagnostics on standard error (code by value). */
int __tarvo_lib_warn(int32_t code) TARVO_NOEXCEPT;
#ifdef __cplusplus
[[noreturn]]
#else
_Noreturn
#endif
void __tarvo_lib_err(int32_t code) TARVO_NOEXCEPT;

/* "@(#)Tarvo Fortran portability library\tV<version>\t<build date>" */
extern char for__portlib_version_string[];
/* INTEGER FUNCTION FOR_LODRIK_VERSION(STRING): the version text; returns 3. */
int32_t for_lodrik_version_(char *string, tarvo_len_t string_len) TARVO_NOEXCEPT;

#ifdef __cplusplus
}
#endif
#endif
