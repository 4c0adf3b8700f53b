// client/windows/command_handles.cpp: commands that carry a message handle.
#include "client/windows/command_handles.h"

#include <algorithm>
#include <vector>

namespace pavex {

namespace {

constexpr unsigned long kHandleBit = 0x80000000UL;

// Ids by handle; client's main thread only.  There are as many as controls with a key, so it never shrinks.
std::vector<int>& Ids()
{
    static std::vector<int> ids;
    return ids;
}

}  // namespace

unsigned long CommandHandleOf(int id)
{
    std::vector<int>& ids = Ids();
    auto found = std::find(ids.begin(), ids.end(), id);
    if (found == ids.end())
        found = ids.insert(ids.end(), id);
    return kHandleBit | static_cast<unsigned long>(found - ids.begin());
}

unsigned int IdOfCommandHandle(unsigned long wParam)
{
    const unsigned long index = wParam & ~kHandleBit;
    if ((wParam & kHandleBit) == 0 || index >= Ids().size())
        return 0;
    return static_cast<unsigned int>(Ids()[index]);
}

}  // namespace pavex
