// fuzz/calendar_fuzz.cpp: any bytes as a calendar file, down to the notes of its entries.
#include "client/import/calendar_reader.h"
#include "fuzz/checking_handler.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    using namespace pavex;
    static const MemoryFile memory;
    memory.Write(data, size);
    SourceFile file;
    file.path = memory.Path();
    file.size = size;
    CheckingHandler handler("Form");
    (void)ReadCalendar(file, ImportOptions{}, handler);
    return 0;
}
