// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "UniDirStorage.h"

#include "ModelReader.h"
#include "OrvException.h"
#include "messages/Tracing.h"
#include "messages/Violation.h"
#include "model/ModelQuestions.h"
#include "model/ModelWalk.h"

#include <cstdint>
#include <memory>
#include <string_view>
#include <utility>
#include <vector>

namespace OrvExtCmRouterService {

namespace {

using Association = VekOamSpiMrUniDirAssociationHandle_4T;

/// The child under \p key, made if it is not there; the map owns it.
template <class Node>
Node* findOrCreateIn(std::map<std::string, Node*>& children, std::string const& key) {
    auto const found = children.find(key);
    if (found != children.end()) {
        return found->second;
    }
    auto created = std::make_unique<Node>(key);
    children.emplace(key, created.get());
    return created.release();
}

template <class Node>
Node* findIn(std::map<std::string, Node*> const& children, std::string const& key) {
    auto const found = children.find(key);
    return found == children.end() ? nullptr : found->second;
}

template <class Key, class Node>
void deleteAll(std::map<Key, Node*>& children) {
    for (auto const& entry : children) {
        delete entry.second;
    }
    children.clear();
}

/// Deletes whole subtrees. A client chooses how deep they are, so no node's destructor may run
/// inside that of the node above it; and since this runs in a destructor, nothing is allocated: the
/// entries of the maps below move over to the one that is emptied here.
void deleteSubtrees(std::map<std::string, UniDirStorage::TypeNode*>& types) {
    std::multimap<std::string, UniDirStorage::TypeNode*> open;
    open.merge(types);
    while (!open.empty()) {
        UniDirStorage::TypeNode* const type = open.begin()->second;
        open.erase(open.begin());
        for (auto const& entry : type->values) {
            open.merge(entry.second->types);
        }
        delete type;
    }
}

/// Adds a class step to the DN of its parent.
void appendType(std::string& dn, std::string const& type) {
    if (!dn.empty()) {
        dn += ',';
    }
    dn += type;
}

void appendValue(std::string& dn, std::string const& value) {
    dn += '=';
    dn += value;
}

/// The children of one MO, class by class, as a walk over its subtree has come to them.
class ChildrenOf {
public:
    /// \p dnLength: the length of the MO's own DN.
    ChildrenOf(UniDirStorage::ValueNode const& mo, std::size_t dnLength)
        : mType(mo.types.begin()), mTypesEnd(mo.types.end()), mDnLength(dnLength) {
        if (!isDone()) {
            mValue = mType->second->values.begin();
            passEmptyTypes();
        }
    }

    bool isDone() const { return mType == mTypesEnd; }
    std::size_t dnLength() const { return mDnLength; }
    std::string const& className() const { return mType->second->type; }

    UniDirStorage::ValueNode const& takeNext() {
        UniDirStorage::ValueNode const& next = *mValue->second;
        ++mValue;
        passEmptyTypes();
        return next;
    }

private:
    void passEmptyTypes() {
        while (!isDone() && mValue == mType->second->values.end()) {
            ++mType;
            if (!isDone()) {
                mValue = mType->second->values.begin();
            }
        }
    }

    std::map<std::string, UniDirStorage::TypeNode*>::const_iterator mType;
    std::map<std::string, UniDirStorage::TypeNode*>::const_iterator mTypesEnd;
    std::map<std::string, UniDirStorage::ValueNode*>::const_iterator mValue;
    std::size_t mDnLength;
};

/// Visits \p top and all MOs below it, parents before their children, with their DNs. \p dn is that
/// of \p top without its value. One text serves for all DNs, and nothing is called recursively: a
/// DN can have more steps than a host's thread has stack for.
template <class Visit>
void visitSubtree(UniDirStorage::ValueNode const& top, std::string dn, Visit const& visit) {
    appendValue(dn, top.value);
    visit(top, dn);
    std::vector<ChildrenOf> path{{top, dn.size()}};
    while (!path.empty()) {
        ChildrenOf& children = path.back();
        dn.resize(children.dnLength());
        if (children.isDone()) {
            path.pop_back();
            continue;
        }
        appendType(dn, children.className());
        UniDirStorage::ValueNode const& child = children.takeNext();
        appendValue(dn, child.value);
        visit(child, dn);
        path.emplace_back(child, dn.size()); // and `children` may be gone
    }
}

/// Takes the first step off \p rest.
std::string_view takeFirstPart(std::string_view& rest) {
    std::size_t const comma = rest.find(',');
    std::string_view const part = rest.substr(0, comma);
    rest = comma == std::string_view::npos ? std::string_view() : rest.substr(comma + 1);
    return part;
}

/// The class and the value of a step: views into the text of the DN.
struct Step {
    std::string_view type;
    std::string_view value;
};

Step parsePart(std::string_view part, std::string const& dn) {
    std::size_t const equals = part.find('=');
    if (equals == std::string_view::npos) {
        throw Orv::OrvException("Dn::Dn: got malformed dnPart [%s] dn [%s]",
                                std::string(part).c_str(), dn.c_str());
    }
    std::string_view const named = part.substr(0, equals);
    Step const step{named.substr(0, named.find('.')), part.substr(equals + 1)};
    if (step.type.empty() || step.value.empty()) {
        // The text says dn and shows the step: clients know it in this form.
        throw Orv::OrvException("Dn::Dn: got empty type in dn [%s]", std::string(part).c_str());
    }
    return step;
}

/// True if parsePart is sure to take each step of \p dn. Almost all DNs are so, and of almost all
/// nothing else is asked. Most characters are above the delimiters, so that is tested first.
bool isWellFormed(std::string const& dn) {
    char const* next = dn.c_str();
    char const* const end = next + dn.size();
    while (next != end) {
        char const* const type = next;
        while (next[0] > '=' && next[1] > '=' && next[2] > '=' && next[3] > '=') {
            next += 4; // none of the four ends the text
        }
        while (*next > '=' || (*next != '=' && *next != ',' && *next != '\0')) {
            ++next;
        }
        if (*next != '=' || next == type || *type == '.') {
            return false;
        }
        char const* const value = next + 1;
        for (next = value; *next > ',' || (*next != ',' && *next != '\0');) {
            ++next;
        }
        if (next == value) {
            return false;
        }
        if (*next == '\0') {
            return next == end;
        }
        ++next;
    }
    return true;
}

// A model that knows a class for an empty DN leaves no step to take the type from.
std::string leafType(UniDirStorage::Dn const& dn) {
    return dn.empty() ? std::string() : dn.back().first;
}

std::string cardinalityMessage(std::string const& attribute, std::string const& dn,
                               unsigned long long count, UniDirStorage::AssocEnd const& end) {
    return outsideCardinality(attribute.c_str(), dn.c_str(), count, end.name.c_str(), end.min,
                              end.max)
        .text();
}

// The model's bounds are signed; they are held and compared as unsigned numbers, so that -1 stands
// for a bound that no count exceeds.
unsigned long long endBound(Orv::ModelReader const& model, VekOamSpiMrAssociationEndHandle_4T end,
                            int identifier) {
    return static_cast<unsigned long long>(
        checked(model.endBound(end, identifier), "Could not get int property"));
}

UniDirStorage::NamedMoc endMoc(Orv::ModelReader const& model,
                               VekOamSpiMrAssociationEndHandle_4T end) {
    VekOamSpiMrMocHandle_4T const moc = checked(model.endMoc(end), "Could not get moc");
    VekOamSpiMrGeneralPropertiesHandle_4T const properties =
        checked(model.mocProperties(moc), "Could not get general properties handle");
    return {moc, textOrEmpty(checked(model.generalName(properties),
                                     "Could not get name from general properties handle"))};
}

void insertEndOfName(Orv::ModelReader const& model, Association association,
                     std::string const& name, std::set<UniDirStorage::AssocEnd>& ends) {
    VekOamSpiMrAssociationEndHandle_4T const end =
        checked(model.uniDirEnd(association), "Could not look up association end");
    const char* const endName =
        checked(model.endText(end, VekOamSpiMrEndName_4), "Could not look up string property");
    if (!sameText(endName, name.c_str())) {
        return;
    }
    UniDirStorage::NamedMoc const moc = endMoc(model, end);
    unsigned long long const lower = endBound(model, end, VekOamSpiMrLowerBound_4);
    unsigned long long const upper = endBound(model, end, VekOamSpiMrUpperBound_4);
    ends.emplace(moc, lower, upper);
}

}

// Nothing is trimmed or unescaped: only ",", "=" and "." have a meaning. A comma at the very end is
// no error, an empty step anywhere else is.
UniDirStorage::Dn::Dn(std::string const& dn) {
    std::string_view rest = dn;
    while (!rest.empty()) {
        Step const step = parsePart(takeFirstPart(rest), dn);
        emplace_back(step.type, step.value);
    }
}

UniDirStorage::UniDir::UniDir(std::string const& attrName,
                              VekOamSpiMrUniDirAssociationHandle_4T firstAssociation,
                              std::list<std::string> references)
    : name(attrName), assocHandle(firstAssociation), refs(std::move(references)) {}

// A malformed reference throws, although the model has accepted it: its class has no name for the
// messages then.
bool UniDirStorage::UniDir::getRefCardinalites(
    VekOamSpiModelRepository_4 const& repository, VekMgmtSpiThreadContext_2& threadContext,
    std::string const& dn, std::map<NamedMoc, unsigned long long>& counts) const {
    bool result = true;
    for (std::string const& ref : refs) {
        auto const moc = Orv::ModelReader(repository).mocOfDn(ref.c_str());
        if (moc.code == OrvNotExist) {
            addMessage(threadContext, notAValidType(ref.c_str(), name.c_str(), dn.c_str()).text());
            result = false;
            continue;
        }
        checked(moc, "Could not get moc from dn");
        ++counts[{moc.value, leafType(Dn(ref))}];
    }
    return result;
}

// One attribute can be the end of several associations, one for each class that it may refer to. If
// two lead to one class, the bounds of the first in the model's order hold.
void UniDirStorage::UniDir::getAssocEnds(VekOamSpiModelRepository_4 const& repository,
                                         std::set<AssocEnd>& ends) const {
    Orv::ModelReader const model(repository);
    auto walk = walkUntilNonZeroFrom(ORV_TRACE_POINT, assocHandle,
                                     [&](Association current, Association* next) {
                                         return stepTo(next, model.nextUniDir(current));
                                     });
    for (; walk.more(); walk.advance()) {
        insertEndOfName(model, walk.current(), name, ends);
    }
    if (walk.code() != OrvNotExist) {
        throwUnlessOk(walk.code(), "Could not get next uni dir association");
    }
}

// Nothing is left out after a violation: the client gets all messages of a transaction at once. A
// class with a lower bound of zero may be missing, so only the others are looked for at the end.
bool UniDirStorage::UniDir::validate(VekOamSpiModelRepository_4 const& repository,
                                     VekMgmtSpiThreadContext_2& threadContext,
                                     std::string const& dn) const {
    std::map<NamedMoc, unsigned long long> counts;
    std::set<AssocEnd> ends;
    bool result = getRefCardinalites(repository, threadContext, dn, counts);
    getAssocEnds(repository, ends);
    for (auto const& [target, count] : counts) {
        auto const end = ends.find(AssocEnd(target));
        if (end == ends.end()) {
            addMessage(threadContext,
                       notAValidType(target.name.c_str(), name.c_str(), dn.c_str()).text());
            result = false;
        } else if (count < end->min || count > end->max) {
            addMessage(threadContext, cardinalityMessage(name, dn, count, *end));
            result = false;
        }
    }
    for (AssocEnd const& end : ends) {
        if (end.min != 0 && counts.find(end) == counts.end()) {
            addMessage(threadContext, cardinalityMessage(name, dn, 0, end));
            result = false;
        }
    }
    ORV_TRACE("dn %s result: %d", dn.c_str(), static_cast<int>(result));
    return result;
}

void UniDirStorage::UniDir::addMessage(VekMgmtSpiThreadContext_2& threadContext,
                                       std::string const& message) const {
    ORV_TRACE("Adding message to thread context: [%s]", message.c_str());
    if (!giveToClient(threadContext, message)) {
        logNotTaken(ORV_TRACE_POINT, message);
    }
}

UniDirStorage::ValueNode::ValueNode(std::string const& namingValue) : value(namingValue) {}

UniDirStorage::ValueNode::~ValueNode() {
    deleteSubtrees(types);
}

UniDirStorage::TypeNode* UniDirStorage::ValueNode::find(std::string const& type) {
    return findIn(types, type);
}

UniDirStorage::TypeNode* UniDirStorage::ValueNode::findOrCreate(std::string const& type) {
    return findOrCreateIn(types, type);
}

void UniDirStorage::ValueNode::getDns(std::string dn, std::list<std::string>& dnList) {
    visitSubtree(*this, std::move(dn), [&](ValueNode const& mo, std::string const& moDn) {
        if (!mo.uniDirs.empty()) {
            dnList.push_back(moDn);
        }
    });
}

bool UniDirStorage::ValueNode::validate(VekOamSpiModelRepository_4 const& repository,
                                        VekMgmtSpiThreadContext_2& threadContext, std::string dn) {
    bool result = true;
    visitSubtree(*this, std::move(dn), [&](ValueNode const& mo, std::string const& moDn) {
        for (UniDir const& uniDir : mo.uniDirs) {
            result = uniDir.validate(repository, threadContext, moDn) && result;
        }
    });
    return result;
}

UniDirStorage::TypeNode::TypeNode(std::string const& className) : type(className) {}

UniDirStorage::TypeNode::~TypeNode() {
    deleteAll(values);
}

UniDirStorage::ValueNode* UniDirStorage::TypeNode::find(std::string const& value) {
    return findIn(values, value);
}

UniDirStorage::ValueNode* UniDirStorage::TypeNode::findOrCreate(std::string const& value) {
    return findOrCreateIn(values, value);
}

void UniDirStorage::TypeNode::getDns(std::string dn, std::list<std::string>& dnList) {
    appendType(dn, type);
    for (auto const& entry : values) {
        entry.second->getDns(dn, dnList);
    }
}

bool UniDirStorage::TypeNode::validate(VekOamSpiModelRepository_4 const& repository,
                                       VekMgmtSpiThreadContext_2& threadContext, std::string dn) {
    appendType(dn, type);
    bool result = true;
    for (auto const& entry : values) {
        result = entry.second->validate(repository, threadContext, dn) && result;
    }
    return result;
}

UniDirStorage::~UniDirStorage() {
    clear();
}

// The root comes into being before the DN is parsed; where that fails, the empty root stays until
// the transaction is finished and does no harm.
void UniDirStorage::setUniDirRef(unsigned long txHandle, std::string const& dn,
                                 VekOamSpiMrMocHandle_4T moc, std::string const& attrName,
                                 VekOamSpiMrUniDirAssociationHandle_4T assocHandle,
                                 VekMoAttributeValueContainer_3 const* values) {
    ValueNode* node = findOrCreateRoot(txHandle);
    Dn const steps(dn);
    for (auto const& [type, value] : steps) {
        node = node->findOrCreate(type)->findOrCreate(value);
    }
    node->moc = moc;
    std::list<std::string> refs;
    getValues(values, &refs);
    // Records are ordered by the name alone: insert would keep an earlier one, so that goes first.
    UniDir record(attrName, assocHandle, std::move(refs));
    node->uniDirs.erase(record);
    node->uniDirs.insert(std::move(record));
}

// The whole DN is parsed in any case, so that a malformed one throws also where nothing is stored.
void UniDirStorage::deleteMo(unsigned long txHandle, std::string const& dn) {
    auto const root = transactions.find(txHandle);
    if (root != transactions.end()) {
        deleteFrom(root->second, dn);
    } else if (!isWellFormed(dn)) {
        Dn const parsed(dn);
    }
}

void UniDirStorage::deleteFrom(ValueNode* node, std::string const& dn) {
    TypeNode* parent = nullptr;
    for (std::string_view rest = dn; !rest.empty();) {
        Step const step = parsePart(takeFirstPart(rest), dn);
        parent = node == nullptr ? nullptr : node->find(std::string(step.type));
        node = parent == nullptr ? nullptr : parent->find(std::string(step.value));
    }
    if (node == nullptr || parent == nullptr) {
        return; // not stored; or no step, and so no object: the tree goes at finish
    }
    // Ancestors stay, also without children: a walk passes them and finds no record.
    parent->values.erase(node->value);
    delete node;
}

// A transaction that wrote no such reference has no tree, so this is a common case and only traced.
void UniDirStorage::finish(unsigned long txHandle) {
    auto const root = transactions.find(txHandle);
    if (root == transactions.end()) {
        ORV_TRACE("Could not find transaction %lu\n", txHandle);
        return;
    }
    delete root->second;
    transactions.erase(root);
}

void UniDirStorage::clear() {
    deleteAll(transactions);
}

void UniDirStorage::getDns(unsigned long txHandle, std::list<std::string>& dnList) {
    auto const root = transactions.find(txHandle);
    if (root == transactions.end()) {
        return;
    }
    for (auto const& entry : root->second->types) {
        entry.second->getDns(std::string(), dnList);
    }
}

bool UniDirStorage::validate(VekOamSpiModelRepository_4 const& repository,
                             VekMgmtSpiThreadContext_2& threadContext,
                             unsigned long txHandle) const {
    auto const root = transactions.find(txHandle);
    if (root == transactions.end()) {
        return true;
    }
    bool result = true;
    for (auto const& entry : root->second->types) {
        result = entry.second->validate(repository, threadContext, std::string()) && result;
    }
    return result;
}

void UniDirStorage::getValues(VekMoAttributeValueContainer_3 const* values,
                              std::list<std::string>* refs) {
    for (std::uint32_t index = 0; index < values->count; ++index) {
        refs->emplace_back(values->values[index].moRef);
    }
}

UniDirStorage::ValueNode* UniDirStorage::findOrCreateRoot(unsigned long txHandle) {
    auto const found = transactions.find(txHandle);
    if (found != transactions.end()) {
        return found->second;
    }
    auto root = std::make_unique<ValueNode>(std::string());
    transactions.emplace(txHandle, root.get());
    return root.release();
}

}
