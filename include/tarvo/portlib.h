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

/* Signals and alarm. A Fortran signal handler receives the signal number by reference; an
   alarm procedure takes no argument and runs on the library's timer thread. */
intptr_t signal_(const int32_t *signum, void (*proc)(int32_t *), const int32_t *flag) TARVO_NOEXCEPT;  /* INTEGER(POINTER_KIND) FUNCTION SIGNAL(SIGNUM, PROC, FLAG) */
int32_t alarm_(const int32_t *seconds, void (*proc)(void)) TARVO_NOEXCEPT;  /* INTEGER FUNCTION ALARM(SECONDS, PROC) */

/* Random numbers. FLAG: 1 restarts the shared sequence, 0 (or null where optional) draws
   on, any other value reseeds; RAN keeps its whole state in SEED. */
float ran_(int32_t *seed) TARVO_NOEXCEPT;                 /* REAL FUNCTION RAN(SEED) */
float rand_(const int32_t *flag) TARVO_NOEXCEPT;          /* REAL FUNCTION RAND([FLAG]) */
/* RANDOM is exported as "$$quenvatix$random_" only. GCC writes the label into assembler text,
   where a leading "$" must be quoted; clang names the symbol directly. */
#if defined(__clang__)
#define TARVO_RANDOM_SYMBOL "$$quenvatix$random_"
#else
#define TARVO_RANDOM_SYMBOL "\"$$quenvatix$random_\""
#endif
float quenvatix_random(const int32_t *flag) TARVO_NOEXCEPT __asm__(TARVO_RANDOM_SYMBOL);  /* REAL FUNCTION RANDOM(FLAG) */
double drand_(const int32_t *flag) TARVO_NOEXCEPT;        /* REAL(8) FUNCTION DRAND(FLAG) */
double drandm_(const int32_t *flag) TARVO_NOEXCEPT;
int32_t irand_(const int32_t *flag) TARVO_NOEXCEPT;       /* INTEGER FUNCTION IRAND([FLAG]) */
int32_t irandm_(const int32_t *flag) TARVO_NOEXCEPT;
void srand_(const int32_t *seed) TARVO_NOEXCEPT;          /* also seeds rand() for RANF */
void ranset_(const float *seed) TARVO_NOEXCEPT;
void dranset_(const double *seed) TARVO_NOEXCEPT;
void iranset_(const int32_t *seed) TARVO_NOEXCEPT;
void ranget_(int32_t *seed) TARVO_NOEXCEPT;
void iranget_(int32_t *seed) TARVO_NOEXCEPT;
float ranf_(void) TARVO_NOEXCEPT;                         /* rand() as a REAL, not scaled */

/* Bit, shift and numeric routines. Bit positions count from 0 at the least significant bit. */
void bis_(const int32_t *n, int32_t *word) TARVO_NOEXCEPT;
void bic_(const int32_t *n, int32_t *word) TARVO_NOEXCEPT;
int32_t bit_(const int32_t *n, const int32_t *word) TARVO_NOEXCEPT;            /* LOGICAL(4) */
void bisi8_(const int32_t *n, int64_t *word) TARVO_NOEXCEPT;
void bici8_(const int32_t *n, int64_t *word) TARVO_NOEXCEPT;
int64_t biti8_(const int32_t *n, const int64_t *word) TARVO_NOEXCEPT;
int32_t lshift_(const int32_t *value, const int32_t *count) TARVO_NOEXCEPT;
int32_t rshift_(const int32_t *value, const int32_t *count) TARVO_NOEXCEPT;
int32_t shiftl_(const int32_t *value, const int32_t *count) TARVO_NOEXCEPT;
int32_t shiftr_(const int32_t *value, const int32_t *count) TARVO_NOEXCEPT;
int64_t dshiftl_(const int64_t *left, const int64_t *right, const int64_t *count) TARVO_NOEXCEPT;
int64_t dshiftr_(const int64_t *left, const int64_t *right, const int64_t *count) TARVO_NOEXCEPT;
int64_t _dshiftl(int64_t left, int64_t right, int64_t count) TARVO_NOEXCEPT;   /* by value */
int64_t _dshiftr(int64_t left, int64_t right, int64_t count) TARVO_NOEXCEPT;
int32_t complint_(const int32_t *i) TARVO_NOEXCEPT;
float complreal_(const float *r) TARVO_NOEXCEPT;
int32_t compllog_(const int32_t *l) TARVO_NOEXCEPT;                              /* LOGICAL(4) */
int32_t csmg_(const int32_t *x, const int32_t *y, const int32_t *mask) TARVO_NOEXCEPT;
float dim_(const float *x, const float *y) TARVO_NOEXCEPT;
double ddim_(const double *x, const double *y) TARVO_NOEXCEPT;
int32_t iidim_(const int16_t *x, const int16_t *y) TARVO_NOEXCEPT;
int32_t jdim_(const int32_t *x, const int32_t *y) TARVO_NOEXCEPT;
int32_t jabs_(const int32_t *i) TARVO_NOEXCEPT;
int32_t jmod_(const int16_t *a, const int16_t *p) TARVO_NOEXCEPT;                 /* P = 0 raises SIGFPE */
int32_t inmax_(void) TARVO_NOEXCEPT;
int32_t intc_(const int32_t *i) TARVO_NOEXCEPT;
int32_t long_(const int16_t *i) TARVO_NOEXCEPT;
int32_t short_(const int32_t *i) TARVO_NOEXCEPT;
float ifloati_(const int16_t *i) TARVO_NOEXCEPT;
float ifloatj_(const int32_t *i) TARVO_NOEXCEPT;
double dfloati_(const int16_t *i) TARVO_NOEXCEPT;
double dfloatj_(const int32_t *i) TARVO_NOEXCEPT;
double idfloat_(const int32_t *i) TARVO_NOEXCEPT;
double dfloatk_(const int64_t *i) TARVO_NOEXCEPT;
double cdfloat_(const float *re) TARVO_NOEXCEPT;
float besj0_(const float *x) TARVO_NOEXCEPT;
float besj1_(const float *x) TARVO_NOEXCEPT;
float besjn_(const int32_t *n, const float *x) TARVO_NOEXCEPT;
float besy0_(const float *x) TARVO_NOEXCEPT;                                    /* 0 at infinity */
float besy1_(const float *x) TARVO_NOEXCEPT;
float besyn_(const int32_t *n, const float *x) TARVO_NOEXCEPT;
double dbesj0_(const double *x) TARVO_NOEXCEPT;
double dbesj1_(const double *x) TARVO_NOEXCEPT;
double dbesjn_(const int32_t *n, const double *x) TARVO_NOEXCEPT;
double dbesy0_(const double *x) TARVO_NOEXCEPT;
double dbesy1_(const double *x) TARVO_NOEXCEPT;
double dbesyn_(const int32_t *n, const double *x) TARVO_NOEXCEPT;
int32_t rindex_(const char *string, const char *substr, tarvo_len_t string_len, tarvo_len_t substr_len) TARVO_NOEXCEPT;

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

/* Command line (extensions): SUBROUTINE GETARG(N, ARG) and INTEGER FUNCTION IARGC(). */
void getarg_(const int32_t *n, char *arg, tarvo_len_t arg_len) TARVO_NOEXCEPT;
int32_t iargc_(void) TARVO_NOEXCEPT;

#ifdef __cplusplus
}
#endif
#endif
