// Small text and number utilities.
#include <tevbase/textutil.h>

extern "C" int mth_round(double x)
{
    return x >= 0 ? static_cast<int>(x + 0.5) : -static_cast<int>(0.5 - x);
}
