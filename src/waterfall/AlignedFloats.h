#pragma once

#include "base/ZeroedArray.h"

namespace sonotrace {

/// The transform's vector code needs every block it works on to be aligned like the one it was planned for.
using AlignedFloats = ZeroedArray<float>;

} // namespace sonotrace
