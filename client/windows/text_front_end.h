// client/windows/text_front_end.h: dialogs without a display: driven by a script of actions or by commands
// from a terminal, shown as text or JSON.
#pragma once

#include <iosfwd>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "client/windows/front_end.h"
#include "client/windows/input_line_reader.h"
#include "client/windows/text_action.h"

namespace pavex {

// How OK-and-Cancel boxes are answered.
enum class BoxAnswers { Yes, No, Ask };

struct TextFrontEndOptions {
    std::vector<TextAction> script;  // done in order; the first that fails ends it and cancels the dialog
    bool interactive = false;        // commands from `input` follow the script
    BoxAnswers answers = BoxAnswers::Ask;
    int input = -1;                    // file descriptor, borrowed; -1: nothing to read
    std::ostream* out = nullptr;       // what `show` prints; borrowed
    std::ostream* messages = nullptr;  // boxes, prompts and errors; borrowed
};

struct ShownBox {
    MessageBoxRequest box;
    int answer;
};

class TextFrontEnd : public FrontEnd {
public:
    explicit TextFrontEnd(TextFrontEndOptions options);

    void Run(Dialog& dialog) override;
    int MessageBox(const MessageBoxRequest& box) override;
    bool ChooseFile(std::string* path) override;

    // Every box shown so far.
    const std::vector<ShownBox>& Boxes() const { return boxes_; }
    // Why the script stopped, UTF-8; empty when it ran to its end.
    const std::string& Error() const { return error_; }
    // What the last dialog ended with; -1 before that.
    long Result() const { return result_; }

private:
    bool RunScript(Dialog& dialog);
    void RunSession(Dialog& dialog);
    void RunCommand(Dialog& dialog, const std::string& line);
    bool Perform(Dialog& dialog, const TextAction& action, std::string* error);
    bool AddFile(Dialog& dialog, const TextAction& action, std::string* error);
    bool RemoveFile(Dialog& dialog, const TextAction& action, std::string* error);
    std::optional<std::string> Ask(std::string_view prompt);
    std::ostream& Messages();

    TextFrontEndOptions options_;
    InputLineReader reader_;
    std::optional<std::string> chosenFile_;  // what the next file chooser answers
    std::vector<ShownBox> boxes_;
    std::string error_;
    long result_ = -1;
};

}  // namespace pavex
