// strings/cf_owner.h: owner of what a CoreFoundation Copy or Create call returns.
#pragma once

#include "platform/foundation.h"
#include "platform/owner.h"

template <typename Ref> void ReleaseCF(Ref ref)
{
    CFRelease(ref);
}

template <typename Ref> using CFOwner = Owner<Ref, ReleaseCF<Ref>>;
