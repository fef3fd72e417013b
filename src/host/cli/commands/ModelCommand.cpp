// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "Commands.h"

#include "base/Suggestion.h"
#include "cli/errors/CliErrors.h"
#include "cli/errors/UnknownClass.h"
#include "cli/output/AlignedText.h"
#include "cli/output/ClassReport.h"
#include "cli/session/Session.h"
#include "client/DnResolver.h"
#include "client/OfferedModel.h"

namespace OrvHost {

namespace {

void listClasses(Session& session) {
    JsonValue documents = JsonValue::array();
    std::vector<std::vector<std::string>> rows;
    for (const ClassDef& moc : session.model().classes) {
        const std::vector<std::string> parents = parentNames(session.model(), moc);
        documents.add({{"name", moc.name},
                       {"namingAttribute", moc.namingAttribute},
                       {"parents", parents},
                       {"topLevel", moc.isTopLevel},
                       {"description", moc.description}});
        rows.push_back({moc.name, moc.namingAttribute,
                        moc.isTopLevel ? "(top level)" : enumerate(parents, 3)});
    }
    if (session.wantsJson()) {
        session.print({{"command", "model"}, {"classes", documents}});
    } else {
        session.out() << layOutTable({"CLASS", "NAMED BY", "STANDS UNDER"}, rows);
    }
}

void listAssociations(Session& session) {
    JsonValue documents = JsonValue::array();
    std::vector<ReferenceDescription> all;
    for (const ClassDescription& moc : describeOfferedClasses(session.host())) {
        for (const ReferenceDescription& reference : moc.references) {
            documents.add(toJson(reference));
            all.push_back(reference);
        }
    }
    if (session.wantsJson()) {
        session.print({{"command", "model"}, {"associations", documents}});
    } else {
        session.out() << associationTable(all);
    }
}

void listNotes(Session& session) {
    JsonValue documents = JsonValue::array();
    std::string text;
    if (session.modelNotes() != nullptr) {
        for (const Problem& note : *session.modelNotes()) {
            documents.add(
                {{"file", note.source.file}, {"line", note.source.line}, {"text", note.text}});
            text += toText(note) + "\n";
        }
    }
    if (session.wantsJson()) {
        session.print({{"command", "model"}, {"notes", documents}});
    } else {
        session.out() << (text.empty() ? "The model leaves nothing of the modules out.\n" : text);
    }
}

void showClass(Session& session, const std::string& name) {
    const std::vector<ClassDescription> classes = describeOfferedClasses(session.host());
    const ClassDescription* moc = findDescription(classes, name);
    if (moc == nullptr) {
        throw unknownClass(name, classNames(session.model()));
    }
    const ClassReport report(session.model(), *moc);
    if (session.wantsJson()) {
        session.print({{"command", "model"}, {"class", report.json()}});
    } else {
        session.out() << report.text();
    }
}

}

void runModel(Session& session, Words words) {
    const bool wantsAssociations = words.takeFlag("--associations");
    const bool wantsNotes = words.takeFlag("--notes");
    const auto name = words.takeOptional();
    words.end();
    if ((wantsAssociations && name) || (wantsNotes && (name || wantsAssociations))) {
        throw UsageError("a class, --associations and --notes do not go together");
    }
    if (wantsNotes) {
        listNotes(session);
    } else if (wantsAssociations) {
        listAssociations(session);
    } else if (name) {
        showClass(session, *name);
    } else {
        listClasses(session);
    }
}

}
