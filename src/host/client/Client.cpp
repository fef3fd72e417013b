// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "Client.h"

#include "NamedRecords.h"
#include "OfferedTable.h"
#include "OwnedResult.h"
#include "model/DnForm.h"
#include "runtime/Host.h"

#include <exception>

namespace OrvHost {

namespace {

/// Closes a walk in its destructor.
class OpenWalk {
public:
    OpenWalk(Client& client, const ChildIterator& iterator)
        : mClient(client), mIterator(iterator) {}
    OpenWalk(const OpenWalk&) = delete;
    OpenWalk& operator=(const OpenWalk&) = delete;
    ~OpenWalk() {
        try {
            mClient.closeChildren(mIterator);
        } catch (const std::exception&) {
            return; // the walk ends with the transaction
        }
    }

private:
    Client& mClient;
    const ChildIterator& mIterator;
};

std::vector<const char*> nullTerminated(const std::vector<std::string>& texts) {
    std::vector<const char*> pointers;
    pointers.reserve(texts.size() + 1);
    for (const std::string& text : texts) {
        pointers.push_back(text.c_str());
    }
    pointers.push_back(nullptr);
    return pointers;
}

/// What a call has left, if it was successful. It must be owned before anything else can fail.
template <class Result>
Result resultIf(OrvReturnT code, const Result& result) {
    return code == OrvOk ? result : Result{};
}

}

Client::Client(Host& host)
    : mHost(host),
      mTable(requireOffered<OrvOamSpiManagedObject_3>(host, OrvOamSpiManagedObject_3_ExtCmId)) {}

const Model& Client::model() const {
    return mHost.model();
}

std::string Client::shortForm(std::string dn) const {
    return shortDn(model(), std::move(dn));
}

std::vector<NamedValue> Client::shortForm(std::vector<NamedValue> values) const {
    shortenReferences(model(), values);
    return values;
}

NewObject Client::shortForm(NewObject object) const {
    object.parentDn = shortDn(model(), std::move(object.parentDn));
    const auto moc = model().findClass(object.className);
    const AttributeDef* naming =
        moc ? model().classes[*moc].findAttribute(object.namingAttribute) : nullptr;
    if (naming != nullptr && naming->isNaming) {
        object.namingAttribute = naming->name;
    }
    return object;
}

bool Client::exists(unsigned long txHandle, const std::string& writtenDn) {
    const std::string dn = shortForm(writtenDn);
    bool exists = false;
    check(mTable->existsMo(txHandle, dn.c_str(), &exists), {"existsMo", dn, {}, {}});
    return exists;
}

unsigned long long Client::count(unsigned long txHandle, const std::string& writtenDn,
                                 const std::string& className) {
    const std::string dn = shortForm(writtenDn);
    unsigned long long count = 0;
    check(mTable->countMoChildren(txHandle, dn.c_str(), className.c_str(), &count),
          {"countMoChildren", dn, className, {}});
    return count;
}

ReadValue Client::get(unsigned long txHandle, const std::string& writtenDn,
                      const std::string& attribute, const ClassDef* moc) {
    const std::string dn = shortForm(writtenDn);
    const std::string name = tableName(moc, attribute);
    OrvMoAttributeValueResult_3 result{nullptr, nullptr};
    const OrvReturnT code = mTable->getMoAttribute(txHandle, dn.c_str(), name.c_str(), &result);
    const Orv::OwnedResult owned(resultIf(code, result));
    check(code, {"getMoAttribute", dn, {}, {attribute}});
    return toReadValue(owned.get().container, definitionOf(moc, attribute));
}

std::vector<NamedReadValue> Client::get(unsigned long txHandle, const std::string& writtenDn,
                                        const std::vector<std::string>& attributes,
                                        const ClassDef* moc) {
    const std::string dn = shortForm(writtenDn);
    std::vector<std::string> known;
    known.reserve(attributes.size());
    for (const std::string& attribute : attributes) {
        known.push_back(tableName(moc, attribute));
    }
    std::vector<const char*> names = nullTerminated(known);
    OrvMoAttributeValuesResult_3 result{nullptr, nullptr};
    const OrvReturnT code = mTable->getMoAttributes(txHandle, dn.c_str(), names.data(), &result);
    const Orv::OwnedResult owned(resultIf(code, result));
    check(code, {"getMoAttributes", dn, {}, attributes});
    std::vector<NamedReadValue> values;
    values.reserve(attributes.size());
    OrvMoAttributeValueContainer_3** container = owned.get().containers;
    for (const std::string& attribute : attributes) {
        if (container == nullptr || *container == nullptr) {
            break;
        }
        values.emplace_back(attribute, toReadValue(*container++, definitionOf(moc, attribute)));
    }
    return values;
}

void Client::forEachChild(unsigned long txHandle, const std::string& dn,
                          const std::string& className, const Visit& visit) {
    const ChildIterator iterator = openChildren(txHandle, dn, className);
    const OpenWalk walk(*this, iterator);
    while (const std::optional<std::string> name = nextChild(iterator)) {
        if (!visit(*name)) {
            return;
        }
        if (mToken != nullptr) {
            mToken->throwIfCancelled();
        }
    }
}

ChildIterator Client::openChildren(unsigned long txHandle, const std::string& writtenDn,
                                   const std::string& className) {
    const std::string dn = shortForm(writtenDn);
    unsigned long long handle = 0;
    check(mTable->newMoIterator(txHandle, dn.c_str(), className.c_str(), &handle),
          {"newMoIterator", dn, className, {}});
    return {dn, className, handle};
}

std::optional<std::string> Client::nextChild(const ChildIterator& iterator) {
    char* name = nullptr;
    check(mTable->nextMo(std::get<unsigned long long>(iterator.handle), &name),
          {"nextMo", iterator.dn, iterator.className, {}});
    return name != nullptr ? std::optional<std::string>(name) : std::nullopt;
}

void Client::closeChildren(const ChildIterator& iterator) {
    check(mTable->finalizeMoIterator(std::get<unsigned long long>(iterator.handle)),
          {"finalizeMoIterator", iterator.dn, iterator.className, {}});
}

void Client::create(unsigned long txHandle, const NewObject& writtenObject,
                    const std::vector<NamedValue>& written) {
    const NewObject object = shortForm(writtenObject);
    const std::vector<NamedValue> attributes = shortForm(written);
    NamedRecords records(attributes);
    check(mTable->createMo(txHandle, object.parentDn.c_str(), object.className.c_str(),
                           object.namingAttribute.c_str(), object.name.c_str(), records.data()),
          {"createMo", object.parentDn, object.className, namesOf(attributes)});
}

void Client::set(unsigned long txHandle, const std::string& writtenDn,
                 const std::vector<NamedValue>& written) {
    const std::vector<NamedValue> attributes = shortForm(written);
    const std::string dn = shortForm(writtenDn);
    NamedRecords records(attributes);
    std::vector<std::string> done;
    for (auto** record = records.data(); *record != nullptr; ++record) {
        check(mTable->setMoAttribute(txHandle, dn.c_str(), (*record)->name, &(*record)->value),
              {"setMoAttribute", dn, {}, {(*record)->name}, {}, done});
        done.push_back((*record)->name + std::string(" is set"));
    }
}

void Client::remove(unsigned long txHandle, const std::string& writtenDn) {
    const std::string dn = shortForm(writtenDn);
    check(mTable->deleteMo(txHandle, dn.c_str()), {"deleteMo", dn, {}, {}});
}

ReadValue Client::action(unsigned long txHandle, const std::string& writtenDn,
                         const std::string& name, const std::vector<NamedValue>& written,
                         const ActionDef* def) {
    const std::vector<NamedValue> parameters = shortForm(written);
    const std::string dn = shortForm(writtenDn);
    NamedRecords records(parameters);
    OrvMoAttributeValueResult_3 result{nullptr, nullptr};
    const OrvReturnT code =
        mTable->action(txHandle, dn.c_str(), name.c_str(), records.data(), &result);
    const Orv::OwnedResult owned(resultIf(code, result));
    check(code, {"action", dn, {}, {}, name});
    return toReadValue(owned.get().container, resultOf(def));
}

// Messages of successful calls are not shown: a component may have called the router itself and
// handled the refusal.
void Client::check(OrvReturnT code, OperationSubject subject) {
    std::vector<ThreadContext::Message> messages = mHost.threadContext().take();
    if (code != OrvOk) {
        throw OperationError(code, std::move(subject), std::move(messages));
    }
}

std::vector<std::string> attributeNames(const ClassDef& moc) {
    std::vector<std::string> names;
    for (const AttributeDef& attribute : moc.attributes) {
        names.push_back(attribute.name);
    }
    return names;
}

const AttributeDef* definitionOf(const ClassDef* moc, const std::string& attribute) {
    return moc != nullptr ? moc->findAttribute(attribute) : nullptr;
}

std::string tableName(const ClassDef* moc, const std::string& attribute) {
    const AttributeDef* def = definitionOf(moc, attribute);
    return def != nullptr && def->isNaming ? def->name : attribute;
}

const AttributeDef* resultOf(const ActionDef* action) {
    return action != nullptr && action->result ? &*action->result : nullptr;
}

}
