// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "WriteReport.h"

#include "ReferenceReport.h"
#include "cli/session/Session.h"

#include <utility>

namespace OrvHost {

namespace {

// The answer itself stays as it is without a hint.
void printWithHint(Session& session, JsonValue document, const std::string& answer) {
    const ReferenceHint hint = session.takeHint();
    if (session.wantsJson()) {
        addHint(document, hint);
        session.print(document);
        return;
    }
    session.out() << answer << '\n';
    const std::string note = noteOn(hint);
    if (!note.empty()) {
        session.out().flush();
        session.errors() << session.errorColours().note(note) << std::flush;
    }
}

}

void reportWrite(Session& session, JsonValue document, const std::string& word, bool isCommitted) {
    document["committed"] = isCommitted;
    printWithHint(session, std::move(document), word + (isCommitted ? " and committed" : ""));
}

void reportEnd(Session& session, const std::string& command, const std::string& name,
               const std::string& word, const std::string& note) {
    JsonValue document{{"command", command}, {"transaction", name}, {"outcome", word}};
    if (!note.empty()) {
        document["note"] = note;
    }
    printWithHint(session, std::move(document), word + (note.empty() ? "" : "; ") + note);
}

}
