// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "Actor.h"

#include "Ledger.h"
#include "Scene.h"
#include "base/HostReturn.h"

#include <algorithm>
#include <iterator>

namespace Soak {

using namespace Scripted;

namespace {

constexpr OrvReturnT kConflict = OrvHost::OrvHostWriteConflict;

std::vector<std::string> textsOf(const std::optional<Value>& value) {
    std::vector<std::string> texts;
    if (value) {
        for (const Scripted::Slot& slot : value->slots()) {
            texts.push_back(slot.text.value_or("(null)"));
        }
    }
    return texts;
}

bool holds(const std::vector<std::string>& texts, const std::string& text) {
    return std::find(texts.begin(), texts.end(), text) != texts.end();
}

bool isExternal(const std::string& dn) {
    return dn.rfind(kRoot + ",", 0) == 0;
}

}

Actor::Actor(Scene& scene, unsigned long txHandle, Random& random, const Cast& cast, Ledger* ledger)
    : mScene(scene), mTx(txHandle), mRandom(random), mCast(cast), mLedger(ledger) {}

bool Actor::judge(const char* operation, const std::string& dn, OrvReturnT code,
                  std::initializer_list<OrvReturnT> alsoRight) {
    ++mOperations;
    mScene.host().threadContext().clear();
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
    const auto answer = mScene.client3().exists(mTx, dn);
    return judge("existsMo", dn, answer.code) && answer.thing;
}

bool Actor::ensure(const Subject& subject) {
    return exists(subject.dn) || create(subject, {});
}

bool Actor::create(const Subject& subject, const NamedValues& references) {
    const Role& role = roles()[subject.role];
    NamedValues attributes = role.mandatory;
    attributes.insert(attributes.end(), references.begin(), references.end());
    const OrvReturnT code =
        mScene.client3().create(mTx, mCast.parentOf(subject.role), role.className, role.naming,
                                mCast.nameOf(subject.number), attributes);
    return judge("createMo", subject.dn, code);
}

bool Actor::remove(const Subject& subject) {
    for (const Soak::Slot& slot : roles()[subject.role].slots) {
        if (slot.isKeptAtDelete && !set(subject.dn, slot.attribute, refs({}))) {
            return false;
        }
    }
    if (!judge("deleteMo", subject.dn, mScene.client3().remove(mTx, subject.dn))) {
        return false;
    }
    if (mLedger != nullptr) {
        mLedger->erase(subject.dn);
    }
    return true;
}

bool Actor::set(const std::string& dn, const std::string& attribute, const Value& value) {
    return judge("setMoAttribute", dn, mScene.client3().set(mTx, dn, attribute, value));
}

std::vector<std::string> Actor::references(const std::string& dn, const std::string& attribute) {
    const Read read = mScene.client3().get(mTx, dn, attribute);
    if (!judge("getMoAttribute", dn, read.code)) {
        return {};
    }
    std::vector<std::string> targets = textsOf(read.value());
    check(std::all_of(targets.begin(), targets.end(), isExternal),
          dn + ", " + attribute + ": a reference in internal form");
    return targets;
}

// Objects that exist and have room for one more reference back.
std::vector<std::string> Actor::drawTargets(const Subject& subject, const Soak::Slot& slot) {
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
        const std::vector<Soak::Slot>& slots = roles()[one.role].slots;
        const Soak::Slot& slot = slots[mRandom.below(slots.size())];
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
    const std::vector<Soak::Slot>& slots = roles()[one.role].slots;
    const Soak::Slot& slot = slots[mRandom.below(slots.size())];
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
    const Soak::Slot& slot = roles()[one.role].slots.front();
    if (!ensure(one)) {
        return;
    }
    const std::vector<std::string> targets = drawTargets(one, slot);
    NamedValues attributes{{slot.attribute, refs(targets)}};
    const std::string text = drawText();
    const bool hasText = one.role == 0 || one.role == 1;
    if (hasText) {
        attributes.emplace_back("userLabel", strings({text}));
    }
    if (!mIsDoomed &&
        judge("setMoAttributes", one.dn, mScene.client3_1().set(mTx, one.dn, attributes)) &&
        hasText) {
        remember(one.dn, text);
    }
}

void Actor::setText() {
    const Subject one = subject(mRandom.below(2), mRandom.below(8));
    const std::string text = drawText();
    if (!ensure(one)) {
        return;
    }
    const Value value = strings({text});
    const OrvReturnT code = mRandom.oneIn(2)
                                ? mScene.client1().set(mTx, one.dn, "userLabel", value)
                                : mScene.client3().set(mTx, one.dn, "userLabel", value);
    if (judge("setMoAttribute", one.dn, code)) {
        remember(one.dn, text);
    }
}

// A beam names an antenna inside a struct: associations ignore it, but every conversion must handle
// it.
void Actor::setStruct() {
    const Subject one = subject(1, mRandom.below(8));
    const Value beams =
        structs({{member("index", opaque(OrvMoAttributeTypeUint64_3, {mRandom.below(8)})),
                  member("antennaRef", refs({mCast.dnOf(6, mRandom.below(6))}))}});
    if (!ensure(one) || !set(one.dn, "beam", beams)) {
        return;
    }
    const Read read = mScene.client3().get(mTx, one.dn, "beam");
    if (judge("getMoAttribute", one.dn, read.code)) {
        check(read.value() == beams, one.dn + ": another struct than it wrote");
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

// Deletes a unit with its cells and carriers, to which other cells refer, and creates it again.
void Actor::rebuildUnit() {
    const std::string unit = mCast.distributedUnit();
    // Radio units do not keep the DNs of deleted antennas, so both subtrees can be deleted.
    for (const std::string& dn : {unit, mCast.antennaUnit()}) {
        if (!judge("deleteMo", dn, mScene.client3().remove(mTx, dn))) {
            return;
        }
        if (mLedger != nullptr) {
            mLedger->erase(dn);
        }
    }
    judge("createMo", unit, mScene.createUnits(mTx, mCast));
}

// Version 1 does not update associations, so it creates and deletes only objects without any.
void Actor::toggleInVersion1() {
    const std::string parent = kRoot + ",Equipment=1";
    const std::string name = mCast.nameOf(mRandom.below(6));
    const std::string dn = parent + ",Cabinet=" + name;
    const bool isThere = exists(dn);
    const Client1& client = mScene.client1();
    if (mIsDoomed) {
        return;
    }
    judge(isThere ? "deleteMo" : "createMo", dn,
          isThere ? client.remove(mTx, dn)
                  : client.create(mTx, parent, "Cabinet", "cabinetId", name));
}

void Actor::increment(std::size_t counter) {
    const std::string dn = Scene::counterDn(counter);
    const std::string attribute = "configuredMaxTxPower";
    std::uint64_t number = 0;
    if (mRandom.oneIn(2)) {
        const auto answer = mScene.client1().get(mTx, dn, attribute);
        if (!judge("getMoAttribute", dn, answer.code)) {
            return;
        }
        number = answer.thing->values[0].uint64;
    } else {
        const Read read = mScene.client3().get(mTx, dn, attribute);
        if (!judge("getMoAttribute", dn, read.code)) {
            return;
        }
        number = read.record.container->values[0].uint64;
    }
    const Value next = opaque(OrvMoAttributeTypeInt64_3, {number + 1});
    const std::size_t version = mRandom.below(3);
    const OrvReturnT code = version == 0   ? mScene.client1().set(mTx, dn, attribute, next)
                            : version == 1 ? mScene.client3().set(mTx, dn, attribute, next)
                                           : mScene.client3_1().set(mTx, dn, {{attribute, next}});
    judge("counting", dn, code);
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
    for (const Soak::Slot& slot : roles()[one.role].slots) {
        const Read read = mScene.client3().get(mTx, one.dn, slot.attribute);
        if (!judge("getMoAttribute", one.dn, read.code, {OrvNotExist})) {
            return;
        }
        // The far side must name this object: the state that one transaction sees is always
        // consistent.
        for (const std::string& target : textsOf(read.value())) {
            check(holds(references(target, slot.back), one.dn),
                  target + " does not name " + one.dn + " in " + slot.back);
        }
    }
}

void Actor::readSeveral() {
    const Subject one = draw();
    const Role& role = roles()[one.role];
    std::vector<std::string> names{role.naming};
    for (const Soak::Slot& slot : role.slots) {
        names.push_back(slot.attribute);
    }
    const ReadMany read = mScene.client3().getMany(mTx, one.dn, names);
    if (judge("getMoAttributes", one.dn, read.code, {OrvNotExist})) {
        const std::vector<Value> values = read.values();
        check(values.size() == names.size(), one.dn + ": number of values");
        check(textsOf(values.front()) == std::vector<std::string>{mCast.nameOf(one.number)},
              one.dn + ": naming attribute");
    }
}

void Actor::readInVersion1() {
    const Subject one = draw();
    const Soak::Slot& slot = roles()[one.role].slots.front();
    const auto answer = mScene.client1().get(mTx, one.dn, slot.attribute);
    if (judge("getMoAttribute", one.dn, answer.code, {OrvNotExist})) {
        const std::vector<std::string> targets = textsOf(readValue(answer.thing));
        check(std::all_of(targets.begin(), targets.end(), isExternal),
              one.dn + ": a reference in internal form");
    }
}

void Actor::iterate() {
    const std::size_t role = mRandom.below(roles().size());
    const std::string parent = mCast.parentOf(role);
    const auto opened = mScene.client3().open(mTx, parent, roles()[role].className);
    if (!judge("newMoIterator", parent, opened.code)) {
        return;
    }
    const std::size_t most = mRandom.below(40);
    for (std::size_t at = 0; at < most; ++at) {
        const auto child = mScene.client3().next(opened.thing);
        if (!judge("nextMo", parent, child.code) || child.thing == "(null)") {
            break;
        }
    }
    if (mRandom.oneIn(4)) {
        mLeftOpen.push_back(opened.thing);
    } else {
        judge("finalizeMoIterator", parent, mScene.client3().finalize(opened.thing));
    }
}

void Actor::iterateInVersion1() {
    const auto opened = mScene.client1().open(mTx, "", "ManagedElement");
    if (!judge("newMoIterator", "", opened.code)) {
        return;
    }
    const auto root = mScene.client1().next(opened.thing);
    check(judge("nextMo", "", root.code) && root.thing == "north", "the root is " + root.thing);
    const auto end = mScene.client1().next(opened.thing);
    check(judge("nextMo", "", end.code) && end.thing == "(null)", "a second root");
}

void Actor::countAndFind() {
    const Subject one = draw();
    const std::string parent = mCast.parentOf(one.role);
    const auto before = mScene.client3().count(mTx, parent, roles()[one.role].className);
    const bool isThere = exists(one.dn);
    if (judge("countMoChildren", parent, before.code)) {
        check(!isThere || before.thing > 0, parent + ": counts no children, but has one");
    }
}

void Actor::act() {
    const Subject cell = subject(0, mRandom.below(8));
    const Value pci = opaque(OrvMoAttributeTypeUint64_3, {mRandom.below(1008)});
    const Value informed = refs({mCast.dnOf(2, mRandom.below(8))});
    if (mRandom.oneIn(2)) {
        const auto answer = mScene.client1().action(mTx, cell.dn, "changePci", {pci, informed});
        if (judge("action", cell.dn, answer.code, {OrvNotExist})) {
            check(answer.thing->count == 1, cell.dn + ": result of the action");
        }
    } else {
        const Read read = mScene.client3().action(mTx, cell.dn, "changePci",
                                                  {{"nRPCI", pci}, {"informRef", informed}});
        if (judge("action", cell.dn, read.code, {OrvNotExist})) {
            check(read.record.container->count == 1, cell.dn + ": result of the action");
        }
    }
}

void Actor::askForNonsense() {
    const std::string elsewhere = "ManagedElement=elsewhere,Equipment=1";
    const Client3& client = mScene.client3();
    const auto refuses = [&](const char* operation, OrvReturnT code, OrvReturnT right) {
        judge(operation, elsewhere, code, {right});
        check(code == right, std::string(operation) + " of nonsense: " + std::to_string(code));
    };
    refuses("existsMo", client.exists(mTx, elsewhere).code, OrvNotExist);
    refuses("getMoAttribute", mScene.client1().get(mTx, elsewhere, "x").code, OrvNotExist);
    refuses("createMo", client.create(mTx, elsewhere, "Cabinet", "cabinetId", "1"), OrvNotExist);
    refuses("setMoAttributes", mScene.client3_1().set(mTx, elsewhere, {}), OrvNotExist);
    refuses("nextMo", client.next(0).code, OrvNotActive);
}

}
