/* Tarvo Fortran portability library: every exported routine. */
#ifndef TARVO_TARVO_H
#define TARVO_TARVO_H

#include <tarvo/records.h>
#include <tarvo/frame.h>
#include <tarvo/runtime.h>
#include <tarvo/portlib.h>
#include <tarvo/posix.h>
#include <tarvo/qq.h>

#endif
