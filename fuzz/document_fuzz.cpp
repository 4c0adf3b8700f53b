// fuzz/document_fuzz.cpp: any bytes as a text, as Markdown and as a bookmark file, down to the notes.
#include "client/import/bookmark_reader.h"
#include "client/import/document_reader.h"
#include "fuzz/checking_handler.h"

namespace pavex {
namespace {

// A further name of a file, one that says Markdown.
class MarkdownName {
public:
    explicit MarkdownName(const MemoryFile& file) : path_("/tmp/document_fuzz-" + std::to_string(::getpid()) + ".md")
    {
        if (::symlink(file.Path().c_str(), path_.c_str()) != 0)
            std::abort();
    }
    ~MarkdownName() { ::unlink(path_.c_str()); }
    MarkdownName(const MarkdownName&) = delete;
    MarkdownName& operator=(const MarkdownName&) = delete;

    const std::string& Path() const { return path_; }

private:
    std::string path_;
};

}  // namespace
}  // namespace pavex

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    using namespace pavex;
    static const MemoryFile memory;
    static const MarkdownName markdown(memory);
    memory.Write(data, size);
    CheckingHandler handler("Title");
    SourceFile file;
    file.size = size;
    file.path = memory.Path();
    (void)ReadBookmarks(file, ImportOptions{}, handler);
    (void)ReadDocument(file, ImportOptions{}, handler);
    file.path = markdown.Path();
    (void)ReadDocument(file, ImportOptions{}, handler);
    return 0;
}
