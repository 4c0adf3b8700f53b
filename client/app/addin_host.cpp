// client/app/addin_host.cpp: the add-in as the client loads it.
#include "client/app/addin_host.h"

#include <dlfcn.h>

#include <cstdint>
#include <cstring>
#include <filesystem>
#include <vector>

#include "client/app/program_files.h"
#include "client/store/charset.h"
#include "client/store/host.h"

namespace pavex {

namespace {

// The client's side of the record's wire format.
constexpr size_t kStatusOffset = 4;
constexpr size_t kMenuTextOffset = 6;
constexpr size_t kMenuTextBytes = 63;
constexpr uint16_t kNoMenu = 0xFFFF;
constexpr unsigned int kLoad = 0;
constexpr unsigned int kDialog = 2;
constexpr unsigned int kUnload = 3;

}  // namespace

std::unique_ptr<AddIn> AddIn::Load(std::string* error)
{
    const std::string path = FindLibrary("libtorvik.so");
    SetAddInBundle(BundleFolder());
    void* const library = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (library == nullptr) {
        *error = std::string("cannot load the add-in: ") + dlerror();
        return nullptr;
    }
    const auto entry = reinterpret_cast<Entry>(dlsym(library, "MainEntryPoint"));
    if (entry == nullptr) {
        *error = "cannot use the add-in " + path + ": it has no entry";
        return nullptr;
    }
    return std::unique_ptr<AddIn>(new AddIn(entry));
}

bool AddIn::Start()
{
    entry_(kLoad, record_.data());
    uint16_t status = 0;
    std::memcpy(&status, record_.data() + kStatusOffset, sizeof status);
    return status != kNoMenu;
}

bool AddIn::IsRunning() const
{
    return ThreadsMade() != 0;
}

void AddIn::OpenDialog()
{
    unsigned long argument = 0;
    entry_(kDialog, &argument);
}

void AddIn::Stop()
{
    entry_(kUnload, record_.data());
    RequestTermination();
    JoinThreads();
}

std::string AddIn::MenuText() const
{
    const char* const text = record_.data() + kMenuTextOffset;
    return Utf8FromScs({text, strnlen(text, kMenuTextBytes)});
}

}  // namespace pavex
