// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "LoggingWrapper.h"
#include "Moves.h"
#include "Portal.h"
#include "Records.h"
#include "Stage.h"
#include "UniDirStorage.h"
#include "UniDirValidator.h"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <algorithm>
#include <list>
#include <map>
#include <optional>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

namespace PropertyTests {
namespace {

using OrvExtCmRouterService::UniDirStorage;
using OrvExtCmRouterService::UniDirValidator;

/// One unidirectional association: \p attribute of \p source may refer to \p target.
struct UniDirAssociation {
    std::string source;
    std::string attribute;
    std::string target;
    long long lower = 0;
    long long upper = 0; ///< -1 is read as the largest number
};
using UniDirModel = std::vector<UniDirAssociation>;

// Fewer names than associations, so that an attribute is the end of several associations, and more
// than one of them may lead to the same class.
const Dns& attributes() {
    static const Dns names = {"p", "q", "none"};
    return names;
}

void showValue(const UniDirModel& model, std::ostream& out) {
    for (const UniDirAssociation& each : model) {
        out << each.source << "." << each.attribute << " -> " << each.target << "[" << each.lower
            << ".." << each.upper << "]\n";
    }
}

rc::Gen<UniDirModel> modelGenerator() {
    const auto association = rc::gen::build<UniDirAssociation>(
        rc::gen::set(&UniDirAssociation::source, rc::gen::elementOf(classes())),
        rc::gen::set(&UniDirAssociation::attribute, rc::gen::element<std::string>("p", "q")),
        rc::gen::set(&UniDirAssociation::target, rc::gen::elementOf(classes())),
        rc::gen::set(&UniDirAssociation::lower, rc::gen::inRange(0LL, 3LL)),
        rc::gen::set(&UniDirAssociation::upper, rc::gen::inRange(-1LL, 4LL)));
    return rc::gen::resize(8, rc::gen::container<UniDirModel>(association));
}

/// A DN as clients may write it. Sometimes it has the name of the naming attribute, which the
/// record leaves out. Sometimes a reference has a step that is malformed.
std::string spelled(const std::string& dn, unsigned int number) {
    return number % 5 == 0 ? dn.substr(0, dn.find('=')) + ".id" + dn.substr(dn.find('=')) : dn;
}

Dns spelledReferencesOf(const Move& move) {
    Dns references = referencesOf(move);
    for (std::size_t i = 0; i < references.size(); ++i) {
        references[i] = spelled(references[i], move.object + static_cast<unsigned int>(i));
    }
    if (!references.empty() && move.object == 13) {
        references.back() = "Z,A=1"; // its last step has a class, but it is not a DN
    }
    return references;
}

bool isDn(const std::string& reference) {
    return reference != "Z,A=1";
}

/// The writes of transactions, in plain maps.
class NaiveRecord {
public:
    using Steps = std::vector<std::pair<std::string, std::string>>;
    using Attributes = std::map<std::string, Dns>;
    using Mos = std::map<Steps, Attributes>; ///< parents first, by class, by naming value

    void set(unsigned long tx, const std::string& dn, const std::string& attribute,
             const Dns& references) {
        mTransactions[tx][stepsOf(dn)][attribute] = references;
    }

    void deleteMo(unsigned long tx, const std::string& dn) {
        const Steps gone = stepsOf(dn);
        std::erase_if(mTransactions[tx], [&](const auto& mo) {
            return mo.first.size() >= gone.size() &&
                   std::equal(gone.begin(), gone.end(), mo.first.begin());
        });
    }

    void finish(unsigned long tx) { mTransactions.erase(tx); }

    const Mos& of(unsigned long tx) { return mTransactions[tx]; }

    static std::string dnOf(const Steps& steps) {
        std::string dn;
        for (const auto& [type, value] : steps) {
            dn += (dn.empty() ? "" : ",") + type + "=" + value;
        }
        return dn;
    }

private:
    // Splits a DN without the component: no generated DN has a comma or a second "=" in a value.
    static Steps stepsOf(const std::string& dn) {
        Steps steps;
        for (std::size_t begin = 0; begin < dn.size();) {
            const std::size_t end = std::min(dn.find(',', begin), dn.size());
            const std::string step = dn.substr(begin, end - begin);
            steps.emplace_back(step.substr(0, step.find_first_of(".=")),
                               step.substr(step.find('=') + 1));
            begin = end + 1;
        }
        return steps;
    }

    std::map<unsigned long, Mos> mTransactions;
};

/// Plays moves on a scripted host, through the validator under test, and repeats them in the naive
/// record.
class UniDirGame {
public:
    static constexpr unsigned long transactions = 3;

    explicit UniDirGame(const UniDirModel& generated) : model(generated) {
        Orv::LoggingWrapper::instance()->setLevel(0);
        Orv::Portal::instance()->attach(&Scripted::orvPortalLookup);
        stage.script.keepCalls(false);
        for (const std::string& moc : classes()) {
            stage.model.moc(moc);
        }
        for (const UniDirAssociation& each : model) {
            stage.model.uniDir(each.source, each.attribute, each.target, each.lower, each.upper);
        }
        // This association is bidirectional, so it does not belong to this game.
        stage.model.biDir({"A", "none"}, {"B", "others"});
        validator.start();
    }
    UniDirGame(const UniDirGame&) = delete;
    UniDirGame& operator=(const UniDirGame&) = delete;
    ~UniDirGame() { Orv::Portal::instance()->detach(); }

    void play(const Move& move) {
        const unsigned long tx = move.transaction % transactions;
        const std::string dn = spelled(objectOf(move), move.attribute);
        switch (move.kind) {
        case Move::Kind::Create:
        case Move::Kind::Set:
            set(tx, dn, pick(attributes(), move.attribute), spelledReferencesOf(move));
            break;
        case Move::Kind::Delete:
            validator.deleteMo(tx, dn);
            naive.deleteMo(tx, dn);
            break;
        case Move::Kind::Commit:
        case Move::Kind::Abort:
            validator.finish(tx);
            naive.finish(tx);
            break;
        }
    }

    /// The verdict of the validator; \p flag is the value of the caller's flag before the call.
    Verdict verdict(unsigned long tx, bool flag) {
        const std::size_t before = stage.messages().size();
        Verdict verdict{flag, OrvOk, {}};
        verdict.code = validator.validate(tx, &verdict.valid);
        const std::vector<std::string> messages = stage.messages();
        verdict.messages.assign(messages.begin() + static_cast<std::ptrdiff_t>(before),
                                messages.end());
        return verdict;
    }

    const UniDirModel model;
    Scripted::Stage stage;
    UniDirValidator validator;
    NaiveRecord naive;

private:
    void set(unsigned long tx, const std::string& dn, const std::string& attribute,
             const Dns& references) {
        Scripted::Records records;
        validator.setMoRef(tx, dn, attribute, records.container(Scripted::refs(references)));
        const bool isEnd = std::any_of(model.begin(), model.end(), [&](const auto& each) {
            return each.source == Scripted::classOf(dn) && each.attribute == attribute;
        });
        if (isEnd) {
            naive.set(tx, dn, attribute, references);
        }
    }
};

/// Computes the verdict from the generated model alone, without the component.
class Recount {
public:
    /// \p flag as for UniDirGame::verdict.
    static Verdict of(UniDirGame& game, unsigned long tx, bool flag) {
        Recount recount(game);
        for (const auto& [steps, attributes] : game.naive.of(tx)) {
            for (const auto& [attribute, references] : attributes) {
                if (!recount.judge(NaiveRecord::dnOf(steps), attribute, references)) {
                    return {flag, OrvFailure, recount.mMessages}; // no verdict
                }
            }
        }
        const bool valid = recount.mMessages.empty();
        return {valid, valid ? OrvOk : OrvValidationFailed, recount.mMessages};
    }

private:
    struct Bounds {
        unsigned long long lower;
        unsigned long long upper;
    };

    explicit Recount(const UniDirGame& game) : mGame(game) {}

    /// False if a reference is not a DN; then the check ends.
    bool judge(const std::string& dn, const std::string& attribute, const Dns& references) {
        std::map<std::string, unsigned long long> counts;
        for (const std::string& reference : references) {
            const std::string moc = Scripted::classOf(reference);
            if (moc == "Q") {
                mMessages.push_back(reference + notValid(dn, attribute));
            } else if (!isDn(reference)) {
                return false;
            } else {
                ++counts[moc];
            }
        }
        judgeCounts(dn, attribute, counts);
        return true;
    }

    // The classes in the order in which the model declared them, which is the order of their
    // handles.
    void judgeCounts(const std::string& dn, const std::string& attribute,
                     const std::map<std::string, unsigned long long>& counts) {
        for (const std::string& target : classes()) {
            const auto count = counts.find(target);
            if (count != counts.end()) {
                const std::optional<Bounds> bounds = boundsOf(dn, attribute, target);
                if (!bounds) {
                    mMessages.push_back(target + notValid(dn, attribute));
                } else if (count->second < bounds->lower || count->second > bounds->upper) {
                    tellOutside(dn, attribute, count->second, target, *bounds);
                }
            }
        }
        for (const std::string& target : classes()) {
            const std::optional<Bounds> bounds = boundsOf(dn, attribute, target);
            if (bounds && bounds->lower > 0 && counts.count(target) == 0) {
                tellOutside(dn, attribute, 0, target, *bounds);
            }
        }
    }

    /// The bounds of the first association that fits.
    std::optional<Bounds> boundsOf(const std::string& dn, const std::string& attribute,
                                   const std::string& target) const {
        for (const UniDirAssociation& each : mGame.model) {
            if (each.source == Scripted::classOf(dn) && each.attribute == attribute &&
                each.target == target) {
                return Bounds{static_cast<unsigned long long>(each.lower),
                              static_cast<unsigned long long>(each.upper)};
            }
        }
        return std::nullopt;
    }

    void tellOutside(const std::string& dn, const std::string& attribute, unsigned long long count,
                     const std::string& target, const Bounds& bounds) {
        mMessages.push_back(
            "Attribute " + attribute + " in " + dn + " contains " + std::to_string(count) + " " +
            target + " which is not within cardinality range (" + std::to_string(bounds.lower) +
            ".." + std::to_string(bounds.upper) + ").");
    }

    static std::string notValid(const std::string& dn, const std::string& attribute) {
        return " is not a valid type for attribute " + attribute + " in " + dn;
    }

    const UniDirGame& mGame;
    std::vector<std::string> mMessages;
};

RC_GTEST_PROP(UniDirProperties, Validator_AgreesWithARecountInEveryOpenTransaction, ()) {
    UniDirGame game(*modelGenerator());
    const std::vector<Move> moves = *movesGenerator();
    int refused = 0;
    int undecided = 0;
    bool flag = false;
    for (const Move& move : moves) {
        RC_LOG() << move << "\n";
        game.play(move);
        for (unsigned long tx = 0; tx < UniDirGame::transactions; ++tx) {
            flag = !flag;
            const Verdict expected = Recount::of(game, tx, flag);
            RC_ASSERT(game.verdict(tx, flag) == expected);
            refused += expected.code == OrvValidationFailed ? 1 : 0;
            undecided += expected.code == OrvFailure ? 1 : 0;
        }
    }
    RC_CLASSIFY(refused > 0, "some refused");
    RC_CLASSIFY(undecided > 0, "some undecided");
}

RC_GTEST_PROP(UniDirProperties, Storage_ListsWhatIsRecordedParentsFirst, ()) {
    UniDirStorage storage;
    NaiveRecord naive;
    Scripted::Records records;
    const std::vector<Move> moves = *movesGenerator();
    for (const Move& move : moves) {
        RC_LOG() << move << "\n";
        const unsigned long tx = move.transaction % UniDirGame::transactions;
        const std::string dn = spelled(objectOf(move), move.attribute);
        if (move.kind == Move::Kind::Delete) {
            storage.deleteMo(tx, dn);
            naive.deleteMo(tx, dn);
        } else if (move.kind == Move::Kind::Commit) {
            storage.finish(tx);
            naive.finish(tx);
        } else {
            const std::string& attribute = pick(attributes(), move.attribute);
            storage.setUniDirRef(tx, dn, 1, attribute, 1, records.container(Scripted::refs({})));
            naive.set(tx, dn, attribute, {});
        }
        for (unsigned long each = 0; each < UniDirGame::transactions; ++each) {
            std::list<std::string> expected;
            for (const auto& mo : naive.of(each)) {
                expected.push_back(NaiveRecord::dnOf(mo.first));
            }
            std::list<std::string> listed;
            storage.getDns(each, listed);
            RC_ASSERT(listed == expected);
        }
    }
}

}
}
