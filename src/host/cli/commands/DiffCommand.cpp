// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "Commands.h"

#include "DataFile.h"
#include "base/DnView.h"
#include "base/HeldFile.h"
#include "cli/errors/CliErrors.h"
#include "cli/output/DifferenceReport.h"
#include "cli/session/Session.h"
#include "cli/setup/OtherStore.h"
#include "client/DnResolver.h"
#include "client/ExternalDn.h"
#include "client/StateComparison.h"
#include "client/SubtreeReader.h"
#include "client/edits/References.h"
#include "model/ChoiceCheck.h"

#include <algorithm>
#include <filesystem>
#include <functional>
#include <set>

namespace OrvHost {

namespace {

using Visit = std::function<void(ObjectState&& object)>;

/// Reads one side of a comparison.
class SideReader {
public:
    SideReader(Session& session, std::string dn) : mSession(session), mDn(std::move(dn)) {}

    /// \p side: see the command's help. Returns the number of objects.
    std::size_t read(const std::string& side, const Visit& visit) {
        mCount = 0;
        const auto names = mSession.transactions().names();
        if (side == kCommitted) {
            const Host::ReadTransaction transaction(mSession.host());
            readState(transaction.handle(), visit);
        } else if (std::find(names.begin(), names.end(), side) != names.end()) {
            readState(mSession.transactions().require(side).handle, visit);
        } else if (isStore(side)) {
            readOther(side, visit);
        } else {
            readFile(side, visit);
        }
        return mCount;
    }

private:
    void readState(unsigned long txHandle, const Visit& visit) {
        if (!mDn.empty() && !mSession.clients().version3().exists(txHandle, mDn)) {
            return;
        }
        SubtreeReader(mSession, txHandle)
            .read(
                mDn,
                [&](const ObjectState& object) {
                    ++mCount;
                    visit(withoutAbsent(ObjectState(object)));
                },
                [] {});
    }

    void readOther(const std::string& store, const Visit& visit) {
        const Model& model = mSession.model();
        try {
            readStore(store, model, [&](const std::string& dn, std::vector<NamedValue> values) {
                mSession.cancellation().throwIfCancelled();
                DataObject object;
                object.dn = externalDn(dn);
                const ClassDef* const moc = DnResolver(model).classOf(object.dn);
                if (moc == nullptr) {
                    throw AnswerError(store + ": the model has no class for " + object.dn);
                }
                object.moc = static_cast<ClassIndex>(moc - model.classes.data());
                object.attributes = std::move(values);
                for (NamedValue& value : object.attributes) {
                    changeReferences(value.second, externalDn);
                }
                take(std::move(object), visit);
            });
        } catch (const HostError& failure) {
            const std::string advice =
                std::string("; '") + kCommitted + "' is what the own store holds";
            throw AnswerError(failure.what() + (HeldFile::isHeld(store) ? advice : ""));
        }
    }

    void readFile(const std::string& file, const Visit& visit) {
        std::error_code ignored;
        if (!std::filesystem::exists(file, ignored)) {
            throw AnswerError("'" + file +
                              "' is neither a file nor a store nor an open transaction nor '" +
                              kCommitted + "'");
        }
        for (DataObject& object : readDataFile(mSession, file).objects) {
            take(std::move(object), visit);
        }
    }

    void take(DataObject&& object, const Visit& visit) {
        if (DnView(object.dn).isAtOrBelow(DnView(mDn))) {
            ++mCount;
            visit(stateOf(std::move(object)));
        }
    }

    /// The object as it is read once it is loaded: with the defaults that apply.
    ObjectState stateOf(DataObject object) const {
        const ClassDef& moc = mSession.model().classes[object.moc];
        ObjectState state{std::move(object.dn), &moc, {}};
        for (const AttributeDef& def : moc.attributes) {
            state.values.push_back({def.type.kind, {}});
        }
        std::set<std::string> given;
        for (NamedValue& value : object.attributes) {
            if (const auto index = moc.findAttributeIndex(value.first)) {
                const AttributeDef& def = moc.attributes[*index];
                if (isPresent(def.type, value.second)) {
                    given.insert(def.name);
                }
                state.values[*index] = std::move(value.second);
            }
        }
        const auto isGiven = [&given](const std::string& name) { return given.count(name) > 0; };
        for (std::size_t at = 0; at < moc.attributes.size(); ++at) {
            const AttributeDef& def = moc.attributes[at];
            if (state.values[at].values.empty() && def.defaultValue &&
                isDefaultInUse(moc.choices, def.name, isGiven)) {
                state.values[at] = *def.defaultValue;
            }
        }
        return withoutAbsent(std::move(state));
    }

    /// An empty leaf that is false is one without a value.
    static ObjectState withoutAbsent(ObjectState state) {
        for (std::size_t at = 0; at < state.values.size(); ++at) {
            if (!isPresent(state.moc->attributes[at].type, state.values[at])) {
                state.values[at].values.clear();
            }
        }
        return state;
    }

    Session& mSession;
    std::string mDn;
    std::size_t mCount = 0;
};

}

void runDiff(Session& session, Words words) {
    const std::string before = words.take("A");
    const std::string after = words.take("B");
    const std::string dn = words.takeDnOrTop(session.model());
    words.end();
    SideReader reader(session, dn);
    StateComparison comparison;
    std::size_t objects =
        reader.read(before, [&](ObjectState&& object) { comparison.addBefore(std::move(object)); });
    objects += reader.read(after, [&](ObjectState&& object) { comparison.addAfter(object); });
    if (objects == 0 && !dn.empty()) {
        throw OperationError(OrvNotExist, {"existsMo", dn, {}, {}}, {});
    }
    const std::vector<ObjectDifference> differences = comparison.take();
    if (!session.wantsJson()) {
        session.out() << toText(differences, session.colours());
        return;
    }
    session.print({{"command", "diff"},
                   {"before", before},
                   {"after", after},
                   {"dn", dn},
                   {"differences", toJson(differences)}});
}

}
