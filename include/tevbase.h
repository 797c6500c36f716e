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
#include <tevbase/cstr.h>
#include <tevbase/bytestring.h>
#include <tevbase/numconv.h>
#include <tevbase/strpool.h>
#include <tevbase/textutil.h>
#include <tevbase/format.h>

// Containers
#include <generic/tvarr>
#include <tevbase/varr.h>
#include <generic/tolist>
#include <tevbase/list.h>
#include <tevbase/strlist.h>
#include <generic/gohash>
#include <tevbase/strhash.h>
#include <tevbase/set.h>
#include <tevbase/bnode.h>
#include <tevbase/tmap.h>
#include <generic/tvector>
#include <tevbase/vars.h>

// Geometry
#include <tevbase/geometry.h>
#include <tevbase/decompose.h>
#include <tevbase/stroke.h>

// Networking
#include <tevbase/pollfd.h>

#endif
