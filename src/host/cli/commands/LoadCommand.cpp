// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "Commands.h"

#include "DataFile.h"
#include "WriteReport.h"
#include "base/Counted.h"
#include "base/DnView.h"
#include "cli/errors/CliErrors.h"
#include "cli/input/Place.h"
#include "cli/session/Session.h"
#include "client/edits/EditPlanner.h"

#include <algorithm>

namespace OrvHost {

namespace {

struct LoadOptions {
    std::string file;
    bool replaces = false;
    std::string dn; ///< the subtree to replace; empty: all objects
};

LoadOptions parse(Words& words, const Model& model) {
    LoadOptions options;
    options.file = words.take("the FILE");
    const std::string mode = words.takeOptional().value_or("merge");
    if (mode != "merge" && mode != "replace") {
        throw UsageError("'" + mode + "' is no way to load; merge or replace was expected");
    }
    options.replaces = mode == "replace";
    options.dn = options.replaces ? words.takeDnOrTop(model) : "";
    words.end();
    return options;
}

/// The objects of a file as a wish.
class WishMaker {
public:
    WishMaker(const Model& model, const LoadOptions& options) : mModel(model), mOptions(options) {}

    Wish make(std::vector<DataObject> objects) {
        std::vector<WishedObject> wished;
        for (DataObject& object : objects) {
            if (object.isBare && isAbove(object.dn)) {
                continue;
            }
            leaveOutState(object);
            wished.push_back({std::move(object.dn), std::move(object.attributes)});
        }
        Wish wish = wishedState(mOptions.dn, std::move(wished));
        wish.edits.front().kind = mOptions.replaces ? EditKind::Replace : EditKind::Merge;
        return wish;
    }

    /// The number of values that clients cannot set.
    std::size_t leftOut() const { return mLeftOut; }

private:
    /// A file with a subtree names the objects above it.
    bool isAbove(const std::string& dn) const {
        return dn != mOptions.dn && DnView(mOptions.dn).isAtOrBelow(DnView(dn));
    }

    void leaveOutState(DataObject& object) {
        const ClassDef& moc = mModel.classes[object.moc];
        const auto isState = [&](const NamedValue& value) {
            const AttributeDef* def = moc.findAttribute(value.first);
            return def != nullptr && !def->isWritable;
        };
        auto& values = object.attributes;
        const auto end = std::remove_if(values.begin(), values.end(), isState);
        mLeftOut += static_cast<std::size_t>(values.end() - end);
        values.erase(end, values.end());
    }

    const Model& mModel;
    const LoadOptions& mOptions;
    std::size_t mLeftOut = 0;
};

std::size_t callsOf(const EditPlan& plan, PlannedCall::Kind kind) {
    return static_cast<std::size_t>(
        std::count_if(plan.calls.begin(), plan.calls.end(),
                      [&](const PlannedCall& call) { return call.kind == kind; }));
}

/// The refusal of one of the calls, with what stays of those before it.
OperationError withWhatIsDone(const PlanRefusedError& refusal) {
    OperationSubject subject = refusal.subject();
    if (refusal.done() > 0) {
        subject.done.push_back(counted(refusal.done(), "change") + " of the file");
    }
    return {refusal.code(), std::move(subject), refusal.messages()};
}

}

void runLoad(Session& session, Words words) {
    const LoadOptions options = parse(words, session.model());
    requirePlace(session.model(), options.dn);
    DataFile file = readDataFile(session, options.file);
    const std::size_t objects = file.objects.size();
    WishMaker maker(session.model(), options);
    Wish wish = maker.make(std::move(file.objects));
    EditPlan plan;
    bool isCommitted = false;
    try {
        isCommitted = session.write([&](unsigned long txHandle) {
            plan = applyWish(std::move(wish), session.model(), session.clients(), txHandle,
                             &session.cancellation());
        });
    } catch (const PlanRefusedError& refusal) {
        throw withWhatIsDone(refusal);
    }
    const std::size_t deleted = callsOf(plan, PlannedCall::Kind::Delete);
    const std::size_t created = callsOf(plan, PlannedCall::Kind::Create);
    const std::size_t set = callsOf(plan, PlannedCall::Kind::Set);
    if (!session.wantsJson()) {
        session.out() << options.file << ": " << counted(objects, "object") << "; " << deleted
                      << " deleted, " << created << " created, " << set << " set, "
                      << counted(maker.leftOut(), "value") << " of the system left out\n";
        for (const std::string& note : file.notes) {
            session.out() << "note: " << note << '\n';
        }
    }
    reportWrite(session,
                {{"command", "load"},
                 {"file", options.file},
                 {"mode", options.replaces ? "replace" : "merge"},
                 {"dn", options.dn},
                 {"objects", objects},
                 {"deleted", deleted},
                 {"created", created},
                 {"set", set},
                 {"leftOut", maker.leftOut()},
                 {"notes", file.notes}},
                "loaded", isCommitted);
}

}
