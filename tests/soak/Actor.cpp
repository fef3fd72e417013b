// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "Actor.h"

#include "Ledger.h"
#include "Scene.h"
#include "Values.h"
#include "base/DnView.h"
#include "base/HostReturn.h"

#include <algorithm>
#include <iterator>

namespace Soak {

using namespace OrvHost;

namespace {

constexpr OrvReturnT kConflict = OrvHostWriteConflict;

bool holds(const std::vector<std::string>& texts, const std::string& text) {
    return std::find(texts.begin(), texts.end(), text) != texts.end();
}

bool isExternal(const std::string& dn) {
    return dn.rfind(kRoot + ",", 0) == 0;
}

}

Actor::Actor(Scene& scene, unsigned long txHandle, Random& random, const Cast& cast, Ledger* ledger)
    : mScene(scene), mTx(txHandle), mRandom(random), mCast(cast), mLedger(ledger) {}

bool Actor::run(const char* operation, const std::string& dn, const std::function<void()>& call,
                std::initializer_list<OrvReturnT> alsoRight) {
    ++mOperations;
    const OrvReturnT code = codeOf(call);
    mIsDoomed = mIsDoomed || code == kConflict;
    const bool isRight = code == OrvOk || code == kConflict ||
                         std::find(alsoRight.begin(), alsoRight.end(), code) != alsoRight.end();
    check(isRight, std::string(operation) + " " + dn + ": code " + std::to_string(code));
    return code == OrvOk;
}

void Actor::check(bool isRight, const std::string& what) {
    if (!isRight) {
        mDoubts.push_back("transaction " + std::to_string(mTx) + ": " + what);
    }
}

void Actor::step() {
    using Step = void (Actor::*)();
    // A step that is listed more than once is drawn more often.
    static constexpr Step kSteps[] = {&Actor::toggle,
                                      &Actor::toggle,
                                      &Actor::setReferences,
                                      &Actor::setReferences,
                                      &Actor::setReferences,
                                      &Actor::setReferences,
                                      &Actor::setSeveral,
                                      &Actor::setSeveral,
                                      &Actor::setText,
                                      &Actor::setText,
                                      &Actor::readReferences,
                                      &Actor::readReferences,
                                      &Actor::readSeveral,
                                      &Actor::readSeveral,
                                      &Actor::readInVersion1,
                                      &Actor::readInVersion1,
                                      &Actor::iterate,
                                      &Actor::iterateInVersion1,
                                      &Actor::countAndFind,
                                      &Actor::act,
                                      &Actor::act,
                                      &Actor::setStruct,
                                      &Actor::toggleInVersion1,
                                      &Actor::createBeforeTarget,
                                      &Actor::setOneWay,
                                      &Actor::askForNonsense};
    if (mRandom.oneIn(200)) {
        rebuildUnit();
    } else {
        (this->*kSteps[mRandom.below(std::size(kSteps))])();
    }
}

// ---------------------------------------------------------------------------------------------
// Subjects

Actor::Subject Actor::subject(std::size_t role, std::size_t number) const {
    return {role, number, mCast.dnOf(role, number)};
}

Actor::Subject Actor::draw() {
    const std::size_t role = mRandom.below(roles().size());
    return subject(role, mRandom.below(roles()[role].count));
}

std::string Actor::drawText() {
    return "text " + std::to_string(mRandom.below(1000000));
}

void Actor::remember(const std::string& dn, const std::string& text) {
    if (mLedger != nullptr) {
        mLedger->write(dn, text);
    }
}

bool Actor::exists(const std::string& dn) {
    bool isThere = false;
    run("existsMo", dn, [&] { isThere = mScene.client3().exists(mTx, dn); });
    return isThere;
}

bool Actor::ensure(const Subject& subject) {
    return exists(subject.dn) || create(subject, {});
}

bool Actor::create(const Subject& subject, const std::vector<NamedValue>& references) {
    const Role& role = roles()[subject.role];
    std::vector<NamedValue> attributes = role.mandatory;
    attributes.insert(attributes.end(), references.begin(), references.end());
    const NewObject object{mCast.parentOf(subject.role), role.className, role.naming,
                           mCast.nameOf(subject.number)};
    return run("createMo", subject.dn, [&] { mScene.client3().create(mTx, object, attributes); });
}

bool Actor::remove(const Subject& subject) {
    for (const Slot& slot : roles()[subject.role].slots) {
        if (slot.isKeptAtDelete && !set(subject.dn, slot.attribute, refs({}))) {
            return false;
        }
    }
    if (!run("deleteMo", subject.dn, [&] { mScene.client3().remove(mTx, subject.dn); })) {
        return false;
    }
    if (mLedger != nullptr) {
        mLedger->erase(subject.dn);
    }
    return true;
}

bool Actor::set(const std::string& dn, const std::string& attribute, const AttributeValue& value) {
    return run("setMoAttribute", dn, [&] { mScene.client3().set(mTx, dn, {{attribute, value}}); });
}

std::optional<ReadValue> Actor::read(const std::string& dn, const std::string& attribute,
                                     std::initializer_list<OrvReturnT> alsoRight) {
    ReadValue value;
    const bool isRead = run(
        "getMoAttribute", dn, [&] { value = mScene.client3().get(mTx, dn, attribute, nullptr); },
        alsoRight);
    return isRead ? std::optional<ReadValue>(value) : std::nullopt;
}

std::vector<std::string> Actor::references(const std::string& dn, const std::string& attribute) {
    const std::optional<ReadValue> value = read(dn, attribute);
    if (!value) {
        return {};
    }
    std::vector<std::string> targets = textsOf(*value);
    check(std::all_of(targets.begin(), targets.end(), isExternal),
          dn + ", " + attribute + ": a reference in internal form");
    return targets;
}

// Objects that exist and have room for one more reference back.
std::vector<std::string> Actor::drawTargets(const Subject& subject, const Slot& slot) {
    std::vector<std::string> targets;
    const std::size_t wanted = mRandom.below(slot.most + 1);
    for (std::size_t at = 0; at < wanted && !mIsDoomed; ++at) {
        const std::string target =
            mCast.dnOf(slot.target, mRandom.below(roles()[slot.target].count));
        if (holds(targets, target) || !exists(target)) {
            continue;
        }
        const std::vector<std::string> back = references(target, slot.back);
        if (back.size() < slot.farMost || holds(back, subject.dn)) {
            targets.push_back(target);
        }
    }
    return targets;
}

// ---------------------------------------------------------------------------------------------
// Writes

void Actor::toggle() {
    const Subject one = draw();
    if (!exists(one.dn)) {
        const std::vector<Slot>& slots = roles()[one.role].slots;
        const Slot& slot = slots[mRandom.below(slots.size())];
        const std::vector<std::string> targets = drawTargets(one, slot);
        // An object that may refer to itself is created without references: at that moment it does
        // not exist yet.
        create(one, {{slot.attribute, refs(targets)}});
    } else if (!mIsDoomed) {
        remove(one);
    }
}

void Actor::setReferences() {
    const Subject one = draw();
    const std::vector<Slot>& slots = roles()[one.role].slots;
    const Slot& slot = slots[mRandom.below(slots.size())];
    if (!ensure(one)) {
        return;
    }
    const std::vector<std::string> targets = drawTargets(one, slot);
    if (!mIsDoomed && set(one.dn, slot.attribute, refs(targets))) {
        check(references(one.dn, slot.attribute) == targets,
              one.dn + ": reads other than it wrote");
    }
}

void Actor::setSeveral() {
    const Subject one = draw();
    const Slot& slot = roles()[one.role].slots.front();
    if (!ensure(one)) {
        return;
    }
    const std::vector<std::string> targets = drawTargets(one, slot);
    std::vector<NamedValue> attributes{{slot.attribute, refs(targets)}};
    const std::string label = drawText();
    const bool hasText = one.role == 0 || one.role == 1;
    if (hasText) {
        attributes.emplace_back("userLabel", text(label));
    }
    if (!mIsDoomed &&
        run("setMoAttributes", one.dn, [&] { mScene.client3_1().set(mTx, one.dn, attributes); }) &&
        hasText) {
        remember(one.dn, label);
    }
}

void Actor::setText() {
    const Subject one = subject(mRandom.below(2), mRandom.below(8));
    const std::string label = drawText();
    if (!ensure(one)) {
        return;
    }
    Client& client = mRandom.oneIn(2) ? mScene.client1() : mScene.client3();
    if (run("setMoAttribute", one.dn, [&] {
            client.set(mTx, one.dn, {{"userLabel", text(label)}});
        })) {
        remember(one.dn, label);
    }
}

// A beam names an antenna inside a struct: associations ignore it, but every conversion must handle
// it.
void Actor::setStruct() {
    const Subject one = subject(1, mRandom.below(8));
    const AttributeValue beams =
        structure({{"index", natural(mRandom.below(8))},
                   {"antennaRef", refs({mCast.dnOf(6, mRandom.below(6))})}});
    if (!ensure(one) || !set(one.dn, "beam", beams)) {
        return;
    }
    if (const std::optional<ReadValue> value = read(one.dn, "beam")) {
        check(toAttributeValue(*value, ValueKind::Struct) == beams,
              one.dn + ": another struct than it wrote");
    }
}

// The reference waits until its target is created.
void Actor::createBeforeTarget() {
    const Subject source = subject(0, mRandom.below(8));
    const Subject target = subject(1, mRandom.below(8));
    for (const Subject& one : {source, target}) {
        if (exists(one.dn) && (mIsDoomed || !remove(one))) {
            return;
        }
    }
    if (mIsDoomed || !create(source, {{"nRSectorCarrierRef", refs({target.dn})}}) ||
        !create(target, {})) {
        return;
    }
    check(references(target.dn, "nRCellDURef") == std::vector<std::string>{source.dn},
          target.dn + ": the reference that waited for it has not come");
}

// A reference of a unidirectional association, to a sector of the network that nobody deletes: the
// far side does not know of the reference, so it is not removed with its target.
void Actor::setOneWay() {
    const Subject one = subject(1, mRandom.below(8));
    std::vector<std::string> sector;
    if (!mRandom.oneIn(4)) {
        sector.push_back(kRoot + ",Equipment=1,Sector=" + std::to_string(1 + mRandom.below(4)));
    }
    if (ensure(one) && set(one.dn, "sectorRef", refs(sector))) {
        check(references(one.dn, "sectorRef") == sector, one.dn + ": another sector than it wrote");
    }
}

// Deletes a unit with its cells and carriers, to which other cells refer, and creates it again.
void Actor::rebuildUnit() {
    const std::string unit = mCast.distributedUnit();
    // Radio units do not keep the DNs of deleted antennas, so both subtrees can be deleted.
    for (const std::string& dn : {unit, mCast.antennaUnit()}) {
        if (!run("deleteMo", dn, [&] { mScene.client3().remove(mTx, dn); })) {
            return;
        }
        if (mLedger != nullptr) {
            mLedger->erase(dn);
        }
    }
    run("createMo", unit, [&] { mScene.createUnits(mTx, mCast); });
}

// Version 1 does not update associations, so it creates and deletes only objects without any.
void Actor::toggleInVersion1() {
    const NewObject object{kRoot + ",Equipment=1", "Cabinet", "cabinetId",
                           mCast.nameOf(mRandom.below(6))};
    const std::string dn = DnView(object.parentDn).child(object.className, object.name);
    const bool isThere = exists(dn);
    if (mIsDoomed) {
        return;
    }
    if (isThere) {
        run("deleteMo", dn, [&] { mScene.client1().remove(mTx, dn); });
    } else {
        run("createMo", dn, [&] { mScene.client1().create(mTx, object, {}); });
    }
}

void Actor::increment(std::size_t counter) {
    const std::string dn = Scene::counterDn(counter);
    const std::string attribute = "configuredMaxTxPower";
    Client& reader = mRandom.oneIn(2) ? mScene.client1() : mScene.client3();
    ReadValue value;
    if (!run("getMoAttribute", dn, [&] { value = reader.get(mTx, dn, attribute, nullptr); })) {
        return;
    }
    const std::optional<std::int64_t> number = integerOf(value);
    check(number.has_value(), dn + ": no number");
    Client* const writers[] = {&mScene.client1(), &mScene.client3(), &mScene.client3_1()};
    Client& writer = *writers[mRandom.below(std::size(writers))];
    run("counting", dn, [&] {
        writer.set(mTx, dn, {{attribute, integer(number.value_or(0) + 1)}});
    });
}

void Actor::violate() {
    const Subject radio = subject(4, 0);
    const Subject left = subject(5, 0);
    const Subject right = subject(5, 1);
    if (ensure(radio) && ensure(left) && ensure(right)) {
        set(radio.dn, "sectorRef", refs({left.dn, right.dn}));
    }
}

// ---------------------------------------------------------------------------------------------
// Reads

void Actor::readReferences() {
    const Subject one = draw();
    for (const Slot& slot : roles()[one.role].slots) {
        const std::optional<ReadValue> value = read(one.dn, slot.attribute, {OrvNotExist});
        if (!value) {
            return;
        }
        // The far side must name this object: the state that one transaction sees is always
        // consistent.
        for (const std::string& target : textsOf(*value)) {
            check(holds(references(target, slot.back), one.dn),
                  target + " does not name " + one.dn + " in " + slot.back);
        }
    }
}

void Actor::readSeveral() {
    const Subject one = draw();
    const Role& role = roles()[one.role];
    std::vector<std::string> names{role.naming};
    for (const Slot& slot : role.slots) {
        names.push_back(slot.attribute);
    }
    std::vector<NamedReadValue> values;
    const auto readAll = [&] { values = mScene.client3().get(mTx, one.dn, names, nullptr); };
    if (run("getMoAttributes", one.dn, readAll, {OrvNotExist})) {
        check(values.size() == names.size(), one.dn + ": number of values");
        check(!values.empty() && textsOf(values.front().second) ==
                                     std::vector<std::string>{mCast.nameOf(one.number)},
              one.dn + ": naming attribute");
    }
}

void Actor::readInVersion1() {
    const Subject one = draw();
    const Slot& slot = roles()[one.role].slots.front();
    ReadValue value;
    const auto call = [&] { value = mScene.client1().get(mTx, one.dn, slot.attribute, nullptr); };
    if (run("getMoAttribute", one.dn, call, {OrvNotExist})) {
        const std::vector<std::string> targets = textsOf(value);
        check(std::all_of(targets.begin(), targets.end(), isExternal),
              one.dn + ": a reference in internal form");
    }
}

void Actor::iterate() {
    const std::size_t role = mRandom.below(roles().size());
    const std::string parent = mCast.parentOf(role);
    ChildIterator iterator;
    if (!run("newMoIterator", parent, [&] {
            iterator = mScene.client3().openChildren(mTx, parent, roles()[role].className);
        })) {
        return;
    }
    const std::size_t most = mRandom.below(40);
    std::optional<std::string> child;
    const auto step = [&] { child = mScene.client3().nextChild(iterator); };
    for (std::size_t at = 0; at < most; ++at) {
        if (!run("nextMo", parent, step) || !child) {
            break;
        }
    }
    if (mRandom.oneIn(4)) {
        mLeftOpen.push_back(iterator);
    } else {
        run("finalizeMoIterator", parent, [&] { mScene.client3().closeChildren(iterator); });
    }
}

void Actor::iterateInVersion1() {
    ChildIterator iterator;
    if (!run("newMoIterator", "",
             [&] { iterator = mScene.client1().openChildren(mTx, "", "ManagedElement"); })) {
        return;
    }
    std::optional<std::string> root;
    const auto step = [&] { root = mScene.client1().nextChild(iterator); };
    const bool isRoot = run("nextMo", "", step) && root == "north";
    check(isRoot, "the root is " + root.value_or("(null)"));
    const bool isEnd = run("nextMo", "", step) && !root;
    check(isEnd, "a second root");
}

void Actor::countAndFind() {
    const Subject one = draw();
    const std::string parent = mCast.parentOf(one.role);
    unsigned long long before = 0;
    const bool isCounted = run("countMoChildren", parent, [&] {
        before = mScene.client3().count(mTx, parent, roles()[one.role].className);
    });
    const bool isThere = exists(one.dn);
    check(!isCounted || !isThere || before > 0, parent + ": counts no children, but has one");
}

void Actor::act() {
    const Subject cell = subject(0, mRandom.below(8));
    const AttributeValue pci = natural(mRandom.below(1008));
    const AttributeValue informed = refs({mCast.dnOf(2, mRandom.below(8))});
    // Without a definition, version 1 takes parameters in the order in which they are given.
    const std::vector<NamedValue> parameters{{"nRPCI", pci}, {"informRef", informed}};
    Client& client = mRandom.oneIn(2) ? mScene.client1() : mScene.client3();
    ReadValue result;
    const auto call = [&] {
        result = client.action(mTx, cell.dn, "changePci", parameters, nullptr);
    };
    if (run("action", cell.dn, call, {OrvNotExist})) {
        check(result.slots.size() == 1, cell.dn + ": result of the action");
    }
}

void Actor::askForNonsense() {
    const std::string elsewhere = "ManagedElement=elsewhere,Equipment=1";
    Client& client = mScene.client3();
    const auto refuses = [&](const char* operation, OrvReturnT right,
                             const std::function<void()>& call) {
        ++mOperations;
        const OrvReturnT code = codeOf(call);
        check(code == right, std::string(operation) + " of nonsense: " + std::to_string(code));
    };
    refuses("existsMo", OrvNotExist, [&] { client.exists(mTx, elsewhere); });
    refuses("getMoAttribute", OrvNotExist,
            [&] { mScene.client1().get(mTx, elsewhere, "x", nullptr); });
    refuses("createMo", OrvNotExist, [&] {
        client.create(mTx, {elsewhere, "Cabinet", "cabinetId", "1"}, {});
    });
    refuses("setMoAttributes", OrvNotExist, [&] { mScene.client3_1().set(mTx, elsewhere, {}); });
    refuses("nextMo", OrvNotActive, [&] { client.nextChild({{}, {}, 0ULL}); });
}

}
