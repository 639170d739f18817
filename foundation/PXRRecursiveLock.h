#pragma once

#include "foundation/PXRLock.h"

namespace lb {

// The thread that holds it may take it again.
using PXRRecursiveLock = PXRBasicLock<std::recursive_mutex>;

} // namespace lb
