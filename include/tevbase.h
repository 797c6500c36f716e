// libtevbase: every public header.
#ifndef TEVBASE_H
#define TEVBASE_H

#include <tevbase/config.h>

// Foundation
#include <tevbase/alloc.h>
#include <tevbase/autoarr.h>
#include <tevbase/except.h>
#include <tevbase/objectbase.h>
#include <tevbase/pool.h>

// Text
#include <tevbase/string.h>
#include <tevbase/textutil.h>

// Geometry
#include <tevbase/geometry.h>

#endif
