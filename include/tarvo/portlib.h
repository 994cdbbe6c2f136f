/* Tarvo Fortran portability library: the classic portability routines. */
#ifndef TARVO_PORTLIB_H
#define TARVO_PORTLIB_H

#include <tarvo/records.h>

#ifdef __cplusplus
extern "C" {
#endif

/* File access and naming */
int32_t access_(const char *name, const char *mode, tarvo_len_t name_len, tarvo_len_t mode_len);
int32_t chdir_(const char *dir, tarvo_len_t dir_len);
int32_t chmod_(const char *name, const char *mode, tarvo_len_t name_len, tarvo_len_t mode_len);
int32_t getcwd_(char *dir, tarvo_len_t dir_len);
int32_t rename_(const char *from, const char *to, tarvo_len_t from_len, tarvo_len_t to_len);
int32_t unlink_(const char *name, tarvo_len_t name_len);
int32_t isatty_(const int32_t *unit);
void ttynam_(char *result, tarvo_len_t result_len, const int32_t *unit);

#ifdef __cplusplus
}
#endif
#endif
