// client/app/addin_host.h: the add-in as the client loads it: a library, its one entry, a record.
#pragma once

#include <array>
#include <memory>
#include <string>

namespace pavex {

class AddIn {
public:
    // Finds libtorvik and its texts beside the program and loads it.  Null, with *error naming the file
    // and the reason, when that fails.  The library stays loaded for the life of the process: its thread
    // may still be in it.
    static std::unique_ptr<AddIn> Load(std::string* error);

    // The client starts: the add-in decides whether to run.  True when its indexing may run.
    bool Start();
    // True when Start made the indexing thread.
    bool IsRunning() const;
    // Opens the settings dialog modally, in the current front end.
    void OpenDialog();
    // The client ends: asks the indexing thread to end and waits for it.
    void Stop();

    // The menu entry's text, UTF-8; empty when the add-in has none.
    std::string MenuText() const;

private:
    using Entry = int (*)(unsigned int code, void* record);
    explicit AddIn(Entry entry) : entry_(entry) {}

    Entry entry_;
    alignas(8) std::array<char, 72> record_{};
};

}  // namespace pavex
