#include "shell/prompt.h"

#include <histedit.h>

#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <memory>

namespace shell {
namespace {

constexpr int historySize = 1000;

std::filesystem::path HistoryFile()
{
    const char* const state = std::getenv("XDG_STATE_HOME");
    const char* const home  = std::getenv("HOME");
    if (state != nullptr && *state != '\0')
        return std::filesystem::path(state) / "tarnd-qrb" / "history";
    return std::filesystem::path(home != nullptr ? home : ".") / ".local/state/tarnd-qrb/history";
}

// The lines of earlier sessions, and of this one; kept when it ends.
class History {
public:
    History() : history_(history_init()), file_(HistoryFile())
    {
        std::error_code ignored;
        std::filesystem::create_directories(file_.parent_path(), ignored);
        Do(H_SETSIZE, historySize);
        Do(H_SETUNIQUE, 1);
        Do(H_LOAD, file_.c_str());
    }
    ~History()
    {
        Do(H_SAVE, file_.c_str());
        history_end(history_);
    }
    History(const History&)            = delete;
    History& operator=(const History&) = delete;

    template <typename... Arguments>
    void Do(int operation, Arguments... arguments)
    {
        HistEvent event{};
        ::history(history_, &event, operation, arguments...);
    }
    ::History* Get() { return history_; }

private:
    ::History*            history_;
    std::filesystem::path file_;
};

char* PromptText(EditLine* /*editor*/)
{
    static char text[] = "qrb> ";
    return text;
}

using Editor = std::unique_ptr<EditLine, decltype(&el_end)>;

Editor MakeEditor(History& history)
{
    Editor editor(el_init("tarnd-qrb", stdin, stdout, stderr), el_end);
    el_set(editor.get(), EL_PROMPT, PromptText);
    el_set(editor.get(), EL_EDITOR, "emacs");
    el_set(editor.get(), EL_SIGNAL, 1);
    el_set(editor.get(), EL_HIST, ::history, history.Get());
    el_source(editor.get(), nullptr);
    return editor;
}

}  // namespace

Status RunPrompt(Shell& shell)
{
    History      history;
    const Editor editor = MakeEditor(history);
    Status       worst  = Status::Good;
    while (!shell.Ended()) {
        int               length = 0;
        const char* const text   = el_gets(editor.get(), &length);
        if (text == nullptr || length <= 0)
            break;
        const std::string line(text, static_cast<size_t>(length));
        if (line.find_first_not_of(" \t\n") == std::string::npos)
            continue;
        history.Do(H_ENTER, line.c_str());
        worst = std::max(worst, shell.Execute(line));
        std::cout.flush();
    }
    if (!shell.Ended())
        std::cout << '\n';
    return worst;
}

}  // namespace shell
