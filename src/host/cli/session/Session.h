// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_CLI_SESSION_SESSION_H
#define ORV_HOST_CLI_SESSION_SESSION_H

#include "base/Problem.h"
#include "cli/output/Colours.h"
#include "cli/output/ValueJson.h"
#include "cli/session/WatchList.h"
#include "client/ClientSession.h"
#include "client/ReferenceSearch.h"
#include "runtime/LogSink.h"

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

namespace OrvHost {

class YangSchema;

/// References to objects that do not exist, which a transaction brings. They are permitted.
struct ReferenceHint {
    std::vector<FoundReference> missing;
    std::string problem; ///< why they could not be looked for; else empty
};

/// What commands work with: where they read and write, and where they print.
///
/// One thread at a time.
class Session : public ClientSession {
public:
    /// All arguments are borrowed and must outlive the session.
    Session(Host& host, Clients& clients, LogSink& log, std::ostream& out, bool wantsJson);

    LogSink& log() { return mLog; }
    WatchList& watches() { return mWatches; }

    /// Whether there are hints: each costs a look at what the transaction wrote, and at all objects
    /// if it deleted something. At first there are none. Returns what was before.
    bool giveHints(bool areGiven) { return std::exchange(mGivesHints, areGiven); }
    /// The hint on the latest validate, commit or committed write, once. The same writes of a
    /// transaction bring it only once.
    ReferenceHint takeHint() { return std::exchange(mHint, {}); }

    /// Asks the user before something that cannot be taken back; false means no. Empty where nobody
    /// can be asked: scripts mean what they say.
    using Question = std::function<bool(const std::string& text)>;
    void setQuestion(Question question) { mQuestion = std::move(question); }
    const Question& question() const { return mQuestion; }

    /// As in ClientSession.
    bool write(const std::function<void(unsigned long txHandle)>& work);
    void validate(const OpenTransactions::Entry& transaction);
    std::string commit(const OpenTransactions::Entry& transaction);

    /// What the modules say but the model does not represent. Borrowed, as the constructor's
    /// arguments.
    void setModelNotes(const std::vector<Problem>& notes) { mModelNotes = &notes; }
    /// Null if there are no modules.
    const std::vector<Problem>* modelNotes() const { return mModelNotes; }

    /// Whether a validation says what the check of the modules' rules has cost.
    void showRuleCost(bool isShown) { mShowsRuleCost = isShown; }
    bool showsRuleCost() const { return mShowsRuleCost; }

    /// How files hold the objects of the model.
    void setSchema(std::shared_ptr<const YangSchema> schema) { mSchema = std::move(schema); }
    /// Null if there are no modules.
    const std::shared_ptr<const YangSchema>& schema() const { return mSchema; }

    /// Copies the store of the host to a file; throws HostError. Empty if the host keeps none.
    using Backup = std::function<void(const std::filesystem::path& target)>;
    void setBackup(Backup backup) { mBackup = std::move(backup); }
    const Backup& backup() const { return mBackup; }

    /// True: each command prints one JSON document, in one line, and nothing else.
    bool wantsJson() const { return mWantsJson; }
    std::ostream& out() { return *mOut; }
    void print(const JsonValue& document) { out() << toLine(document) << '\n'; }
    /// Of answers, and of errors and notes. At first there are none.
    const Colours& colours() const { return mColours; }
    const Colours& errorColours() const { return mErrorColours; }
    void setColours(const Colours& answers, const Colours& errors) {
        mColours = answers;
        mErrorColours = errors;
    }
    /// Commands print to \p out from now on. Returns where they printed before.
    std::ostream& redirect(std::ostream& out) { return *std::exchange(mOut, &out); }

    /// Notes and errors for people; the standard error stream at first.
    std::ostream& errors() { return *mErrors; }
    /// \p errors is borrowed.
    void setErrors(std::ostream& errors) { mErrors = &errors; }

    /// Whether a server runs the session for somebody at another program: the files that they mean
    /// are not here, and what takes the whole process is not theirs.
    bool isServed() const { return mIsServed; }
    void setServed() { mIsServed = true; }

    /// The object at which the session stands: an external DN from the top level; empty: at the top
    /// level.
    const std::string& here() const { return mHere; }
    void goTo(const std::string& dn) { mHere = dn; }
    /// The text before the user's input: shows the current transaction and that object's name.
    std::string prompt();

    bool isEnded() const { return mIsEnded; }
    void end() { mIsEnded = true; }
    /// Takes end() back.
    void goOn() { mIsEnded = false; }

private:
    void lookAtCommitted(const ChangeSet& changes);

    LogSink& mLog;
    WatchList mWatches;
    ReferenceHint mHint;
    std::optional<OpenTransactions::Entry> mHinted; ///< as it was at its latest hint
    const std::vector<Problem>* mModelNotes = nullptr;
    std::shared_ptr<const YangSchema> mSchema;
    Backup mBackup;
    Question mQuestion;
    Colours mColours;
    Colours mErrorColours;
    std::ostream* mOut;
    std::ostream* mErrors;
    std::string mHere;
    bool mWantsJson;
    bool mShowsRuleCost = false;
    bool mIsEnded = false;
    bool mIsServed = false;
    bool mGivesHints = false;
};

}

#endif
