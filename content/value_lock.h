// content/value_lock.h: the bytes of an item's value while they are read.
#pragma once

#include "platform/store.h"

// Locks a block of store memory for its life.  Bytes is null for a null or stale block.
class ValueLock {
public:
    explicit ValueLock(BLOCKID block) : block_(block), bytes_(static_cast<const char*>(OSLockBlock(block))) {}
    ~ValueLock()
    {
        if (bytes_ != nullptr)
            OSUnlockBlock(block_);
    }
    ValueLock(const ValueLock&) = delete;
    ValueLock& operator=(const ValueLock&) = delete;

    const char* Bytes() const { return bytes_; }

private:
    BLOCKID block_;
    const char* bytes_;
};
