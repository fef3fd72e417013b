// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "SchemaWalker.h"

#include "yang/schema/ClassNodes.h"
#include "yang/source/StatementPlacement.h"

#include <algorithm>
#include <iterator>
#include <optional>
#include <utility>

namespace OrvHost {
namespace {

/// The choice directly below a node, around another node.
const lysc_node* outermostChoice(const lysc_node* node, const lysc_node* below) {
    while (node->parent != below) {
        node = node->parent;
    }
    return node;
}

Bounds instancesOf(const lysc_node* list) {
    const auto* node = reinterpret_cast<const lysc_node_list*>(list);
    // What only the system makes is not demanded of clients.
    const bool isState = (list->flags & LYS_CONFIG_R) != 0;
    const std::int64_t lower = isState || isConditional(list) ? 0 : node->min;
    return {lower, node->max == UINT32_MAX ? kUnbounded : static_cast<std::int64_t>(node->max)};
}

}

SchemaWalker::SchemaWalker(std::shared_ptr<const YangContext> context, ModuleFinder& finder,
                           YangSchema& schema, ModelNotes& notes)
    : mContext(std::move(context)),
      mFinder(finder),
      mLocator(finder),
      mSchema(schema),
      mNotes(notes),
      mNames(mLocator, notes),
      mAssociations(mLocator, mNames),
      mIdentities(finder),
      mRules(mLocator, mNotes),
      mAttributes(mContext, mLocator, mAssociations, mIdentities, mRules, mNotes) {}

void SchemaWalker::walk() {
    const std::vector<const lys_module*> modules = mContext->implementedModules();
    for (const auto& [name, text] : mFinder.found()) {
        for (Problem& problem : misplacedStatements(text)) {
            mProblems.push_back(std::move(problem));
        }
    }
    mNames.collect(modules);
    // The modules' own statements about attributes must be known before the attributes are read.
    for (const lys_module* module : modules) {
        mAssociations.readModule(module);
    }
    for (const lys_module* module : modules) {
        walkTop(nullptr, module, {});
    }
}

void SchemaWalker::walkTop(const lysc_node* parent, const lys_module* module,
                           const std::vector<const lysc_node*>& wrappers) {
    const lysc_node* node = nullptr;
    while ((node = lys_getnext(node, parent, parent == nullptr ? module->compiled : nullptr, 0)) !=
           nullptr) {
        if (isClass(node)) {
            walkObject(node, nullptr, wrappers);
        } else if (node->nodetype == LYS_CONTAINER) {
            mSchema.addTransparent(node);
            mRules.see(node);
            std::vector<const lysc_node*> inner = wrappers;
            inner.push_back(node);
            walkTop(node, module, inner);
        } else if (!noteList(node, "are not part of the model")) {
            mNotes.count("what stands outside of any class is not part of the model",
                         mLocator.of(node), pathOf(node));
        }
    }
}

/// Notes why a list has no objects although it has keys; false if it is no such list.
bool SchemaWalker::noteList(const lysc_node* node, const char* whatEntriesAre) {
    const std::string reason = node->nodetype == LYS_LIST && !hasStatement(node, "struct")
                                   ? whyNoClass(node)
                                   : std::string();
    if (reason.empty()) {
        return false;
    }
    mNotes.count(std::string("the entries of this list ") + whatEntriesAre + ", since " + reason,
                 mLocator.of(node), pathOf(node));
    return true;
}

SchemaWalker::Class& SchemaWalker::enterClass(const lysc_node* list) {
    const auto known = mClassByName.find(mNames.of(list));
    if (known == mClassByName.end()) {
        return addClass(list);
    }
    Class& moc = *known->second;
    const Bounds more = instancesOf(list);
    Bounds& instances = moc.draft.def.instances;
    instances = {std::min(instances.lower, more.lower), std::max(instances.upper, more.upper)};
    return moc;
}

SchemaWalker::Class& SchemaWalker::addClass(const lysc_node* list) {
    const std::string& name = mNames.of(list);
    const Bounds instances = instancesOf(list);
    ClassDraft draft(name);
    draft.instances(instances.lower, instances.upper)
        .described(list->dsc != nullptr ? list->dsc : "")
        .at(mLocator.of(list));
    draft.def.namingAttribute = defaultNamingAttribute(name);
    mClasses.push_back(std::make_unique<Class>(Class{std::move(draft), {}}));
    mClassByName.emplace(name, mClasses.back().get());
    return *mClasses.back();
}

void SchemaWalker::walkObject(const lysc_node* list, ObjectShape* parent,
                              const std::vector<const lysc_node*>& wrappers) {
    mRules.see(list);
    Class& moc = enterClass(list);
    if (parent == nullptr) {
        moc.draft.topLevel();
    } else {
        mContainments.push_back({parent->className, moc.draft.def.name, mLocator.of(list)});
    }
    ObjectShape shape;
    shape.className = moc.draft.def.name;
    shape.list = list;
    shape.keys = keysOf(list);
    shape.wrappers = wrappers;
    moc.places.push_back({list, {}});
    ObjectShape& added = mSchema.addObject(parent, std::move(shape));
    walkContents(list, nullptr, moc, added);
    walkActions(list, moc, added);
}

void SchemaWalker::walkContents(const lysc_node* parent, const lysc_node* wrapper, Class& moc,
                                ObjectShape& shape) {
    const lysc_node* node = nullptr;
    while ((node = lys_getnext(node, parent, nullptr, 0)) != nullptr) {
        if (isCallable(node)) {
            continue; // see walkActions
        }
        if (wrapper == nullptr && isClass(node)) {
            walkObject(node, &shape, {});
        } else if (wrapper == nullptr && isTransparentInClass(node)) {
            mSchema.addTransparent(node);
            mRules.see(node);
            walkContents(node, node, moc, shape);
        } else {
            if (wrapper == nullptr) {
                noteList(node, "are values and not objects");
            }
            addAttribute(node, wrapper, moc, shape);
        }
    }
}

void SchemaWalker::addAttribute(const lysc_node* node, const lysc_node* wrapper, Class& moc,
                                ObjectShape& shape) {
    const std::string name = attributeName(node, moc, shape);
    const bool isFirst =
        std::none_of(moc.draft.attributes.begin(), moc.draft.attributes.end(),
                     [&name](const AttributeDraft& known) { return known.def.name == name; });
    std::optional<AttributeReader::Attribute> attribute =
        mAttributes.readAttribute(node, {moc.draft.def.name, name, isFirst});
    if (attribute) {
        uniteAttribute(std::move(*attribute), wrapper, moc, shape);
    }
}

/// The naming attribute has a name that the module does not choose, and is known by that of the
/// key, too. Another attribute with one of these names is called "module:name", as in JSON.
std::string SchemaWalker::attributeName(const lysc_node* node, const Class& moc,
                                        const ObjectShape& shape) {
    std::string plain = node->name;
    const std::string& naming = moc.draft.def.namingAttribute;
    const bool isKey = shape.isKey(node);
    const bool isNameOfKey =
        std::any_of(shape.keys.begin(), shape.keys.end(),
                    [&plain](const lysc_node* key) { return key->name == plain; });
    const bool isNamesake = plain == naming;
    if (isKey ? !isNamesake || shape.keys.size() == 1 : !isNamesake && !isNameOfKey) {
        return plain;
    }
    std::string name = std::string(node->module->name) + ":" + plain;
    // The naming attribute of a class "module:List" has such a name itself.
    name += name == naming ? "_2" : "";
    mNotes.add(mLocator.of(node), "attribute \"" + plain + "\" of class \"" + moc.draft.def.name +
                                      "\" is called \"" + name + "\", since \"" + plain +
                                      "\" names the objects");
    return name;
}

void SchemaWalker::uniteAttribute(AttributeReader::Attribute attribute, const lysc_node* wrapper,
                                  Class& moc, ObjectShape& shape) {
    std::vector<AttributeDraft>& attributes = moc.draft.attributes;
    const bool isKey = shape.isKey(attribute.shape.node);
    const std::string& name = attribute.draft.def.name;
    const auto known =
        std::find_if(attributes.begin(), attributes.end(),
                     [&name](const AttributeDraft& other) { return other.def.name == name; });
    const auto twice =
        std::find_if(shape.attributes.begin(), shape.attributes.end(),
                     [&name](const ValueShape& other) { return other.name == name; });
    if (twice != shape.attributes.end()) {
        mNotes.add(attribute.draft.def.source,
                   "class \"" + moc.draft.def.name + "\" has an attribute \"" + name +
                       "\" already; the second one, at " + pathOf(attribute.shape.node) +
                       ", is not part of the model");
        return;
    }
    if (known != attributes.end() && known->def.type.kind != attribute.draft.def.type.kind) {
        mNotes.add(attribute.draft.def.source, "attribute \"" + name + "\" of class \"" +
                                                   moc.draft.def.name + "\" has another type at " +
                                                   pathOf(attribute.shape.node) +
                                                   "; there it is not part of the model");
        return;
    }
    AttributeDef& def = attribute.draft.def;
    def.isConditional = def.isConditional || (wrapper != nullptr && isConditional(wrapper));
    const auto place = std::find_if(moc.places.rbegin(), moc.places.rend(),
                                    [&](const Place& one) { return one.list == shape.list; });
    place->choices.add(attribute.shape.node, def);
    if (known == attributes.end()) {
        attributes.push_back(std::move(attribute.draft));
    } else {
        known->def.isConditional = known->def.isConditional || def.isConditional;
    }
    if (!isKey) {
        attribute.shape.wrapper = wrapper;
        shape.attributes.push_back(std::move(attribute.shape));
    }
}

void SchemaWalker::walkActions(const lysc_node* list, Class& moc, ObjectShape& shape) {
    for (const lysc_node_action* action = lysc_node_actions(list); action != nullptr;
         action = action->next) {
        const auto isKnown = [action](const ActionDraft& known) {
            return known.name == action->name;
        };
        ActionShape place{action->name, &action->node, {}, {}};
        ActionDraft draft = readAction(action, place);
        if (std::none_of(moc.draft.actions.begin(), moc.draft.actions.end(), isKnown)) {
            moc.draft.action(std::move(draft));
        }
        shape.actions.push_back(std::move(place));
    }
}

ActionDraft SchemaWalker::readAction(const lysc_node_action* action, ActionShape& shape) {
    ActionDraft draft(action->name);
    draft.described(action->dsc != nullptr ? action->dsc : "");
    draft.parameters = readParameters(&action->input.node, shape.input);
    readResult(action, draft, shape);
    return draft;
}

/// An action returns one value: several nodes are put into a struct.
void SchemaWalker::readResult(const lysc_node_action* action, ActionDraft& draft,
                              ActionShape& shape) {
    std::vector<AttributeDraft> results = readParameters(&action->output.node, shape.output);
    if (results.size() == 1) {
        draft.result(std::move(results.front()));
    } else if (!results.empty()) {
        AttributeDraft whole = AttributeDraft::structure("output", std::move(results));
        draft.result(whole.mandatory().at(mLocator.of(&action->node)));
    }
}

std::vector<AttributeDraft> SchemaWalker::readParameters(const lysc_node* inout,
                                                         std::vector<ValueShape>& shapes) {
    std::vector<AttributeDraft> parameters;
    const lysc_node* node = nullptr;
    while ((node = lys_getnext(node, inout, nullptr, 0)) != nullptr) {
        std::optional<AttributeReader::Attribute> parameter =
            mAttributes.readParameter(node, parameters);
        if (node->parent != inout) {
            mNotes.count("choices among the parameters of an action are not checked",
                         mLocator.of(outermostChoice(node, inout)), pathOf(node));
        }
        if (parameter) {
            parameters.push_back(std::move(parameter->draft));
            shapes.push_back(std::move(parameter->shape));
        }
    }
    return parameters;
}

// An object does not show at which of several places its class was found. Where they differ, a rule
// of one of them could make objects of another one impossible.
std::vector<ChoiceDef> SchemaWalker::choicesOf(Class& moc) {
    std::vector<ChoiceDef> choices = std::move(moc.places.front().choices).take();
    for (auto place = std::next(moc.places.begin()); place != moc.places.end(); ++place) {
        if (std::move(place->choices).take() != choices) {
            mNotes.add(moc.draft.def.source,
                       "class \"" + moc.draft.def.name +
                           "\" is found at several places with different choices, for example at " +
                           pathOf(place->list) + "; its choices are not checked");
            return {};
        }
    }
    return choices;
}

Model SchemaWalker::build() {
    ModelBuilder builder;
    for (const std::unique_ptr<Class>& moc : mClasses) {
        moc->draft.def.choices = choicesOf(*moc);
        builder.add(std::move(moc->draft));
    }
    for (ContainmentDraft& containment : mContainments) {
        builder.contain(std::move(containment.parent), std::move(containment.child),
                        std::move(containment.source));
    }
    mAssociations.addTo(builder);
    for (Problem& problem : mAssociations.takeProblems()) {
        mProblems.push_back(std::move(problem));
    }
    try {
        Model model = builder.build();
        if (mProblems.empty()) {
            mSchema.complete(model);
            mSchema.setRules(mRules.read(mSchema));
            return model;
        }
    } catch (const ModelError& error) {
        mProblems.insert(mProblems.end(), error.problems().begin(), error.problems().end());
    }
    throw ModelError(std::move(mProblems));
}

}
