/* Tarvo Fortran portability library: the POSIX binding (PXF routines). */
#ifndef TARVO_POSIX_H
#define TARVO_POSIX_H

#include <tarvo/records.h>

#ifdef __cplusplus
extern "C" {
#endif

#ifdef __cplusplus
}
#endif
#endif
