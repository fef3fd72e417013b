// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "AssociationGame.h"

#include "LoggingWrapper.h"
#include "Portal.h"

#include <algorithm>
#include <ostream>
#include <set>

namespace BiDirTests {

namespace {

using PropertyTests::classes;
using PropertyTests::pick;
using PropertyTests::pool;

void show(const GeneratedSide& side, std::ostream& out) {
    out << side.moc << "." << side.attribute << (side.anyClass ? "(any)" : "") << "[" << side.lower
        << ".." << side.upper << ", " << side.lowerCount << ".." << side.upperCount << "]";
}

/// The random numbers for one association.
struct Draw {
    std::size_t first;
    std::size_t second;
    bool shared;
    std::vector<long long> bounds;
};

rc::Gen<Draw> drawGenerator() {
    return rc::gen::build<Draw>(
        rc::gen::set(&Draw::first, rc::gen::inRange<std::size_t>(0, classes().size())),
        rc::gen::set(&Draw::second, rc::gen::inRange<std::size_t>(0, classes().size())),
        rc::gen::set(&Draw::shared, rc::gen::arbitrary<bool>()),
        rc::gen::set(&Draw::bounds,
                     rc::gen::container<std::vector<long long>>(8, rc::gen::inRange(0LL, 4LL))));
}

GeneratedSide sideOf(const std::string& moc, const std::string& attribute,
                     const std::vector<long long>& bounds, std::size_t at, bool tight) {
    GeneratedSide side{moc, attribute};
    if (tight) {
        side.lower = bounds[at] == 3 ? 1 : 0;
        side.upper = 1 + bounds[at + 1];
        side.lowerCount = bounds[at + 2] == 3 ? 1 : 0;
        side.upperCount = 1 + bounds[at + 3];
    }
    return side;
}

/// A shared attribute is named "many" in each class and has its own bounds.
GeneratedModel assemble(const std::vector<Draw>& draws, bool tight) {
    GeneratedModel model;
    std::set<std::pair<std::string, std::string>> shared;
    for (const Draw& draw : draws) {
        const std::string number = std::to_string(model.size());
        GeneratedAssociation association = {
            sideOf(classes()[draw.first], "a" + number, draw.bounds, 0, tight),
            sideOf(classes()[draw.second], "b" + number, draw.bounds, 4, tight)};
        GeneratedSide& first = association.first;
        if (draw.shared && shared.insert({first.moc, association.second.moc}).second) {
            first.attribute = "many";
            first.anyClass = true;
            first.lower = 0;
            first.upper = tight ? 4 : 1000;
        }
        model.push_back(association);
    }
    return model;
}

}

void showValue(const GeneratedModel& model, std::ostream& out) {
    for (const GeneratedAssociation& association : model) {
        show(association.first, out);
        out << " <-> ";
        show(association.second, out);
        out << "\n";
    }
}

rc::Gen<GeneratedModel> modelGenerator(bool tight) {
    return rc::gen::map(rc::gen::mapcat(rc::gen::inRange<std::size_t>(1, 6),
                                        [](std::size_t size) {
                                            return rc::gen::container<std::vector<Draw>>(
                                                size, drawGenerator());
                                        }),
                        [tight](const std::vector<Draw>& draws) { return assemble(draws, tight); });
}

AssociationGame::AssociationGame(const GeneratedModel& generated) : model(generated) {
    Orv::LoggingWrapper::instance()->setLevel(0);
    Orv::Portal::instance()->attach(&Scripted::orvPortalLookup);
    stage.script.keepCalls(false);
    for (const std::string& moc : classes()) {
        for (const std::string& child : classes()) {
            stage.model.moc(moc).contains(child);
        }
    }
    for (const auto& [first, second] : model) {
        const auto declare = [&](const GeneratedSide& side, const std::string& target) {
            stage.model.moc(side.moc).reference(
                side.attribute, side.anyClass ? "ManagedObject" : target, side.lower, side.upper);
        };
        declare(first, second.moc);
        declare(second, first.moc);
        stage.model.biDir(
            {first.moc, first.attribute, first.lowerCount, first.upperCount, "things"},
            {second.moc, second.attribute, second.lowerCount, second.upperCount, "things"});
    }
    utils.start();
}

AssociationGame::~AssociationGame() {
    utils.stop();
    Orv::Portal::instance()->detach();
}

bool AssociationGame::play(const Move& move) {
    const std::string& dn = PropertyTests::objectOf(move);
    switch (move.kind) {
    case Move::Kind::Create:
        return create(dn, move);
    case Move::Kind::Set:
        return set(dn, move);
    case Move::Kind::Delete:
        return remove(dn);
    case Move::Kind::Commit:
        return end(true);
    case Move::Kind::Abort:
        return end(false);
    }
    return false;
}

bool AssociationGame::create(const std::string& dn, const Move& move) {
    const std::string parent = Scripted::parentOf(dn);
    if (exists(dn) || (!parent.empty() && !exists(parent))) {
        return false;
    }
    NamedDns attributes;
    const Dns names = attributesOf(Scripted::classOf(dn));
    if (!names.empty() && !move.references.empty()) {
        const std::string& attribute = pick(names, move.attribute);
        attributes.emplace_back(attribute,
                                chosen(dn, attribute, PropertyTests::referencesOf(move)));
    }
    client.create(tx, dn, attributes);
    for (const auto& [attribute, references] : attributes) {
        writing(dn, attribute, {}, references);
    }
    created(dn);
    return true;
}

bool AssociationGame::set(const std::string& dn, const Move& move) {
    const Dns names = attributesOf(Scripted::classOf(dn));
    if (!exists(dn) || names.empty()) {
        return false;
    }
    const std::string& attribute = pick(names, move.attribute);
    const Dns fresh = chosen(dn, attribute, PropertyTests::referencesOf(move));
    writing(dn, attribute, references(dn, attribute), fresh);
    client.set(tx, dn, attribute, fresh);
    return true;
}

bool AssociationGame::remove(const std::string& dn) {
    if (!exists(dn)) {
        return false;
    }
    deleting(dn);
    client.remove(tx, dn);
    return true;
}

bool AssociationGame::end(bool commit) {
    client.finish(tx);
    if (!commit) {
        restore(mBegin);
    }
    ended(commit);
    mBegin = state();
    ++tx;
    return true;
}

Dns AssociationGame::references(const std::string& dn, const std::string& attribute) const {
    return stage.world.references(dn, attribute);
}

Dns AssociationGame::existing() const {
    Dns dns;
    std::copy_if(pool().begin(), pool().end(), std::back_inserter(dns),
                 [&](const std::string& dn) { return exists(dn); });
    return dns;
}

Dns AssociationGame::attributesOf(const std::string& moc) const {
    std::set<std::string> names;
    for (const auto& [first, second] : model) {
        for (const GeneratedSide* side : {&first, &second}) {
            if (side->moc == moc) {
                names.insert(side->attribute);
            }
        }
    }
    return {names.begin(), names.end()};
}

AssociationGame::State AssociationGame::state() const {
    State state;
    for (const std::string& dn : existing()) {
        for (const std::string& attribute : attributesOf(Scripted::classOf(dn))) {
            state[dn][attribute] = references(dn, attribute);
        }
        state.try_emplace(dn);
    }
    return state;
}

void AssociationGame::restore(const State& wanted) {
    for (const std::string& dn : existing()) {
        stage.world.remove(dn);
    }
    for (const auto& [dn, attributes] : wanted) {
        stage.world.mo(dn);
        for (const auto& [attribute, dns] : attributes) {
            stage.world.set(dn, attribute, Scripted::refs(dns));
        }
    }
}

Dns AssociationGame::chosen(const std::string& /*dn*/, const std::string& /*attribute*/,
                            const Dns& references) {
    return references;
}
void AssociationGame::writing(const std::string& /*dn*/, const std::string& /*attribute*/,
                              const Dns& /*old*/, const Dns& /*fresh*/) {}
void AssociationGame::created(const std::string& /*dn*/) {}
void AssociationGame::deleting(const std::string& /*dn*/) {}
void AssociationGame::ended(bool /*committed*/) {}

}
