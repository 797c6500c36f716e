// Small text and number utilities.
#ifndef TEVBASE_TEXTUTIL_H
#define TEVBASE_TEXTUTIL_H

#include <tevbase/config.h>

TEVBASE_C_BEGIN

// Rounds half away from zero: 2.5 gives 3, -2.5 gives -3.
TEVBASE_API int mth_round(double x);

TEVBASE_C_END

#endif
