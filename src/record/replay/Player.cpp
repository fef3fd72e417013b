// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "Player.h"

#include "FakeHost.h"
#include "MeIdTranslator.h"
#include "MoInterceptorBase.h"
#include "Portal.h"

#include <cstring>
#include <stdexcept>
#include <tuple>
#include <utility>

namespace OrvRecord {

namespace {

using OrvExtCmRouterService::MoInterceptorBase;

/// Calls from outside in one another: each has a part of the stack.
constexpr int kMostNested = 200;

std::string codeText(std::uint32_t code) {
    return "code " + std::to_string(static_cast<OrvReturnT>(code));
}

// Shows what `show` reads from `values`; what was cut off cannot be shown.
template <class Show>
std::string shown(std::string_view values, const Show& show) {
    std::string text;
    try {
        ByteReader reader(values);
        show(reader, text);
    } catch (const DamagedBytes& damage) {
        text += std::string("... (") + damage.what() + ")";
    }
    return text;
}

// Of an out parameter nothing is shown but a null.
template <class... Codecs>
std::string showIn(std::string_view values) {
    return shown(values, [](ByteReader& reader, std::string& text) {
        const auto one = [&](const auto& show) {
            std::string part;
            show(part);
            text += (part.empty() || text.empty() ? "" : ", ") + part;
        };
        (one([&](std::string& part) { Codecs::showIn(reader, part); }), ...);
    });
}

template <class... Codecs>
std::string showOut(std::string_view values) {
    return shown(values, [](ByteReader& reader, std::string& text) {
        const auto one = [&](const auto& show) {
            std::string part;
            if (!reader.atEnd()) {
                show(part);
            }
            text += part.empty() ? "" : " " + part;
        };
        (one([&](std::string& part) { Codecs::showOut(reader, part); }), ...);
    });
}

/// Calls \p use with the slot of \p name, if it is one of a list.
template <class Use>
void withSlot(const CallName& name, const Use& use) {
    withSlots(name.shape, [&]<class Table>(Table*) {
        forEachSlot<Table>([&]<class SlotType>(SlotType slot, std::uint8_t number) {
            if (number == name.slot) {
                use(slot);
            }
        });
    });
}

// The arguments of calls without a list.
std::string describeFixed(const CallName& name, std::string_view values) {
    switch (name.shape) {
    case Shape::Portal:
        switch (static_cast<PortalSlot>(name.slot)) {
        case PortalSlot::GetPortal:
            return showIn<Text>(values);
        case PortalSlot::GetInterface:
        case PortalSlot::Lookup:
            return showIn<Identity>(values);
        case PortalSlot::Register:
            return showIn<ComponentRecord>(values);
        default:
            return showIn<Present>(values);
        }
    case Shape::Transaction:
        return showIn<Number, Present>(values);
    case Shape::Release:
        return "of call " + showIn<Number>(values);
    case Shape::Life:
        return name.slot == static_cast<std::uint8_t>(LifeSlot::Init)
                   ? showIn<Present, Text>(values)
                   : "";
    default:
        return "";
    }
}

std::string describeAnswer(const CallName& name, std::uint32_t code, std::string_view values) {
    std::string text = codeText(code);
    if (code == 0) {
        withSlot(
            name, [&]<auto member, class... Codecs>(Slot<member, Codecs...>) {
                const std::string out = showOut<Codecs...>(values);
                text += out.empty() ? "" : "," + out;
            });
    }
    return text;
}

std::string describeAnswer(const CallName& name, const Event& end) {
    if (end.kind != EventKind::Thrown) {
        return describeAnswer(name, end.code, end.values);
    }
    return end.isStdException ? "an exception: " + quoted(end.values)
                              : "an exception that is no std::exception";
}

}

std::string describeCall(const CallName& name, std::string_view values) {
    std::string arguments = describeFixed(name, values);
    withSlot(
        name, [&]<auto member, class... Codecs>(Slot<member, Codecs...>) {
            arguments = showIn<Codecs...>(values);
        });
    return toText(name) + "(" + arguments + ")";
}

/// The interceptors that were recorded.
class Player::Interceptors {
public:
    class Played : public MoInterceptorBase {
    public:
        explicit Played(std::uint32_t number) : mNumber(number) {}
        OrvReturnT setMoAttribute(unsigned long txHandle, char const* dn, char const* attrName,
                                  OrvMoAttributeValueContainer_3 const* value) override {
            return FakeHost::answer<Number, Text, Text, Value>(name(0), txHandle, dn, attrName,
                                                               value);
        }
        OrvReturnT getMoAttribute(unsigned long txHandle, char const* dn, char const* attrName,
                                  OrvMoAttributeValueResult_3* result) override {
            return FakeHost::answer<Number, Text, Text, OutResult>(name(1), txHandle, dn, attrName,
                                                                   result);
        }
        OrvReturnT getMoAttributes(unsigned long txHandle, char const* dn, char const** attrNames,
                                   OrvMoAttributeValuesResult_3* result) override {
            return FakeHost::answer<Number, Text, Texts, OutResults>(name(2), txHandle, dn,
                                                                     attrNames, result);
        }
        OrvReturnT setMoAttributes(unsigned long txHandle, char const* dn,
                                   VekMoNamedAttributeValueContainer_3** attributes) override {
            return FakeHost::answer<Number, Text, NamedValues>(name(3), txHandle, dn, attributes);
        }

    private:
        CallName name(std::uint8_t slot) const {
            return {Side::Host, Shape::Interceptor, slot, mNumber};
        }
        std::uint32_t mNumber;
    };

    Played& get(std::uint32_t number) { return mAll.try_emplace(number, number).first->second; }

private:
    std::map<std::uint32_t, Played> mAll;
};

Player::Player(const Recording& recording, const std::string& component, TransactionWatch watch)
    : mRecording(recording),
      mWatch(std::move(watch)),
      mLibrary(component),
      mInterceptors(std::make_unique<Interceptors>()) {
    FakeHost::serve(this);
    Orv::Portal::instance()->attach(&FakeHost::lookUp);
}

Player::~Player() {
    if (!isOver()) {
        fail("the player ends"); // what the component still asks is not compared
    }
    for (auto& [call, given] : mGiven) {
        given.release();
    }
    mGiven.clear();
    if (mComponent != nullptr && mComponent->stop != nullptr) {
        mComponent->stop(OrvStateChangeReasonHostShutdown);
    }
    if (mIsInitialized) {
        mLibrary.terminate();
    }
    FakeHost::serve(nullptr);
    Orv::Portal::instance()->detach();
}

PlayReport Player::play() {
    const std::vector<Block>& blocks = mRecording.blocks();
    for (std::size_t at = 0; at < blocks.size() && !isOver(); ++at) {
        if (at + 1 < blocks.size() && blocks[at + 1].begin < blocks[at].end) {
            fail("byte " + std::to_string(blocks[at].position) + ": the calls of thread " +
                 std::to_string(blocks[at].thread) + " here and of thread " +
                 std::to_string(blocks[at + 1].thread) + " at byte " +
                 std::to_string(blocks[at + 1].position) +
                 " overlap. Only calls one after the other can be played");
            break;
        }
        playBlock(blocks[at]);
    }
    return mReport;
}

void Player::playBlock(const Block& block) {
    mBlock = &block;
    mAt = 0;
    mDepth = 0;
    try {
        mEvents = Recording::events(block);
        while (next() != nullptr && !isOver()) {
            playCall();
        }
    } catch (const DamagedBytes& damage) {
        failHere(damage.what());
    }
}

void Player::playNotes() {
    for (const Event* note = next(); note != nullptr && note->kind != EventKind::Begin;
         note = next()) {
        switch (note->kind) {
        case EventKind::Identity:
            Orv::MeIdTranslator::instance()->configure(std::string(note->values), "");
            break;
        case EventKind::Entered:
            enter(*note);
            break;
        case EventKind::Removed:
            remove(*note);
            break;
        case EventKind::Attached:
            Orv::Portal::instance()->attach(&FakeHost::lookUp);
            break;
        case EventKind::Origin:
            break;
        default:
            throw DamagedBytes("an answer without a call");
        }
        ++mAt;
    }
}

void Player::playCall() {
    playNotes();
    const Event* const begin = next();
    if (begin == nullptr || isOver()) {
        return;
    }
    if (begin->name.side != Side::Component) {
        // The component is not in a call: it did not make this one, or not any more.
        differ(describeCall(begin->name, begin->values), "nothing: it has returned");
        return;
    }
    if (mDepth == kMostNested) {
        throw DamagedBytes("calls that are nested deeper than any host nests them");
    }
    ++mDepth;
    const Event call = *begin;
    const Event outer = std::exchange(mInside, call);
    ++mAt;
    ++mReport.calls;
    count(call);
    switch (call.name.shape) {
    case Shape::Life:
        playLife(call);
        break;
    case Shape::Release:
        playRelease(call);
        break;
    case Shape::Mo1:
        playTable<OrvOamSpiManagedObject_1>(call);
        break;
    case Shape::Mo3:
        playTable<OrvOamSpiManagedObject_3>(call);
        break;
    case Shape::Mo3_1:
        playTable<VekOamSpiManagedObject_3_1>(call);
        break;
    case Shape::Resource:
        playTable<OrvOamSpiTransactionalResource_2>(call);
        break;
    default:
        throw DamagedBytes("a call that no component has");
    }
    mInside = outer;
    --mDepth;
}

// Calls the component, and compares how the call ends. `write` writes what came out.
template <class Call, class Write>
void Player::compare(const Event& begin, const Call& call, const Write& write) {
    Event came;
    std::string text;
    std::string values;
    std::string handles;
    try {
        came.kind = EventKind::End;
        came.code = static_cast<std::uint32_t>(call());
    } catch (const DamagedBytes&) {
        throw;
    } catch (const std::exception& failure) {
        came.kind = EventKind::Thrown;
        came.isStdException = true;
        text = failure.what();
        came.values = text;
    } catch (...) {
        came.kind = EventKind::Thrown;
    }
    // Also after a difference: what was given is to be released.
    if (came.kind == EventKind::End) {
        ByteWriter valueBytes(values);
        ByteWriter handleBytes(handles);
        write(came.code, Outcome<ByteWriter>{valueBytes, handleBytes});
        came.values = values;
    }
    if (isOver()) {
        return;
    }
    const Event* const end = next();
    if (end == nullptr) {
        throw DamagedBytes("a call without an end");
    }
    if (end->kind == EventKind::Begin) {
        differ(describeCall(end->name, end->values),
               "the end of the call, with " + describeAnswer(begin.name, came));
        return;
    }
    // What an exception says is the host's text, or the compiler's.
    const bool isSame =
        end->kind == came.kind &&
        (came.kind == EventKind::Thrown ? end->isStdException == came.isStdException
                                        : end->code == came.code && end->values == came.values);
    if (!isSame) {
        differ("the end of the call, with " + describeAnswer(begin.name, *end),
               "the end of the call, with " + describeAnswer(begin.name, came));
        return;
    }
    if (!end->handles.empty() && !handles.empty()) {
        mHandles[ByteReader(end->handles).number()] = ByteReader(handles).number();
    }
    remember(begin, *end);
    ++mAt;
}

// What the host called from inside a call that it got. Damage must not pass the component, which
// answers exceptions.
void Player::playInner() {
    try {
        for (const Event* inner = next();
             inner != nullptr && inner->kind != EventKind::End && inner->kind != EventKind::Thrown;
             inner = next()) {
            if (isOver()) {
                return;
            }
            playCall();
        }
    } catch (const DamagedBytes& damage) {
        failHere(damage.what());
    }
}

void Player::playLife(const Event& begin) {
    const auto nothing = [](std::uint32_t, Outcome<ByteWriter>) {};
    ByteReader values(begin.values);
    const auto slot = static_cast<LifeSlot>(begin.name.slot);
    if (slot == LifeSlot::Init) {
        mIsInitialized = true;
        const bool hasAccessor = values.byte() != 0;
        std::string_view argument;
        const bool hasArgument = values.text(argument);
        const std::string text(argument);
        compare(
            begin,
            [&] {
                return mLibrary.init(hasAccessor ? FakeHost::accessor() : nullptr,
                                     hasArgument ? text.c_str() : nullptr);
            },
            nothing);
        return;
    }
    if (slot == LifeSlot::Terminate) {
        mIsInitialized = false;
        compare(
            begin,
            [&] {
                mLibrary.terminate();
                return OrvOk;
            },
            nothing);
        return;
    }
    if (slot != LifeSlot::Start && slot != LifeSlot::Stop) {
        throw DamagedBytes("a call that no component has");
    }
    if (mComponent == nullptr) {
        fail("byte " + std::to_string(mBlock->position) +
             ": the component is started or stopped here, and has not registered");
        return;
    }
    const auto reason = static_cast<OrvStateChangeReason>(values.number());
    compare(
        begin,
        [&] {
            return slot == LifeSlot::Start ? mComponent->start(reason) : mComponent->stop(reason);
        },
        nothing);
}

void Player::playRelease(const Event& begin) {
    const std::uint64_t number = ByteReader(begin.values).number();
    const auto found = mGiven.find(number);
    if (found == mGiven.end()) {
        throw DamagedBytes("a value is released that was not given");
    }
    const Given given = std::move(found->second);
    mGiven.erase(found);
    compare(
        begin,
        [&] {
            given.release();
            return OrvOk;
        },
        [](std::uint32_t, Outcome<ByteWriter>) {});
}

template <class Table>
Table* Player::offered() const {
    if constexpr (std::is_same_v<Table, OrvOamSpiTransactionalResource_2>) {
        if (mResource != nullptr) {
            return mResource;
        }
    }
    // The names of the tables are "interface version".
    for (VekMgmtSpiInterface_1** offer = mComponent != nullptr ? mComponent->interfaceArray
                                                               : nullptr;
         offer != nullptr && *offer != nullptr; ++offer) {
        if (std::string((*offer)->interfaceName) + " " + (*offer)->interfaceVersion ==
            SlotsOf<Table>::name) {
            return reinterpret_cast<Table*>(*offer);
        }
    }
    return nullptr;
}

template <class Table>
void Player::playTable(const Event& begin) {
    const Table* const table = offered<Table>();
    if (table == nullptr) {
        fail("byte " + std::to_string(mBlock->position) + ": the component offers no table " +
             SlotsOf<Table>::name);
        return;
    }
    bool isFound = false;
    forEachSlot<Table>([&]<auto member, class... Codecs>(Slot<member, Codecs...>,
                                                         std::uint8_t number) {
        if (number == begin.name.slot) {
            isFound = true;
            playSlot<Table, member, Codecs...>(begin, table->*member);
        }
    });
    if (!isFound) {
        throw DamagedBytes("a call of a slot that the table does not have");
    }
}

template <class Table, auto member, class... Codecs, class... Arguments>
void Player::playSlot(const Event& begin, OrvReturnT (*function)(Arguments...)) {
    Arena memory;
    LoadContext context{memory, mLasting, mTexts, mHandles};
    ByteReader values(begin.values);
    // In braces they are read in their order.
    const std::tuple<Arguments...> arguments{Codecs::template load<Arguments>(values, context)...};
    const auto write = [&](std::uint32_t code, Outcome<ByteWriter> outcome) {
        if (code != OrvOk) {
            return;
        }
        std::apply(
            [&](Arguments... each) {
                (Codecs::out(outcome, each, Side::Component), ...);
                [[maybe_unused]] const auto adopter = [&](auto* given, auto& release) {
                    if (given != nullptr && release != nullptr) {
                        mGiven.emplace(begin.call,
                                       Given{[given, function = release] { function(given); }});
                    }
                };
                (Codecs::adopt(each, adopter), ...);
            },
            arguments);
    };
    compare(
        begin, [&] { return std::apply(function, arguments); }, write);
}

void Player::enter(const Event& note) {
    const char* problem = "the component has no place where interceptors are entered";
    VekMgmtSpiInterface_1* place = nullptr;
    for (VekMgmtSpiInterface_1** offer = mComponent != nullptr ? mComponent->interfaceArray
                                                               : nullptr;
         offer != nullptr && *offer != nullptr; ++offer) {
        if (std::strcmp((*offer)->interfaceName, "ExtCmInterceptorRepositoryI") == 0) {
            place = *offer;
        }
    }
    if (place == nullptr || !mLibrary.interceptors) {
        fail(problem);
        return;
    }
    mLibrary.interceptors->enter(place, mInterceptors->get(note.interceptor),
                                 std::string(note.values));
}

void Player::remove(const Event& note) {
    for (VekMgmtSpiInterface_1** offer = mComponent != nullptr ? mComponent->interfaceArray
                                                               : nullptr;
         offer != nullptr && *offer != nullptr && mLibrary.interceptors; ++offer) {
        if (std::strcmp((*offer)->interfaceName, "ExtCmInterceptorRepositoryI") == 0) {
            mLibrary.interceptors->remove(*offer, std::string(note.values));
        }
    }
}

void Player::count(const Event& begin) {
    const bool hasTransaction = begin.name.shape == Shape::Mo3 || begin.name.shape == Shape::Mo1 ||
                                begin.name.shape == Shape::Mo3_1 ||
                                begin.name.shape == Shape::Resource;
    if (!hasTransaction) {
        return;
    }
    const std::uint64_t handle = ByteReader(begin.values).number();
    ++mCallsOf[handle];
    constexpr std::uint8_t finish = 4;
    if (begin.name.shape == Shape::Resource && begin.name.slot == finish) {
        ++mReport.transactions;
        if (mWatch) {
            mWatch(handle, mCallsOf[handle]);
        }
        mCallsOf.erase(handle);
    }
}

void Player::fail(const std::string& problem) {
    if (!isOver()) {
        mReport.problem = problem;
    }
}

void Player::failHere(const std::string& problem) {
    fail("byte " + std::to_string(mBlock->position) +
         ": in the record that begins here: " + problem);
}

void Player::differ(const std::string& recorded, const std::string& came) {
    if (isOver()) {
        return;
    }
    Difference difference;
    difference.position = mBlock->position;
    difference.thread = mBlock->thread;
    if (mEnd) {
        difference.before =
            describeCall(mBegin.name, mBegin.values) + ": " + describeAnswer(mBegin.name, *mEnd);
    }
    difference.inside = describeCall(mInside.name, mInside.values);
    difference.recorded = recorded;
    difference.came = came;
    mReport.difference = difference;
}

void Player::remember(const Event& begin, const Event& end) {
    mBegin = begin;
    mEnd = end;
}

PlayReport playRecording(const std::string& file, const std::string& component,
                         const TransactionWatch& watch) {
    const Recording recording(file);
    PlayReport report = Player(recording, component, watch).play();
    if (!report.difference && report.problem.empty()) {
        report.problem = recording.damage();
    }
    return report;
}

}
