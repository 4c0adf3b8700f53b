// client/store/c_idtable.cpp: the calls on tables of notes.
#include "client/store/open_table.h"
#include "platform/store.h"

namespace pavex {

HandleTable<OpenTable>& OpenTables()
{
    static HandleTable<OpenTable> tables;
    return tables;
}

namespace {

STATUS ReadTable(IDTABLE handle, const IdTable** table)
{
    OpenTable* const open = OpenTables().Find(handle);
    return open == nullptr ? kStatusBadHandle : open->Read(table);
}

}  // namespace
}  // namespace pavex

DWORD IDEntries(IDTABLE table)
{
    const pavex::IdTable* ids = nullptr;
    return pavex::ReadTable(table, &ids) == 0 ? ids->Count() : 0;
}

STATUS IDEnumerate(IDTABLE table, STATUS (*callback)(void* context, NOTEID id), void* context)
{
    const pavex::IdTable* ids = nullptr;
    if (const STATUS status = pavex::ReadTable(table, &ids); status != 0)
        return status;
    return ids->Visit([=](NOTEID id) { return callback(context, id); });
}

STATUS IDDestroyTable(IDTABLE table)
{
    return pavex::OpenTables().Remove(table) ? kStatusOk : kStatusBadHandle;
}
