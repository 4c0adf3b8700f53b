// client/store/open_table.h: the tables of notes behind table handles.
#pragma once

#include <functional>
#include <memory>

#include "client/store/handle_table.h"
#include "client/store/id_table.h"

namespace pavex {

// A table that is only filled in when somebody asks what is in it.
class OpenTable {
public:
    explicit OpenTable(IdTable table) : table_(std::make_unique<IdTable>(std::move(table))) {}
    explicit OpenTable(std::function<STATUS(IdTable*)> load) : load_(std::move(load)) {}

    // *table is borrowed; what went wrong with the filling in is told each time.
    STATUS Read(const IdTable** table)
    {
        if (!table_) {
            auto loaded = std::make_unique<IdTable>();
            if (const STATUS status = load_(loaded.get()); status != 0)
                return status;
            table_ = std::move(loaded);
        }
        *table = table_.get();
        return 0;
    }

private:
    std::unique_ptr<IdTable> table_;
    std::function<STATUS(IdTable*)> load_;
};

// Handles are IDTABLEs.
HandleTable<OpenTable>& OpenTables();

}  // namespace pavex
