// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "Prompt.h"

#include "base/DnView.h"
#include "base/Environment.h"
#include "cli/input/WordSplitter.h"
#include "cli/output/AlignedText.h"
#include "cli/session/HeldInterrupts.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <clocale>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cwchar>
#include <system_error>

#include <histedit.h>
#include <langinfo.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <unistd.h>

namespace OrvHost {

namespace {

constexpr int kHistoryLines = 1000;
constexpr std::size_t kMostShown = 200;

// A terminal that is asked for it marks what is pasted, between kPasteBegin and kPasteEnd.
constexpr const char* kMarkPastes = "\x1b[?2004h";
constexpr const char* kMarkNoPastes = "\x1b[?2004l";
constexpr const char* kPasteBegin = "\\e[200~";
constexpr const char* kPasteEnd = "\x1b[201~";

// Sets the locale for characters of several bytes. An ASCII locale such as "C" would drop all other
// characters from the input; values are UTF-8, so UTF-8 is used then.
void useWideCharacters() {
    // NOLINTBEGIN(concurrency-mt-unsafe): no other thread runs while there is a prompt
    std::setlocale(LC_CTYPE, "");
    if (nl_langinfo(CODESET) == std::string("ANSI_X3.4-1968")) {
        std::setlocale(LC_CTYPE, "C.UTF-8");
    }
    // NOLINTEND(concurrency-mt-unsafe)
}

// One byte from the terminal: its number, 0 at the end or if \p endFd, which may be -1, can be
// read, -1 for a failure or Ctrl-C (EINTR).
ssize_t readByte(const sigset_t& mask, int endFd, char& byte) {
    std::array<pollfd, 2> waiting{{{STDIN_FILENO, POLLIN, 0}, {endFd, POLLIN, 0}}};
    if (ppoll(waiting.data(), waiting.size(), nullptr, &mask) < 0) {
        return -1;
    }
    if (waiting[1].revents != 0) {
        return 0;
    }
    return read(STDIN_FILENO, &byte, 1);
}

std::string withoutLineEnd(const char* text, int length) {
    std::string line(text, static_cast<std::size_t>(length));
    line.erase(line.find_last_not_of("\r\n") + 1);
    return line;
}

// The form of a candidate in a list: for DNs only the last step, which is different for each.
std::string shortForm(const std::string& candidate) {
    return std::string(DnView(candidate).last().text());
}

}

/// Owns the line editor's objects.
class Prompt::Editor {
public:
    Editor(Prompt::Complete complete, std::filesystem::path historyFile, int endFd)
        : mComplete(std::move(complete)),
          mHistoryFile(std::move(historyFile)),
          mEndFd(endFd),
          mEditLine(el_init("orvhost", stdin, stdout, stderr)),
          mHistory(history_init()) {
        useWideCharacters();
        HistEvent event;
        history(mHistory, &event, H_SETSIZE, kHistoryLines);
        history(mHistory, &event, H_SETUNIQUE, 1);
        el_set(mEditLine, EL_CLIENTDATA, this);
        el_set(mEditLine, EL_GETCFN, &readCharacter);
        el_set(mEditLine, EL_PROMPT, &promptText);
        el_set(mEditLine, EL_EDITOR, "emacs");
        el_set(mEditLine, EL_HIST, &history, mHistory);
        // The wide function keeps these constants; the narrow one would make copies of them and
        // never free those.
        el_wset(mEditLine, EL_ADDFN, L"orv-complete", L"complete the word", &completeWord);
        el_set(mEditLine, EL_BIND, "^I", "orv-complete", nullptr);
        el_wset(mEditLine, EL_ADDFN, L"orv-paste", L"take what is pasted", &beginPaste);
        el_set(mEditLine, EL_BIND, kPasteBegin, "orv-paste", nullptr);
        writeMark(kMarkPastes);
        loadHistory();
    }
    Editor(const Editor&) = delete;
    Editor& operator=(const Editor&) = delete;
    ~Editor() {
        writeMark(kMarkNoPastes);
        saveHistory();
        history_end(mHistory);
        el_end(mEditLine);
    }

    std::optional<std::string> readLine(const std::string& prompt, bool isRemembered) {
        mPromptText = prompt;
        const HeldInterrupts guard;
        mGuard = &guard;
        mIsInterrupted = false;
        // Before the prompt is printed, so that keys go to the editor, not to the terminal, as soon
        // as the prompt is visible.
        el_set(mEditLine, EL_PREP_TERM, 1);
        int length = 0;
        const char* text = el_gets(mEditLine, &length);
        if (text == nullptr || length <= 0) {
            return atNoLine();
        }
        std::string line = withoutLineEnd(text, length);
        if (isRemembered && !line.empty()) {
            HistEvent event;
            history(mHistory, &event, H_ENTER, line.c_str());
        }
        return line;
    }

    bool wasInterrupted() const { return mIsInterrupted; }

private:
    static char* promptText(EditLine* editLine) {
        void* self = nullptr;
        el_get(editLine, EL_CLIENTDATA, &self);
        return static_cast<Editor*>(self)->mPromptText.data();
    }

    std::optional<std::string> atNoLine() {
        std::fputs("\n", stdout);
        el_set(mEditLine, EL_PREP_TERM, 0);
        if (mIsInterrupted) {
            el_reset(mEditLine);
            return std::string();
        }
        return std::nullopt;
    }

    // One character, which can be several bytes. The result is that of readByte.
    static int readCharacter(EditLine* editLine, wchar_t* character) {
        void* self = nullptr;
        el_get(editLine, EL_CLIENTDATA, &self);
        return static_cast<Editor*>(self)->nextCharacter(*character);
    }

    static void writeMark(const char* mark) {
        if (hasCapableTerminal()) {
            std::fputs(mark, stdout);
            std::fflush(stdout);
        }
    }

    static unsigned char beginPaste(EditLine* editLine, int) {
        void* self = nullptr;
        el_get(editLine, EL_CLIENTDATA, &self);
        static_cast<Editor*>(self)->mIsPasting = true;
        return CC_NORM;
    }

    // A tab that is pasted separates words, and completes nothing.
    int nextCharacter(wchar_t& character) {
        int count = readWide(character);
        if (mIsPasting && count == 1 && character == *kPasteEnd) {
            for (const char* rest = kPasteEnd + 1; *rest != '\0' && count == 1; ++rest) {
                count = readWide(character);
            }
            mIsPasting = false;
            count = count == 1 ? readWide(character) : count;
        }
        if (mIsPasting && count == 1 && character == L'\t') {
            character = L' ';
        }
        return count;
    }

    int readWide(wchar_t& character) {
        std::mbstate_t state{};
        for (;;) {
            char byte = 0;
            const ssize_t count = readByte(mGuard->before(), mEndFd, byte);
            if (count <= 0) {
                mIsInterrupted = count < 0 && errno == EINTR;
                return static_cast<int>(count);
            }
            // NOLINTNEXTLINE(concurrency-mt-unsafe): the state is this call's own
            const std::size_t length = std::mbrtowc(&character, &byte, 1, &state);
            if (length == static_cast<std::size_t>(-1)) {
                state = {};
            } else if (length != static_cast<std::size_t>(-2)) {
                return 1;
            }
        }
    }

    static unsigned char completeWord(EditLine* editLine, int) {
        void* self = nullptr;
        el_get(editLine, EL_CLIENTDATA, &self);
        return static_cast<Editor*>(self)->complete();
    }

    unsigned char complete() {
        const LineInfo* info = el_line(mEditLine);
        const std::string line(info->buffer, info->cursor);
        const Completion completion = mComplete(line);
        if (completion.candidates.empty()) {
            return CC_REFRESH_BEEP;
        }
        const bool isOne = completion.candidates.size() == 1;
        const std::string common = commonPrefix(completion.candidates);
        const std::string typed = splitWords(line.substr(completion.start)).words.empty()
                                      ? ""
                                      : splitWords(line.substr(completion.start)).words.front();
        if (isOne || common.size() > typed.size()) {
            replaceWord(line.size() - completion.start, common,
                        isOne && !completion.canGoOn && common.back() != '=');
            return CC_REFRESH;
        }
        showAll(completion);
        return CC_REDISPLAY;
    }

    void replaceWord(std::size_t typedLength, const std::string& word, bool isComplete) {
        el_deletestr(mEditLine, static_cast<int>(typedLength));
        el_insertstr(mEditLine, (quoteWord(word) + (isComplete ? " " : "")).c_str());
    }

    void showAll(const Completion& completion) const {
        const LineInfo* info = el_line(mEditLine);
        const std::size_t columns = screenColumns();
        const std::size_t row = rowsOf({info->buffer, info->cursor}, columns);
        const std::size_t lastRow = rowsOf({info->buffer, info->lastchar}, columns);
        std::vector<std::string> texts;
        const std::size_t shown = std::min(completion.candidates.size(), kMostShown);
        for (std::size_t at = 0; at < shown; ++at) {
            const std::string text = completion.candidates[at].substr(completion.shownFrom);
            texts.push_back(scalarText(JsonValue(shortForm(text))));
        }
        std::string list = layOutColumns(texts, columns);
        if (shown < completion.candidates.size()) {
            list += "and " + std::to_string(completion.candidates.size() - shown) + " more\n";
        }
        // The editor draws the line again as many rows higher as the cursor was in it.
        std::fputs((std::string(lastRow - row + 1, '\n') + list + std::string(row, '\n')).c_str(),
                   stdout);
        std::fflush(stdout);
    }

    /// The row of the character after \p text, with the prompt before it.
    std::size_t rowsOf(std::string_view text, std::size_t columns) const {
        return shownColumns(mPromptText + std::string(text)) / columns;
    }

    static std::size_t screenColumns() {
        winsize size{};
        const bool isKnown = ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0;
        return isKnown ? size.ws_col : 80;
    }

    void loadHistory() {
        if (!mHistoryFile.empty()) {
            HistEvent event;
            history(mHistory, &event, H_LOAD, mHistoryFile.c_str());
        }
    }

    void saveHistory() {
        if (mHistoryFile.empty()) {
            return;
        }
        std::error_code ignored;
        std::filesystem::create_directories(mHistoryFile.parent_path(), ignored);
        HistEvent event;
        history(mHistory, &event, H_SAVE, mHistoryFile.c_str());
    }

    Prompt::Complete mComplete;
    std::filesystem::path mHistoryFile;
    int mEndFd;
    std::string mPromptText;
    EditLine* mEditLine;
    History* mHistory;
    const HeldInterrupts* mGuard = nullptr; ///< while a line is read
    bool mIsInterrupted = false;
    bool mIsPasting = false;
};

Prompt::Prompt(Complete complete, std::filesystem::path historyFile, int endFd)
    : mEditor(std::make_unique<Editor>(std::move(complete), std::move(historyFile), endFd)) {}

Prompt::~Prompt() = default;

std::optional<std::string> Prompt::readLine(const std::string& prompt) {
    return mEditor->readLine(prompt, true);
}

bool Prompt::wasInterrupted() const {
    return mEditor->wasInterrupted();
}

bool Prompt::ask(const std::string& question) {
    const std::optional<std::string> answer = mEditor->readLine(question, false);
    return !answer || (!answer->empty() && (answer->front() == 'y' || answer->front() == 'Y'));
}

}
