// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "WriteReport.h"

#include "ReferenceReport.h"
#include "cli/session/Session.h"

namespace OrvHost {

void reportWrite(Session& session, JsonValue document, const std::string& word, bool isCommitted) {
    if (session.wantsJson()) {
        document["committed"] = isCommitted;
        session.print(document);
    } else {
        session.out() << word << (isCommitted ? " and committed" : "") << '\n';
    }
}

void reportEnd(Session& session, const std::string& command, const std::string& name,
               const std::string& word, const std::string& note) {
    const std::vector<FoundReference> missing = session.takeMissing();
    if (!session.wantsJson()) {
        session.out() << word << (note.empty() ? "" : "; ") << note << '\n' << hintOn(missing);
        return;
    }
    JsonValue document{{"command", command}, {"transaction", name}, {"outcome", word}};
    if (!note.empty()) {
        document["note"] = note;
    }
    if (!missing.empty()) {
        document["missing"] = toJson(missing);
    }
    session.print(document);
}

}
