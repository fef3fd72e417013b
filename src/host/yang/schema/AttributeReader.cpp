// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "AttributeReader.h"

#include "yang/schema/ChoiceReader.h"
#include "yang/schema/ClassNodes.h"
#include "yang/source/StatementPlacement.h"
#include "yang/types/TypeFacts.h"
#include "yang/types/TypeReader.h"
#include "yang/types/TypedefChain.h"
#include "yang/types/ValueCodec.h"

#include <algorithm>
#include <utility>

namespace OrvHost {
namespace {

std::int64_t upperOf(std::uint32_t max) {
    return max == UINT32_MAX ? kUnbounded : static_cast<std::int64_t>(max);
}

bool isState(const lysc_node* node) {
    return (node->flags & LYS_CONFIG_R) != 0;
}

/// True if a container must be there because of something in it that a client must give. The
/// library counts state, too.
bool needsContainer(const lysc_node* container) {
    if ((container->flags & LYS_MAND_TRUE) == 0 || isState(container)) {
        return false;
    }
    const lysc_node* child = lysc_node_child(container);
    for (; child != nullptr; child = child->next) {
        const bool isNeeded = child->nodetype == LYS_CONTAINER
                                  ? needsContainer(child)
                                  : (child->flags & LYS_MAND_TRUE) != 0 && !isState(child);
        if (isNeeded && lysc_node_when(child) == nullptr) {
            return true;
        }
    }
    return false;
}

std::vector<Value> defaultsOf(const lysc_node* node, ValueKind kind) {
    std::vector<Value> values;
    const ly_ctx* context = node->module->ctx;
    if (node->nodetype == LYS_LEAF) {
        const lyd_value* value = reinterpret_cast<const lysc_node_leaf*>(node)->dflt;
        if (value != nullptr) {
            values.push_back(decodeValue(context, *value, kind));
        }
        return values;
    }
    lyd_value* const* defaults = reinterpret_cast<const lysc_node_leaflist*>(node)->dflts;
    LY_ARRAY_COUNT_TYPE i = 0;
    for (i = 0; i < LY_ARRAY_COUNT(defaults); ++i) {
        values.push_back(decodeValue(context, *defaults[i], kind));
    }
    return values;
}

}

Bounds multiplicityOf(const lysc_node* node) {
    if (node->nodetype == LYS_LEAFLIST) {
        const auto* list = reinterpret_cast<const lysc_node_leaflist*>(node);
        return {list->min, upperOf(list->max)};
    }
    if (node->nodetype == LYS_LIST) {
        const auto* list = reinterpret_cast<const lysc_node_list*>(node);
        return {list->min, upperOf(list->max)};
    }
    const bool isMandatory = node->nodetype == LYS_CONTAINER
                                 ? needsContainer(node)
                                 : (node->flags & LYS_MAND_TRUE) != 0 || lysc_is_key(node);
    return {isMandatory ? 1 : 0, 1};
}

AttributeReader::AttributeReader(std::shared_ptr<const YangContext> context,
                                 const SourceLocator& locator, AssociationReader& associations,
                                 IdentitySearch& identities, RuleReader& rules, ModelNotes& notes)
    : mContext(std::move(context)),
      mLocator(locator),
      mAssociations(associations),
      mIdentities(identities),
      mRules(rules),
      mNotes(notes) {}

// A single key names the objects; of several keys, all together do.
void AttributeReader::describeKey(const lysc_node* node, AttributeDef& def) {
    const std::vector<const lysc_node*> keys = keysOf(node->parent);
    def.isNaming = keys.size() == 1;
    if (!def.isNaming) {
        const auto position = std::find(keys.begin(), keys.end(), node) - keys.begin();
        def.keyPosition = static_cast<std::size_t>(position);
    }
}

std::optional<AttributeReader::Attribute> AttributeReader::readAttribute(const lysc_node* node,
                                                                         const Purpose& purpose) {
    return read(node, purpose);
}

std::optional<AttributeReader::Attribute>
AttributeReader::readParameter(const lysc_node* node, const std::vector<AttributeDraft>& others) {
    std::optional<Attribute> read = this->read(node, {"", node->name});
    return read && makeUnique(node, others, *read) ? std::move(read) : std::nullopt;
}

std::optional<AttributeReader::Attribute> AttributeReader::read(const lysc_node* node,
                                                                const Purpose& purpose) {
    mRules.see(node);
    switch (node->nodetype) {
    case LYS_LEAF:
    case LYS_LEAFLIST:
        return readLeaf(node, purpose);
    case LYS_CONTAINER:
    case LYS_LIST:
        return readStruct(node, purpose.name);
    default:
        mNotes.count(std::string("`") + lys_nodetype2str(node->nodetype) +
                         "` nodes are not part of the model",
                     mLocator.of(node), pathOf(node));
        return std::nullopt;
    }
}

AttributeReader::Attribute AttributeReader::readLeaf(const lysc_node* node,
                                                     const Purpose& purpose) {
    noteOpenIdentities(node, followLeafrefs(typeOfLeaf(node)));
    const std::string& className = purpose.className;
    const bool isKey = lysc_is_key(node) && !className.empty();
    TypeDef type = isKey ? readKeyType(node, mContext) : readType(node, mContext);
    Attribute attribute{AttributeDraft(purpose.name, type.kind), {}};
    attribute.draft.def.type = std::move(type);
    if (isKey) {
        describeKey(node, attribute.draft.def);
        mAssociations.refuseKey(node, className, purpose.name);
    } else if (isReferenceByType(node) ||
               mAssociations.isReference(node, className, purpose.name)) {
        tellReference(node, purpose, attribute);
    }
    describe(node, attribute);
    const std::vector<Value> defaults = defaultsOf(node, attribute.draft.def.type.kind);
    if (!defaults.empty()) {
        attribute.draft.defaultsTo(defaults);
    }
    return attribute;
}

/// Two modules can augment a container with nodes of one name. The second one is called
/// "module:name", as in JSON. False if that name is taken too, which is noted.
bool AttributeReader::makeUnique(const lysc_node* node, const std::vector<AttributeDraft>& others,
                                 Attribute& attribute) {
    std::string& name = attribute.draft.def.name;
    const auto isTaken = [&] {
        return std::any_of(others.begin(), others.end(),
                           [&](const AttributeDraft& other) { return other.def.name == name; });
    };
    if (isTaken()) {
        name = std::string(node->module->name) + ":" + node->name;
    }
    if (!isTaken()) {
        attribute.shape.name = name;
        return true;
    }
    mNotes.count("a node of this name is there already; the second one is not part of the model",
                 mLocator.of(node), pathOf(node));
    return false;
}

void AttributeReader::noteOpenIdentities(const lysc_node* node, const lysc_type* type) {
    LY_ARRAY_COUNT_TYPE i = 0;
    if (type->basetype == LY_TYPE_UNION) {
        const auto* types = as<lysc_type_union>(type)->types;
        for (i = 0; i < LY_ARRAY_COUNT(types); ++i) {
            noteOpenIdentities(node, followLeafrefs(types[i]));
        }
        return;
    }
    if (!isOpenIdentityref(type)) {
        return;
    }
    const auto* bases = as<lysc_type_identityref>(type)->bases;
    for (i = 0; i < LY_ARRAY_COUNT(bases); ++i) {
        std::string modules;
        for (const std::string& module : mIdentities.modulesWithBase(bases[i]->name)) {
            modules += (modules.empty() ? "" : ", ") + module;
        }
        mNotes.count(std::string("no loaded module derives an identity from \"") +
                         bases[i]->module->name + ":" + bases[i]->name +
                         "\", so values are texts; on the search path, " +
                         (modules.empty() ? "no module does" : "these may: " + modules),
                     mLocator.of(node), pathOf(node));
    }
}

void AttributeReader::tellReference(const lysc_node* node, const Purpose& purpose,
                                    Attribute& attribute) {
    TypeDef& type = attribute.draft.def.type;
    if (type.kind != ValueKind::String) {
        mAssociations.refuse(mLocator.of(node),
                             pathOf(node) + " is to be a reference, which is a text; its type is " +
                                 type.description);
        return;
    }
    type.kind = ValueKind::MoRef;
    type.description = "reference";
    if (purpose.className.empty()) {
        attribute.draft.targets = mAssociations.readMember(node);
        return;
    }
    if (purpose.isFirst) {
        // The permitted classes come from the associations.
        mAssociations.readAttribute(node, purpose.className, purpose.name);
    }
}

AttributeReader::Attribute AttributeReader::readStruct(const lysc_node* node,
                                                       const std::string& name) {
    Attribute attribute{AttributeDraft(name, ValueKind::Struct), {}};
    attribute.draft.def.type.description = "struct";
    ChoiceReader choices;
    const lysc_node* child = nullptr;
    while ((child = lys_getnext(child, node, nullptr, 0)) != nullptr) {
        std::optional<Attribute> member = read(child, {"", child->name});
        if (isState(child) && !isState(node)) {
            mNotes.count("state in a struct is not protected: clients set a struct as a whole, and "
                         "what is in it with it",
                         mLocator.of(child), pathOf(child));
        }
        if (member && makeUnique(child, attribute.draft.members, *member)) {
            choices.add(child, member->draft.def);
            attribute.draft.members.push_back(std::move(member->draft));
            attribute.shape.members.push_back(std::move(member->shape));
        }
    }
    attribute.draft.def.type.choices = std::move(choices).take();
    describe(node, attribute);
    return attribute;
}

void AttributeReader::describe(const lysc_node* node, Attribute& attribute) const {
    AttributeDef& def = attribute.draft.def;
    def.multiplicity = multiplicityOf(node);
    // A key is written once, when the object is created.
    def.isWritable = !isState(node);
    def.isConditional = isConditional(node);
    def.description = node->dsc != nullptr ? node->dsc : "";
    def.source = mLocator.of(node);
    ValueShape& shape = attribute.shape;
    shape.name = def.name;
    shape.kind = def.type.kind;
    shape.isMultiple = (node->nodetype & (LYS_LIST | LYS_LEAFLIST)) != 0;
    shape.node = node;
}

}
