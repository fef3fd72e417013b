// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "AssociationGame.h"

#include "BiDirValidator.h"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <algorithm>
#include <set>
#include <tuple>

namespace BiDirTests {
namespace {

using PropertyTests::contains;
using PropertyTests::movesGenerator;
using PropertyTests::Verdict;

/// One association, seen from one side.
struct View {
    const GeneratedSide& near;
    const GeneratedSide& far;
};

std::vector<View> viewsOf(const GeneratedModel& model) {
    std::vector<View> views;
    for (const auto& [first, second] : model) {
        views.push_back({first, second});
        views.push_back({second, first});
    }
    return views;
}

/// A reference: its source, its attribute and its target.
using Reference = std::tuple<std::string, std::string, std::string>;

/// Tracks which references must have their far side. A reference to an MO that does not exist waits
/// until the MO is created. The promise of the far side ends with the transaction; it also ends
/// when the same attribute of the source (or of one whose DN begins with the source's text) loses
/// another target that does not exist, and when an MO is deleted whose DN is the beginning of the
/// source's DN.
class PromiseGame : public AssociationGame {
public:
    using AssociationGame::AssociationGame;

    /// The references that lack their far side although they should have it, that name a deleted
    /// MO, or that appear in their attribute more than once.
    std::vector<Reference> brokenPromises() {
        forgetWhatIsGone(mLapsed);
        std::vector<Reference> broken;
        for (const View& view : viewsOf(model)) {
            for (const std::string& source : existing()) {
                if (Scripted::classOf(source) == view.near.moc) {
                    collectBroken(view, source, broken);
                }
            }
        }
        return broken;
    }

protected:
    /// Chooses each value at most once, and never writes both sides of an association. The
    /// bookkeeping of such writes is exact, too, but not symmetric, because an addition does not
    /// check which values are already there.
    Dns chosen(const std::string& dn, const std::string& attribute,
               const Dns& references) override {
        const Dns present = this->references(dn, attribute);
        Dns once;
        for (const std::string& target : references) {
            if (!contains(once, target) &&
                (contains(present, target) || !isAnsweredAlready(dn, attribute, target))) {
                once.push_back(target);
            }
        }
        return once;
    }

    void writing(const std::string& dn, const std::string& attribute, const Dns& old,
                 const Dns& fresh) override {
        for (const View& view : viewsOf(model)) {
            if (view.near.moc != Scripted::classOf(dn) || view.near.attribute != attribute) {
                continue;
            }
            for (const std::string& target : old) {
                const bool lost = !contains(fresh, target) &&
                                  Scripted::classOf(target) == view.far.moc && !exists(target);
                if (lost) {
                    lapse([&](const Reference& each) {
                        return std::get<0>(each).starts_with(dn) && std::get<1>(each) == attribute;
                    });
                }
            }
            for (const std::string& target : fresh) {
                const bool added =
                    !contains(old, target) && Scripted::classOf(target) == view.far.moc;
                if (added) {
                    promise({dn, attribute, target});
                }
            }
        }
    }

    void created(const std::string& dn) override {
        std::erase_if(mWaiting, [&](const Reference& each) { return std::get<2>(each) == dn; });
    }

    void deleting(const std::string& dn) override {
        lapse([&](const Reference& each) { return std::get<0>(each).starts_with(dn); });
    }

    void ended(bool committed) override {
        if (committed) {
            lapse([](const Reference&) { return true; });
            mLapsedAtBegin = mLapsed;
        } else {
            mLapsed = mLapsedAtBegin;
        }
        mWaiting.clear();
    }

private:
    using References = std::set<Reference>;

    bool isAnsweredAlready(const std::string& dn, const std::string& attribute,
                           const std::string& target) const {
        for (const View& view : viewsOf(model)) {
            if (view.near.moc == Scripted::classOf(dn) && view.near.attribute == attribute &&
                view.far.moc == Scripted::classOf(target) && exists(target) &&
                contains(references(target, view.far.attribute), dn)) {
                return true;
            }
        }
        return false;
    }

    void promise(const Reference& reference) {
        mLapsed.erase(reference);
        if (!exists(std::get<2>(reference))) {
            mWaiting.insert(reference);
        }
    }

    template <class Which>
    void lapse(const Which& which) {
        for (const Reference& reference : mWaiting) {
            if (which(reference)) {
                mLapsed.insert(reference);
            }
        }
        std::erase_if(mWaiting, which);
    }

    void forgetWhatIsGone(References& references) const {
        std::erase_if(references, [&](const Reference& each) {
            const auto& [source, attribute, target] = each;
            return !exists(source) || !contains(this->references(source, attribute), target);
        });
    }

    void collectBroken(const View& view, const std::string& source,
                       std::vector<Reference>& broken) const {
        const Dns targets = references(source, view.near.attribute);
        for (const std::string& target : targets) {
            const Reference reference = {source, view.near.attribute, target};
            const bool expected = Scripted::classOf(target) == view.far.moc &&
                                  mLapsed.count(reference) == 0 && mWaiting.count(reference) == 0;
            const bool answered =
                exists(target) && contains(references(target, view.far.attribute), source);
            if ((expected && !answered) || std::count(targets.begin(), targets.end(), target) > 1) {
                broken.push_back(reference);
            }
        }
    }

    References mWaiting; ///< in the open transaction
    References mLapsed;
    References mLapsedAtBegin;
};

RC_GTEST_PROP(BiDirProperties, AfterEachStep_TheAssociationsAreSymmetricAsFarAsPromised, ()) {
    PromiseGame game(*modelGenerator(false));
    const std::vector<Move> moves = *movesGenerator();
    for (const Move& move : moves) {
        if (game.play(move)) {
            RC_LOG() << move << "\n";
            RC_ASSERT(game.brokenPromises() == std::vector<Reference>());
        }
    }
    RC_ASSERT(game.stage.results.complaints() == std::vector<std::string>());
}

RC_GTEST_PROP(BiDirProperties, EqualListsInAnyOrder_WriteNothing, ()) {
    AssociationGame game(*modelGenerator(false));
    const std::vector<Move> moves = *movesGenerator();
    for (const Move& move : moves) {
        game.play(move);
    }
    game.stage.script.keepCalls(true);
    for (const std::string& dn : game.existing()) {
        for (const std::string& attribute : game.attributesOf(Scripted::classOf(dn))) {
            Dns same = game.references(dn, attribute);
            std::reverse(same.begin(), same.end());
            game.client.announce(game.tx, dn, attribute, same);
            const OrvExtCmRouterService::BiDirUtils::ModifiedAttribute written = {dn, attribute};
            RC_ASSERT(game.utils.getModifiedBackPointers(game.tx).count(written) == 1U);
        }
    }
    RC_ASSERT(game.stage.script.texts("VekRouter3.setMoAttribute") == std::vector<std::string>());
}

RC_GTEST_PROP(BiDirProperties, FinishedTransaction_LeavesNothingWaiting, ()) {
    AssociationGame game(*modelGenerator(false));
    for (const Move& move : *movesGenerator()) {
        game.play(move);
    }
    game.client.finish(game.tx);
    game.stage.script.keepCalls(true);
    // With an empty store the flush calls the router for nothing.
    game.utils.updatePendingBackPointer(game.tx, "A=1", "id");
    RC_ASSERT(game.stage.script.texts() == std::vector<std::string>());
}

/// Computes the verdict from the generated model alone, without the component.
class Recount {
public:
    explicit Recount(const AssociationGame& game) : mGame(game) {}

    Verdict of(const OrvExtCmRouterService::BiDirUtils::ModifiedAttributes& written) {
        for (const auto& [dn, attribute] : written) {
            if (mGame.exists(dn) && !accepts(dn, attribute)) {
                mVerdict.valid = false;
                break;
            }
        }
        return mVerdict;
    }

private:
    bool accepts(const std::string& dn, const std::string& attribute) {
        const Dns values = mGame.references(dn, attribute);
        const GeneratedSide& side = declarationOf(Scripted::classOf(dn), attribute);
        if (!within(values.size(), side.lower, side.upper)) {
            return refuse("Multiplicity of attribute " + attribute + " in " + dn +
                          " is not in range (" + range(side.lower, side.upper) + ").");
        }
        Dns permitted;
        for (const auto& [first, second] : mGame.model) {
            // A class associated with itself is always seen from the first end.
            const bool atFirst = first.moc == Scripted::classOf(dn);
            const View view = atFirst ? View{first, second} : View{second, first};
            if (view.near.moc == Scripted::classOf(dn) && view.near.attribute == attribute) {
                permitted.push_back(view.far.moc);
                if (!acceptsCount(dn, values, view)) {
                    return false;
                }
            }
        }
        return acceptsTypes(dn, attribute, values, side, permitted);
    }

    bool acceptsCount(const std::string& dn, const Dns& values, const View& view) {
        std::size_t count = 0;
        for (const std::string& value : values) {
            if (Scripted::classOf(value) == "Q") {
                return refuse(value + " does not correspond to a valid MO type.");
            }
            count += Scripted::classOf(value) == view.far.moc ? 1U : 0U;
        }
        return within(count, view.near.lowerCount, view.near.upperCount) ||
               refuse("Attribute " + view.near.attribute + " in " + dn + " contains " +
                      std::to_string(count) + " things which is not within cardinality range (" +
                      range(view.near.lowerCount, view.near.upperCount) + ").");
    }

    bool acceptsTypes(const std::string& dn, const std::string& attribute, const Dns& values,
                      const GeneratedSide& side, const Dns& permitted) {
        const std::string complaint =
            " is not a valid type for attribute " + attribute + " in " + dn + ".";
        std::string lastClass;
        for (std::size_t i = 0; i < values.size(); ++i) {
            if (Scripted::classOf(values[i]) == "Q") {
                for (std::size_t left = i; left < values.size(); ++left) {
                    refuse(values[i] + " does not correspond to a valid MO type.");
                }
                return refuse(lastClass.empty() ? "" : lastClass + complaint, OrvNotExist);
            }
            lastClass = Scripted::classOf(values[i]);
            const bool passes = side.anyClass ? permitted.empty() || contains(permitted, lastClass)
                                              : lastClass == targetOf(side);
            if (!passes) {
                return refuse(lastClass + complaint);
            }
        }
        return true;
    }

    bool refuse(const std::string& message, OrvReturnT code = OrvValidationFailed) {
        mVerdict.messages.push_back(message);
        mVerdict.code = code;
        return false;
    }

    /// The last declaration of the attribute's bounds in the model.
    const GeneratedSide& declarationOf(const std::string& moc, const std::string& attribute) const {
        const GeneratedSide* found = nullptr;
        for (const View& view : viewsOf(mGame.model)) {
            if (view.near.moc == moc && view.near.attribute == attribute) {
                found = &view.near;
            }
        }
        return *found;
    }

    std::string targetOf(const GeneratedSide& side) const {
        for (const View& view : viewsOf(mGame.model)) {
            if (&view.near == &side) {
                return view.far.moc;
            }
        }
        return "";
    }

    static bool within(std::size_t count, long long lower, long long upper) {
        return lower <= static_cast<long long>(count) && static_cast<long long>(count) <= upper;
    }

    static std::string range(long long lower, long long upper) {
        return std::to_string(lower) + ".." + std::to_string(upper);
    }

    const AssociationGame& mGame;
    Verdict mVerdict;
};

RC_GTEST_PROP(BiDirProperties, Validator_AgreesWithARecount, ()) {
    AssociationGame game(*modelGenerator(true));
    OrvExtCmRouterService::BiDirValidator validator(game.utils);
    validator.start();
    const std::vector<Move> moves = *movesGenerator();
    std::size_t messagesBefore = 0;
    int refused = 0;
    for (const Move& move : moves) {
        if (!game.play(move)) {
            continue;
        }
        RC_LOG() << move << "\n";
        Verdict verdict;
        verdict.code = validator.validateBiDirs(game.tx, &verdict.valid);
        const std::vector<std::string> messages = game.stage.messages();
        verdict.messages.assign(messages.begin() + static_cast<std::ptrdiff_t>(messagesBefore),
                                messages.end());
        messagesBefore = messages.size();
        RC_ASSERT(verdict == Recount(game).of(game.utils.getModifiedBackPointers(game.tx)));
        refused += verdict.valid ? 0 : 1;
    }
    RC_CLASSIFY(refused > 0, "some refused");
    RC_ASSERT(game.stage.results.complaints() == std::vector<std::string>());
}

}
}
