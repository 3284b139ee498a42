#include "shell/terminal/prompt.h"

#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <cwchar>
#include <filesystem>
#include <iostream>
#include <memory>

#include <histedit.h>

#include "shell/events/event_queue.h"
#include "shell/terminal/completion.h"
#include "shell/terminal/interrupt.h"

namespace shell {
namespace {

constexpr int HISTORY_SIZE = 1000;

// Returns an empty path if there is no home directory.
std::filesystem::path HistoryFile()
{
    const auto variable = [](const char* name) {
        const char* const value = std::getenv(name);
        return std::filesystem::path(value != nullptr ? value : "");
    };
    if (const auto state = variable("XDG_STATE_HOME"); !state.empty()) {
        return state / "tarnd-qrb" / "history";
    }
    const auto home = variable("HOME");
    return home.empty() ? home : home / ".local/state/tarnd-qrb/history";
}

// Line history of this and earlier sessions. Saved at the end.
class History {
public:
    History() : history_(history_init()), file_(HistoryFile())
    {
        Do(H_SETSIZE, HISTORY_SIZE);
        Do(H_SETUNIQUE, 1);
        if (!file_.empty()) {
            std::error_code ignored;
            std::filesystem::create_directories(file_.parent_path(), ignored);
            Do(H_LOAD, file_.c_str());
        }
    }
    // Replaced atomically, so that a full disk doesn't destroy the old history.
    ~History()
    {
        if (!file_.empty()) {
            const auto beside = file_.string() + "." + std::to_string(getpid());
            std::error_code ignored;
            if (Do(H_SAVE, beside.c_str()) >= 0) {
                std::filesystem::rename(beside, file_, ignored);
            }
            std::filesystem::remove(beside, ignored);
        }
        history_end(history_);
    }
    History(const History&) = delete;
    History& operator=(const History&) = delete;

    template <typename... Arguments>
    int Do(int operation, Arguments... arguments)
    {
        HistEvent event{};
        return ::history(history_, &event, operation, arguments...);
    }
    ::History* Get() { return history_; }

private:
    ::History* history_;
    std::filesystem::path file_;
};

// State for the callbacks of the line editor.
struct Prompt {
    explicit Prompt(Shell& runningShell) : shell(runningShell) {}

    Shell& shell;
    std::string text;
};

Prompt& PromptOf(EditLine* editor)
{
    Prompt* prompt = nullptr;
    el_get(editor, EL_CLIENTDATA, &prompt);
    return *prompt;
}

char* PromptText(EditLine* editor)
{
    Prompt& prompt = PromptOf(editor);
    prompt.text = prompt.shell.Writes().IsOpen() ? "qrb*> " : "qrb> ";
    return prompt.text.data();
}

std::string_view CommonStart(const std::vector<std::string>& words)
{
    std::string_view start = words.front();
    for (const std::string& word : words) {
        start = start.substr(
            0, static_cast<size_t>(std::ranges::mismatch(start, word).in1 - start.begin()));
    }
    return start;
}

// Prints the candidates in as many columns as fit the terminal.
void ListWords(const std::vector<std::string>& words, size_t terminalWidth)
{
    const auto longest = std::ranges::max(words, {}, &std::string::size).size();
    const size_t columns = std::max<size_t>(terminalWidth / (longest + 2), 1);
    std::cout << '\n';
    for (size_t i = 0; i < words.size(); ++i) {
        const bool endsLine = (i + 1) % columns == 0 || i + 1 == words.size();
        std::cout << words[i]
                  << (endsLine ? "\n" : std::string(longest + 2 - words[i].size(), ' '));
    }
    std::cout << std::flush;
}

size_t TerminalWidth(EditLine* editor)
{
    char name[] = "co";
    int columns = 80;
    void* unused = nullptr;
    el_get(editor, EL_GETTC, name, &columns, unused);
    return static_cast<size_t>(columns);
}

// Inserts the common prefix of all candidates. If there is nothing to insert, lists them.
unsigned char OnTab(EditLine* editor, int /*key*/)
{
    constexpr size_t MOST = 200;
    const LineInfo* line = el_line(editor);
    const auto [begun, candidates] =
        Complete({line->buffer, static_cast<size_t>(line->cursor - line->buffer)});
    if (candidates.empty()) {
        return CC_REFRESH_BEEP;
    }
    const std::string_view start = CommonStart(candidates);
    std::string added(start.substr(begun.size()));
    if (candidates.size() == 1 && !start.ends_with('=') && !start.ends_with('/')) {
        added += ' ';
    }
    if (!added.empty()) {
        return el_insertstr(editor, added.c_str()) == 0 ? CC_REFRESH : CC_ERROR;
    }
    if (candidates.size() <= MOST) {
        ListWords(candidates, TerminalWidth(editor));
    } else {
        std::cout << '\n' << candidates.size() << " possibilities\n" << std::flush;
    }
    return CC_REDISPLAY;
}

// Waits for a key. Events that arrive meanwhile are printed above the line.
int ReadKey(EditLine* editor, wchar_t* key)
{
    pollfd waitedFor[] = {{STDIN_FILENO, POLLIN, 0}, {Events().Descriptor(), POLLIN, 0}};
    while (poll(waitedFor, std::size(waitedFor), -1) < 0 || waitedFor[0].revents == 0) {
        if (waitedFor[1].revents == 0) {
            continue;
        }
        std::cout << "\r\033[K";
        PromptOf(editor).shell.PrintEvents();
        std::cout << std::flush;
        el_set(editor, EL_REFRESH);
    }
    std::mbstate_t state{};
    for (char byte = 0; read(STDIN_FILENO, &byte, 1) == 1;) {
        const size_t used = std::mbrtowc(key, &byte, 1, &state);
        if (used == static_cast<size_t>(-1)) {
            state = {};  // invalid encoding: the byte is dropped
        } else if (used != static_cast<size_t>(-2)) {
            return 1;
        }
    }
    return 0;
}

using Editor = std::unique_ptr<EditLine, decltype(&el_end)>;

Editor MakeEditor(History& history, Prompt& prompt)
{
    Editor editor(el_init("tarnd-qrb", stdin, stdout, stderr), el_end);
    el_set(editor.get(), EL_CLIENTDATA, &prompt);
    el_set(editor.get(), EL_PROMPT, PromptText);
    el_set(editor.get(), EL_EDITOR, "emacs");
    el_set(editor.get(), EL_HIST, ::history, history.Get());
    el_set(editor.get(), EL_GETCFN, ReadKey);
    el_set(editor.get(), EL_ADDFN, "complete", "Completes a word", OnTab);
    el_set(editor.get(), EL_BIND, "^I", "complete", nullptr);
    el_set(editor.get(), EL_BIND, "^R", "em-inc-search-prev", nullptr);
    // Ctrl-C discards the line and doesn't end the shell.
    el_set(editor.get(), EL_SETTY, "-d", "-isig", nullptr);
    el_set(editor.get(), EL_BIND, "^C", "em-kill-line", nullptr);
    el_source(editor.get(), nullptr);
    return editor;
}

std::string StartText(const Shell& shell)
{
    std::string text = "help lists the commands, Tab completes, Ctrl-D ends.\n";
    if (!shell.File().empty()) {
        text += "Writes stay in memory until save writes them to " + EscapeControls(shell.File()) +
                ".\n";
    }
    return text;
}

// Returns the first letter of the reply in lower case; 0 at the end of the input.
char Ask(const std::string& question)
{
    std::cout << question << std::flush;
    std::string reply;
    if (!std::getline(std::cin, reply)) {
        return 0;
    }
    return reply.empty() ? ' '
                         : static_cast<char>(std::tolower(static_cast<unsigned char>(reply[0])));
}

// Whether the shell may exit: no data would be lost, or the user confirms.
bool ConfirmEnd(Shell& shell)
{
    PendingWrites& writes = shell.Writes();
    if (writes.IsOpen() && writes.Waiting() > 0) {
        const char reply = Ask(std::to_string(writes.Waiting()) +
                               " rows of a transaction are not written. Commit them? [y/n/c] ");
        if (reply == 'y' && shell.Execute("commit") != Status::Success) {
            return false;
        }
        if (reply != 'y' && reply != 'n' && reply != 0) {
            return false;
        }
    }
    if (shell.File().empty() || writes.Unsaved() == 0) {
        return true;
    }
    const char* const verb = writes.Unsaved() == 1 ? " write is" : " writes are";
    const char reply = Ask(std::to_string(writes.Unsaved()) + verb + " not saved to " +
                           EscapeControls(shell.File()) + ". Save? [y/n/c] ");
    return reply == 'y' ? shell.Execute("save") == Status::Success : reply == 'n' || reply == 0;
}

}  // namespace

Status RunPrompt(Shell& shell)
{
    History history;
    Prompt prompt(shell);
    // Ctrl-C ends a command, not the shell; also before the editor sets the terminal, and at a
    // question.
    Interrupt interrupt;
    const Editor editor = MakeEditor(history, prompt);
    Status worst = Status::Success;
    std::cout << StartText(shell);
    for (;;) {
        int length = 0;
        const char* const text = shell.Ended() ? nullptr : el_gets(editor.get(), &length);
        if (text == nullptr || length <= 0) {
            if (!shell.Ended()) {
                std::cout << '\n';
            }
            if (ConfirmEnd(shell)) {
                return worst;
            }
            shell.Continue();
            continue;
        }
        const std::string line(text, static_cast<size_t>(length));
        if (line.find_first_not_of(" \t\n") == std::string::npos) {
            continue;
        }
        history.Do(H_ENTER, line.c_str());
        interrupt.Discard();
        worst = std::max(worst, shell.Execute(line));
    }
}

}  // namespace shell
