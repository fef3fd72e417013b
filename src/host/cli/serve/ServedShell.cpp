// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "ServedShell.h"

#include "cli/commands/CommandTable.h"
#include "cli/input/WordSplitter.h"
#include "cli/session/Session.h"
#include "cli/shell/Completer.h"
#include "cli/shell/Interpreter.h"
#include "cli/shell/LocalShell.h"
#include "client/Clients.h"
#include "netconf/core/ServerLog.h"

#include <ostream>
#include <thread>
#include <utility>

namespace OrvHost {

namespace {

/// Aborts, at its end, what the session has open.
class AbortAtEnd {
public:
    AbortAtEnd(Session& session, const std::string& author) : mSession(session), mAuthor(author) {}
    ~AbortAtEnd() {
        const auto abortFirst = [this] {
            const OpenTransactions::Entry open = mSession.transactions().all().front();
            logServer(6, mAuthor + ": transaction " + open.name + " is aborted");
            mSession.abort(open);
        };
        // There can be memory the next time.
        for (int failures = 0;
             failures < kMostFailures && !mSession.transactions().all().empty();) {
            failures += contain("a shell's transaction is not aborted", abortFirst) ? 0 : 1;
        }
    }
    AbortAtEnd(const AbortAtEnd&) = delete;
    AbortAtEnd& operator=(const AbortAtEnd&) = delete;

private:
    static constexpr int kMostFailures = 100;

    Session& mSession;
    const std::string& mAuthor;
};

}

ServedShell::ServedShell(ShellServices& services, ShellChannel& channel, ShellHello hello,
                         std::string user, std::uint64_t number)
    : mServices(services),
      mChannel(channel),
      mHello(std::move(hello)),
      mUser(std::move(user)),
      mAuthor(mUser + ", shell " + std::to_string(number)) {}

void ServedShell::serve() {
    logServer(6, mAuthor + ": begins");
    std::thread worker([this] { workToTheEnd(); });
    receiveAll();
    worker.join();
    contain("a shell's client is not told why it ends", [this] {
        if (const std::string why = whyOver(); !why.empty()) {
            mChannel.send(FrameBye, why);
        }
    });
    mChannel.close();
    logServer(6, mAuthor + ": ends");
}

void ServedShell::receiveAll() noexcept {
    try {
        while (std::optional<Frame> frame = mChannel.receive()) {
            take(std::move(*frame));
        }
        over("");
    } catch (const std::exception& error) { // a FrameError, or there is no memory
        contain("a shell is ended", [&] { logServer(4, mAuthor + ": is ended: " + error.what()); });
        over(error.what());
    }
}

/// On its thread, where an exception would end the server.
void ServedShell::workToTheEnd() noexcept {
    try {
        work();
    } catch (const std::exception& failure) {
        contain("a shell ends", [&] { logServer(3, mAuthor + ": ends: " + failure.what()); });
        over(failure.what());
    } catch (...) {
        logFailure("a shell ends");
        over("an error of an unknown type");
    }
}

void ServedShell::over(const char* why) noexcept {
    {
        const std::lock_guard<std::mutex> lock(mMutex);
        mIsOver = true;
        contain("why a shell ends", [&] { mWhyOver = mWhyOver.empty() ? why : mWhyOver; });
        if (mToken != nullptr) {
            mToken->cancel();
        }
    }
    mChanged.notify_all();
    mChannel.cut();
}

std::string ServedShell::whyOver() {
    const std::lock_guard<std::mutex> lock(mMutex);
    return mWhyOver;
}

void ServedShell::take(Frame&& frame) {
    switch (frame.kind) {
    case FrameCancel:
        cancel(frame.body);
        return;
    case FrameLine:
    case FrameWords:
    case FrameComplete:
        break;
    default:
        throw FrameError("a request was expected, not a message of the kind " +
                         std::to_string(static_cast<unsigned char>(frame.kind)));
    }
    const std::lock_guard<std::mutex> lock(mMutex);
    if (mWaiting || mAtWork != 0) {
        throw FrameError("a request came before the answer to the one before");
    }
    mWaiting = Request{std::move(frame), ++mTaken};
    mChanged.notify_all();
}

/// A command that has ended meanwhile is not meant any more, nor is the one after it.
void ServedShell::cancel(const std::string& number) {
    const std::lock_guard<std::mutex> lock(mMutex);
    if (number == std::to_string(mTaken) && (mWaiting || mAtWork != 0) && mToken != nullptr) {
        mToken->cancel();
    }
}

/// Of the worker. After what could not be sent, nothing is.
void ServedShell::sendWhole(char kind, std::string_view body) {
    if (mIsUnsent) {
        return;
    }
    const Sent sent = mChannel.send(kind, body);
    if (sent != Sent::Whole) {
        mIsUnsent = true;
        endUnsent(sent);
    }
}

/// A part of an answer can be out: nothing may follow it.
void ServedShell::endUnsent(Sent sent) {
    mChannel.close();
    over("");
    if (sent == Sent::Unread) {
        logServer(4, mAuthor + ": is ended: it does not read its answers");
    } else if (whyOver().empty()) { // it is not ended by the server
        logServer(6, mAuthor + ": has gone before the end of an answer");
    }
}

void ServedShell::work() {
    const auto send = [this](char kind, std::string_view body) { sendWhole(kind, body); };
    FrameOutput outFrames(FrameOut, send);
    FrameOutput errorFrames(FrameErr, send);
    std::ostream out(&outFrames);
    std::ostream errors(&errorFrames);
    // A stream that has lost text, for want of memory, must not look as if it had not.
    out.exceptions(std::ios::badbit);
    errors.exceptions(std::ios::badbit);
    Clients clients(mServices.host);
    Session session(mServices.host, clients, mServices.log, out, mHello.look.json);
    session.setErrors(errors);
    session.setServed();
    session.setAuthor(mAuthor);
    session.setCommitGate(
        [this](const std::function<void()>& commit) { mServices.commit(mUser, commit); });
    mServices.prepare(session);
    if (!mHello.interface.empty()) {
        clients.choose(mHello.interface);
    }
    {
        const std::lock_guard<std::mutex> lock(mMutex);
        mToken = &session.cancellation();
    }
    try {
        const AbortAtEnd abort(session, mAuthor);
        answerAll(session);
    } catch (...) {
        const std::lock_guard<std::mutex> lock(mMutex);
        mToken = nullptr;
        throw;
    }
    const std::lock_guard<std::mutex> lock(mMutex);
    mToken = nullptr;
}

void ServedShell::answerAll(Session& session) {
    const CommandTable commands;
    Interpreter interpreter(session, commands, session.errors());
    interpreter.echo(mHello.look.echo);
    session.setColours(Colours(mHello.look.answerColours), Colours(mHello.look.errorColours));
    Completer completer(session, commands);
    const std::string greeting = LocalShell::greetingOf(session, mServices.models);
    sendWhole(FrameHello, toBody(ShellWelcome{kShellProtocol, greeting, session.prompt()}));
    while (const std::optional<Request> request = next(!session.transactions().all().empty())) {
        const Frame& frame = request->frame;
        if (frame.kind == FrameComplete) {
            const std::string completion = toBody(shortened(completer.complete(frame.body)));
            finish();
            sendWhole(FrameCompleted, completion);
            continue;
        }
        ShellState state;
        if (frame.kind == FrameWords) {
            session.giveHints(mHello.look.isTyped);
            state.status = interpreter.runWords(wordsFrom(frame.body));
        } else {
            const ScriptLine line = lineFrom(frame.body);
            // Hints would make a long script slow.
            session.giveHints(mHello.look.isTyped && line.place.empty());
            state.status = interpreter.runLine(line.line, line.place);
        }
        session.out().flush();
        session.errors().flush();
        const bool isCancelled = session.cancellation().isCancelled();
        logCommand(commands, frame,
                   state.status == ExitOk ? "done"
                   : isCancelled          ? "cancelled"
                                          : "refused");
        state.isEnded = session.isEnded();
        session.goOn();
        state.prompt = session.prompt();
        state.uncommitted = LocalShell::uncommittedOf(session);
        finish();
        sendWhole(FrameDone, toBody(state));
    }
}

std::optional<ServedShell::Request> ServedShell::next(bool isWaitLimited) {
    std::unique_lock<std::mutex> lock(mMutex);
    const auto hasNews = [this] { return mIsOver || mWaiting; };
    if (!isWaitLimited || mServices.idleLimit.count() == 0) {
        mChanged.wait(lock, hasNews);
    } else if (!mChanged.wait_for(lock, mServices.idleLimit, hasNews)) {
        lock.unlock();
        over(("no command came for " + std::to_string(mServices.idleLimit.count()) +
              " s while a transaction was open")
                 .c_str());
        return std::nullopt;
    }
    if (mIsOver) {
        return std::nullopt;
    }
    std::optional<Request> request = std::exchange(mWaiting, std::nullopt);
    mAtWork = request->number;
    return request;
}

/// To be called before the client hears of the end of a request: then the next one can come at
/// once.
void ServedShell::finish() {
    const std::lock_guard<std::mutex> lock(mMutex);
    mAtWork = 0;
    if (!mIsOver) {
        mToken->renew();
    }
}

/// Without the words of the command: values can be secret.
void ServedShell::logCommand(const CommandTable& commands, const Frame& frame,
                             const char* result) const {
    const std::vector<std::string> words = frame.kind == FrameWords
                                               ? wordsFrom(frame.body)
                                               : splitWords(lineFrom(frame.body).line).words;
    if (words.empty()) {
        return;
    }
    logServer(6, mAuthor + ": " + commands.namesIn(words) + ": " + result);
}

}
