/* Tarvo Fortran portability library: the QQ compatibility routines. */
#ifndef TARVO_QQ_H
#define TARVO_QQ_H

#include <tarvo/records.h>

#ifdef __cplusplus
extern "C" {
#endif

#ifdef __cplusplus
}
#endif
#endif
