/* Tarvo Fortran portability library: records and codes shared with callers. */
#ifndef TARVO_RECORDS_H
#define TARVO_RECORDS_H

#include <stddef.h>
#include <stdint.h>

/* Entry points never throw: C++ callers see that in the declarations, which must agree
   with the definitions. */
#ifdef __cplusplus
#define TARVO_NOEXCEPT noexcept
#else
#define TARVO_NOEXCEPT
#endif

/* Hidden length of a Fortran CHARACTER argument, passed by value after the visible ones. */
typedef size_t tarvo_len_t;

/* The library's own error codes, the same on every host. */
enum {
    TARVO_EARRAYLEN = 125,   /* array argument too short */
    TARVO_ENONAME = 126,     /* no such constant, structure or field name */
    TARVO_ENOHANDLE = 127,   /* handle names nothing */
    TARVO_EENDDIR = 128,     /* end of a directory stream */
    TARVO_ETRUNC = 129,      /* text output cut to the caller's length */
    TARVO_EEND = -1          /* end of file on a unit */
};

/* Diagnostic codes printed by the library (1000 to 1018). */
enum {
    TARVO_DIAG_FIRST = 1000,
    TARVO_DIAG_BADADDRESS = 1001,
    TARVO_DIAG_BADUNIT = 1002,
    TARVO_DIAG_RANGE = 1003,
    TARVO_DIAG_KILL = 1004,
    TARVO_DIAG_SEEK = 1005,
    TARVO_DIAG_TRUNCATED = 1006,
    TARVO_DIAG_INVALID = 1007,
    TARVO_DIAG_NOTHREADS = 1008,
    TARVO_DIAG_LAST = 1018
};

/* Type tags that begin every POSIX structure instance. */
enum {
    TARVO_TAG_SIGSET = 1,
    TARVO_TAG_SIGACTION = 2,
    TARVO_TAG_UTSNAME = 3,
    TARVO_TAG_TMS = 4,
    TARVO_TAG_DIRENT = 5,
    TARVO_TAG_STAT = 6,
    TARVO_TAG_UTIMBUF = 7,
    TARVO_TAG_FLOCK = 8,
    TARVO_TAG_TERMIOS = 9,
    TARVO_TAG_GROUP = 10,
    TARVO_TAG_PASSWD = 11
};

/* Preconnected Fortran units. */
enum { TARVO_STDIN_UNIT = 5, TARVO_STDOUT_UNIT = 6, TARVO_STDERR_UNIT = 0 };

/* File-information records of GETFILEINFOQQ and GETFILEINFOQQI8, packed as the Fortran
   caller lays them out (no padding). Times are seconds since the epoch, low 32 bits. */
typedef struct __attribute__((packed)) tarvo_file_info {
    int32_t creation;   /* never written */
    int32_t lastwrite;
    int32_t lastaccess;
    int32_t length;     /* size in bytes, low 32 bits */
    int32_t permit;     /* TARVO_FILE_DIR, TARVO_FILE_DEVICE or 0 */
    char name[255];     /* blank padded */
} tarvo_file_info;

typedef struct __attribute__((packed)) tarvo_file_info_i8 {
    int32_t creation;   /* status-change time */
    int32_t lastwrite;
    int32_t lastaccess;
    int64_t length;     /* size in bytes */
    int32_t permit;     /* TARVO_FILE_DIR, TARVO_FILE_DEVICE, TARVO_FILE_READONLY or 0 */
    char name[255];
} tarvo_file_info_i8;

#ifdef __cplusplus
#define TARVO_STATIC_ASSERT static_assert
#else
#define TARVO_STATIC_ASSERT _Static_assert
#endif
TARVO_STATIC_ASSERT(sizeof(tarvo_file_info) == 275, "4-byte file-information record");
TARVO_STATIC_ASSERT(offsetof(tarvo_file_info, permit) == 16, "permit of the 4-byte record");
TARVO_STATIC_ASSERT(offsetof(tarvo_file_info, name) == 20, "name of the 4-byte record");
TARVO_STATIC_ASSERT(sizeof(tarvo_file_info_i8) == 279, "8-byte file-information record");
TARVO_STATIC_ASSERT(offsetof(tarvo_file_info_i8, length) == 12, "length of the 8-byte record");
TARVO_STATIC_ASSERT(offsetof(tarvo_file_info_i8, permit) == 20, "permit of the 8-byte record");
TARVO_STATIC_ASSERT(offsetof(tarvo_file_info_i8, name) == 24, "name of the 8-byte record");
#undef TARVO_STATIC_ASSERT

/* The permit bits of a file-information record. */
enum { TARVO_FILE_READONLY = 1, TARVO_FILE_DEVICE = 4, TARVO_FILE_DIR = 16 };

/* Search handles of GETFILEINFOQQ (address-sized): in, start a search; out, its normal
   end or its failure. Any other value names a search in progress. */
enum { TARVO_FILE_FIRST = -1, TARVO_FILE_LAST = -2, TARVO_FILE_ERROR = -3 };

/* SETFILETIMEQQ: the current time instead of a packed time. */
enum { TARVO_FILE_CURTIME = -1 };

/* LOGICAL true as the calling compilers represent it. */
enum { TARVO_TRUE = 1, TARVO_FALSE = 0 };

#endif
