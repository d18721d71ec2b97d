// Values between COM's VARIANT and the component's.
#pragma once

#include <cstddef>
#include <limits>

#include "component/automation/variant.h"
#include "hosts/com/automation/owned_variant.h"
#include "hosts/com/automation/windows_headers.h"

namespace tof::com {

// References are followed. Every number type becomes the narrowest of the component's that holds
// it, a one-dimensional array of doubles or of any values that convert becomes an array with the
// same lower bound, an object a late-bound one. What the component has no type for (Null, records,
// arrays of several dimensions, arrays without a descriptor) becomes a missing value, which
// converts to nothing, so that the routine it is meant for raises the type mismatch. Of a longer
// array the first `most_elements` are taken: for a caller that refuses more, and need not spend
// memory on them. Error 7 when memory is out.
Variant FromVariant(const VARIANT& value,
                    std::size_t most_elements = std::numeric_limits<std::size_t>::max());

// An object that did not come through FromVariant has no COM counterpart: error 13.
OwnedVariant ToVariant(const Variant& value);

// Replaces what a caller's variable holds, through any chain of references to variants.
void StoreInto(VARIANT& variable, OwnedVariant value);

}  // namespace tof::com
