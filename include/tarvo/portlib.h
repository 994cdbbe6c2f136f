/* Tarvo Fortran portability library: the classic portability routines. */
#ifndef TARVO_PORTLIB_H
#define TARVO_PORTLIB_H

#include <signal.h>
#include <tarvo/records.h>

#ifdef __cplusplus
extern "C" {
#endif

/* File access and naming */
int32_t access_(const char *name, const char *mode, tarvo_len_t name_len, tarvo_len_t mode_len) TARVO_NOEXCEPT;
int32_t chdir_(const char *dir, tarvo_len_t dir_len) TARVO_NOEXCEPT;
int32_t chmod_(const char *name, const char *mode, tarvo_len_t name_len, tarvo_len_t mode_len) TARVO_NOEXCEPT;
int32_t getcwd_(char *dir, tarvo_len_t dir_len) TARVO_NOEXCEPT;
int32_t rename_(const char *from, const char *to, tarvo_len_t from_len, tarvo_len_t to_len) TARVO_NOEXCEPT;
int32_t unlink_(const char *name, tarvo_len_t name_len) TARVO_NOEXCEPT;
int32_t isatty_(const int32_t *unit) TARVO_NOEXCEPT;
void ttynam_(char *result, tarvo_len_t result_len, const int32_t *unit) TARVO_NOEXCEPT;

/* File status arrays: STATB(13) is INTEGER(4), or INTEGER(8) in the i8 forms; element 13
   is never written. */
int32_t stat_(const char *name, int32_t *statb, tarvo_len_t name_len) TARVO_NOEXCEPT;
int32_t lstat_(const char *name, int32_t *statb, tarvo_len_t name_len) TARVO_NOEXCEPT;
int32_t fstat_(const int32_t *unit, int32_t *statb) TARVO_NOEXCEPT;
int32_t stati8_(const char *name, int64_t *statb, tarvo_len_t name_len) TARVO_NOEXCEPT;
int32_t lstati8_(const char *name, int64_t *statb, tarvo_len_t name_len) TARVO_NOEXCEPT;
int32_t fstati8_(const int32_t *unit, int64_t *statb) TARVO_NOEXCEPT;

/* Time and date. Character functions take their result buffer and its length first. */
intptr_t time_(void) TARVO_NOEXCEPT;                      /* INTEGER(TIME_KIND) FUNCTION TIME(): time_t width */
double rtc_(void) TARVO_NOEXCEPT;                         /* REAL(8) FUNCTION RTC() */
int32_t clockx_(double *x) TARVO_NOEXCEPT;                /* INTEGER FUNCTION CLOCKX(X) */
void gettimeofday_(int32_t *tv, int32_t *ierr) TARVO_NOEXCEPT;  /* SUBROUTINE GETTIMEOFDAY(TV(2), IERR) */
void time2_(char *result, tarvo_len_t result_len) TARVO_NOEXCEPT;   /* CHARACTER*8 FUNCTION TIME2() */
void clock_(char *result, tarvo_len_t result_len) TARVO_NOEXCEPT;   /* CHARACTER*8 FUNCTION CLOCK() */
void date_(char *result, tarvo_len_t result_len) TARVO_NOEXCEPT;    /* CHARACTER*9 (or *8) FUNCTION DATE() */
void date4_(char *result, tarvo_len_t result_len) TARVO_NOEXCEPT;   /* CHARACTER*11 FUNCTION DATE4() */
void jdate_(char *result, tarvo_len_t result_len) TARVO_NOEXCEPT;   /* CHARACTER*5 FUNCTION JDATE() */
void jdate4_(char *result, tarvo_len_t result_len) TARVO_NOEXCEPT;  /* CHARACTER*7 FUNCTION JDATE4() */
void fdate_(char *result, tarvo_len_t result_len) TARVO_NOEXCEPT;   /* CHARACTER*24 FUNCTION FDATE() */
void ctime_(char *result, tarvo_len_t result_len, const int32_t *stime) TARVO_NOEXCEPT;  /* CHARACTER*25 FUNCTION CTIME(STIME) */
void ltime_(const int32_t *stime, int32_t *tarray) TARVO_NOEXCEPT;   /* SUBROUTINE LTIME(STIME, TARRAY(9)) */
void gmtime_(const int32_t *stime, int32_t *tarray) TARVO_NOEXCEPT;  /* SUBROUTINE GMTIME(STIME, TARRAY(9)) */
void itime_(int32_t *iarray) TARVO_NOEXCEPT;                          /* SUBROUTINE ITIME(IARRAY(3)) */
void idate_(int32_t *iarray) TARVO_NOEXCEPT;                          /* SUBROUTINE IDATE(IARRAY(3)) */
void idate1_(int32_t *month, int32_t *day, int32_t *year) TARVO_NOEXCEPT;
void f_idate4_(int32_t *iarray) TARVO_NOEXCEPT;
void idate4_(int32_t *month, int32_t *day, int32_t *year) TARVO_NOEXCEPT;
void getdat_(int32_t *year, int32_t *month, int32_t *day) TARVO_NOEXCEPT;
void getdati2_(int16_t *year, int16_t *month, int16_t *day) TARVO_NOEXCEPT;
void gettim_(int32_t *hour, int32_t *minute, int32_t *second, int32_t *hundredths) TARVO_NOEXCEPT;
void gettimi2_(int16_t *hour, int16_t *minute, int16_t *second, int16_t *hundredths) TARVO_NOEXCEPT;
int32_t setdat_(const int32_t *year, const int32_t *month, const int32_t *day) TARVO_NOEXCEPT;   /* LOGICAL(4) */
int32_t setdati2_(const int16_t *year, const int16_t *month, const int16_t *day) TARVO_NOEXCEPT;
int32_t settim_(const int32_t *hour, const int32_t *minute, const int32_t *second, const int32_t *hundredths) TARVO_NOEXCEPT;
int32_t settimi2_(const int16_t *hour, const int16_t *minute, const int16_t *second, const int16_t *hundredths) TARVO_NOEXCEPT;
float secnds_(const float *x) TARVO_NOEXCEPT;             /* REAL(4) FUNCTION SECNDS(X) */
float fortran_f_secnds(const float *x) TARVO_NOEXCEPT;
double timef_(void) TARVO_NOEXCEPT;                       /* REAL(8) FUNCTION TIMEF() */
double dclock_(void) TARVO_NOEXCEPT;                      /* REAL(8) FUNCTION DCLOCK() */
float etime_(float *tarray) TARVO_NOEXCEPT;               /* REAL(4) FUNCTION ETIME(TARRAY(2)) */
float dtime_(float *tarray) TARVO_NOEXCEPT;               /* REAL(4) FUNCTION DTIME(TARRAY(2)) */
double dtimer8_(double *tarray) TARVO_NOEXCEPT;           /* REAL(8) FUNCTION DTIMER8(TARRAY(2)) */

/* Process, environment and host */
int32_t system_(const char *command, tarvo_len_t command_len) TARVO_NOEXCEPT;
void getenv_(const char *name, char *value, tarvo_len_t name_len, tarvo_len_t value_len) TARVO_NOEXCEPT;
void scanenv_(const char *pattern, char *name, char *value, tarvo_len_t pattern_len, tarvo_len_t name_len,
              tarvo_len_t value_len) TARVO_NOEXCEPT;
void getlog_(char *name, tarvo_len_t name_len) TARVO_NOEXCEPT;
int32_t hostnm_(char *name, tarvo_len_t name_len) TARVO_NOEXCEPT;
int32_t hostnam_(char *name, tarvo_len_t name_len) TARVO_NOEXCEPT;
int32_t getpid_(void) TARVO_NOEXCEPT;
int32_t getuid_(void) TARVO_NOEXCEPT;
int32_t getgid_(void) TARVO_NOEXCEPT;
int32_t kill_(const int32_t *pid, const int32_t *signum) TARVO_NOEXCEPT;
void sleep_(const int32_t *seconds) TARVO_NOEXCEPT;       /* null or negative: returns at once */
/* MESSAGE optional (null); ends the process with SIGABRT */
__attribute__((__noreturn__)) void abort_(const char *message, tarvo_len_t message_len) TARVO_NOEXCEPT;
/* STATUS optional (null: 0); flushes the Fortran units and ends the process */
__attribute__((__noreturn__)) void exit_(const int32_t *status) TARVO_NOEXCEPT;

/* Unit character I/O */
int32_t fgetc_(const int32_t *unit, char *ch, tarvo_len_t ch_len) TARVO_NOEXCEPT;
int32_t getc_(char *ch, tarvo_len_t ch_len) TARVO_NOEXCEPT;
int32_t fputc_(const int32_t *unit, const char *ch, tarvo_len_t ch_len) TARVO_NOEXCEPT;
int32_t putc_(const char *ch, tarvo_len_t ch_len) TARVO_NOEXCEPT;
int32_t fseek_(const int32_t *unit, const int32_t *offset, const int32_t *origin) TARVO_NOEXCEPT;
int32_t fseeki8_(const int32_t *unit, const int64_t *offset, const int32_t *origin) TARVO_NOEXCEPT;
int32_t ftell_(const int32_t *unit) TARVO_NOEXCEPT;
int64_t ftelli8_(const int32_t *unit) TARVO_NOEXCEPT;
int32_t getpos_(const int32_t *unit) TARVO_NOEXCEPT;
int64_t getposi8_(const int32_t *unit) TARVO_NOEXCEPT;
int32_t flush_(const int32_t *unit) TARVO_NOEXCEPT;


/* IEEE flags and trap handlers */
/* INTEGER(4) FUNCTION IEEE_FLAGS(ACTION, MODE, IN, OUT) */
int32_t ieee_flags_(const char *action, const char *mode, const char *in, char *out, tarvo_len_t action_len,
                    tarvo_len_t mode_len, tarvo_len_t in_len, tarvo_len_t out_len) TARVO_NOEXCEPT;
/* INTEGER(INT_PTR_KIND()) FUNCTION IEEE_HANDLER(ACTION, EXCEPTION, HANDLER); HANDLER is
   SUBROUTINE HANDLER(SIGNUM, CODE), both INTEGER(4) */
intptr_t ieee_handler_(const char *action, const char *exception, void (*handler)(int32_t *, const int32_t *),
                       tarvo_len_t action_len, tarvo_len_t exception_len) TARVO_NOEXCEPT;
/* The SIGFPE handler IEEE_HANDLER installs; never returns. */
void general_handler(int signum, siginfo_t *info, void *context) TARVO_NOEXCEPT;
/* SUBROUTINE IEEE_SET_MXCSR(FLAGS), IEEE_CLEAR_MXCSR(FLAGS), FLAGS INTEGER(4) by value */
void ieee_set_mxcsr(int32_t flags) TARVO_NOEXCEPT;
void ieee_clear_mxcsr(int32_t flags) TARVO_NOEXCEPT;

#ifdef __cplusplus
}
#endif
#endif
