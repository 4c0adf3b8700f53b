// client/store/open_database.h: the databases behind database handles.
#pragma once

#include <memory>

#include "client/store/database.h"
#include "client/store/handle_table.h"

namespace pavex {

// Shared with the notes that were opened in it, which may outlive the handle.
struct OpenDatabase {
    std::shared_ptr<Database> database;
};

// Handles are DBHANDLEs.
HandleTable<OpenDatabase>& OpenDatabases();
// Null for a handle that is not open.
std::shared_ptr<Database> DatabaseOf(DBHANDLE handle);

}  // namespace pavex
