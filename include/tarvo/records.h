/* Tarvo Fortran portability library: records and codes shared with callers. */
#ifndef TARVO_RECORDS_H
#define TARVO_RECORDS_H

#include <stddef.h>
#include <stdint.h>

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

/* LOGICAL true as the calling compilers represent it. */
enum { TARVO_TRUE = 1, TARVO_FALSE = 0 };

#endif
