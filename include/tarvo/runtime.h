/* Tarvo Fortran portability library: run-time operations Fortran programs call directly. */
#ifndef TARVO_RUNTIME_H
#define TARVO_RUNTIME_H

#include <tarvo/records.h>

#ifdef __cplusplus
extern "C" {
#endif

/* SUBROUTINE FLUSHQQ(IUNIT): writes the unit's pending output; non-zero on success. */
int32_t flushqq_(const int32_t *unit) TARVO_NOEXCEPT;
/* LOGICAL(4) FUNCTION COMMITQQ(IUNIT): flushes the unit and commits it to storage. */
int32_t commitqq_(const int32_t *unit) TARVO_NOEXCEPT;
/* INTEGER FUNCTION FOR_MABREL_VERSION(): the companion run-time's version code. */
int32_t for_mabrel_version_(void) TARVO_NOEXCEPT;

#ifdef __cplusplus
}
#endif
#endif
