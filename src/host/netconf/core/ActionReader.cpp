// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "ActionReader.h"

#include "DnUtil.h"
#include "base/DnView.h"
#include "netconf/wire/RpcError.h"
#include "yang/instances/NodeValues.h"
#include "yang/instances/ObjectWriter.h"
#include "yang/instances/TreeReader.h"

#include <libyang/libyang.h>

#include <algorithm>

namespace OrvHost {

namespace {

RpcError errorAt(const lyd_node* node, const std::string& tag, const std::string& message) {
    RpcError error;
    error.tag = tag;
    error.path = instancePathOf(node);
    error.message = message;
    return error;
}

std::string quoted(const lyd_node* node) {
    return std::string("<") + LYD_NAME(node) + ">";
}

RpcError foreign(const lyd_node* node) {
    return errorAt(node, "operation-not-supported",
                   quoted(node) + " has no place in the objects of this server");
}

class Reader {
public:
    Reader(const WireModel& model, const Model& classes) : mModel(model), mClasses(classes) {}

    ActionRequest read(const lyd_node* action) {
        ActionRequest request;
        refuseBeside(action);
        request.dn = dnOf(lyd_parent(action));
        request.shape = mModel.actionAt(action->schema);
        if (request.shape == nullptr) {
            mErrors.push_back(foreign(action));
            throw RpcErrors(mErrors);
        }
        const ObjectShape& object = *mModel.objectAt(lyd_parent(action)->schema);
        request.def = mClasses.classes[object.moc].findAction(request.shape->name);
        readParameters(action, request);
        if (!mErrors.empty()) {
            throw RpcErrors(mErrors);
        }
        return request;
    }

private:
    /// A value beside the path would look as if it were set.
    void refuseBeside(const lyd_node* action) {
        for (const lyd_node* node = action; node != nullptr; node = lyd_parent(node)) {
            for (const lyd_node* one = lyd_first_sibling(node); one != nullptr; one = one->next) {
                if (one != node && (one->schema == nullptr || !lysc_is_key(one->schema))) {
                    mErrors.push_back(errorAt(one, "bad-element",
                                              quoted(one) + " stands beside the path of an action, "
                                                            "where only keys were expected"));
                    mErrors.back().info = errorInfo("bad-element", LYD_NAME(one));
                }
            }
        }
    }

    std::string dnOf(const lyd_node* node) {
        if (node == nullptr) {
            return "";
        }
        std::string above = dnOf(lyd_parent(node));
        const ObjectShape* shape = mModel.objectAt(node->schema);
        if (shape == nullptr) {
            return above; // a container around objects
        }
        const std::string name = nameOfEntry(node, *shape);
        if (!Orv::DnUtil::validateMoNamingAttr(name.c_str())) {
            mErrors.push_back(
                errorAt(node, "invalid-value", "\"" + name + "\" cannot name an object"));
        }
        return DnView(above).child(shape->className, name);
    }

    void readParameters(const lyd_node* action, ActionRequest& request) {
        const NodeValues values([this](const lysc_node* node) { return mModel.valueAt(node); },
                                [this](const lyd_node* node) { mErrors.push_back(foreign(node)); },
                                [this](const lyd_node* node) { refuseSecond(node); });
        for (const lyd_node* node = lyd_child(action); node != nullptr; node = node->next) {
            values.append(node, request.parameters);
        }
        for (const AttributeDef& parameter : request.def->parameters) {
            if (parameter.isRequired() && !parameter.defaultValue &&
                !isGiven(request, parameter.name)) {
                mErrors.push_back(
                    errorAt(action, "missing-element",
                            quoted(action) + " lacks its parameter <" + parameter.name + ">"));
                mErrors.back().info = errorInfo("bad-element", parameter.name);
            }
        }
    }

    static bool isGiven(const ActionRequest& request, const std::string& parameter) {
        return std::any_of(request.parameters.begin(), request.parameters.end(),
                           [&](const NamedValue& one) { return one.first == parameter; });
    }

    void refuseSecond(const lyd_node* node) {
        mErrors.push_back(errorAt(node, "bad-element", quoted(node) + " stands here twice"));
        mErrors.back().info = errorInfo("bad-element", LYD_NAME(node));
    }

    const WireModel& mModel;
    const Model& mClasses;
    std::vector<RpcError> mErrors;
};

[[noreturn]] void refuseResult(const ActionRequest& request, const std::string& reason) {
    RpcError error;
    error.tag = "operation-failed";
    error.message =
        "action " + request.shape->name + " is done, but its result cannot be shown: " + reason;
    throw RpcErrors(error);
}

}

const lyd_node* actionIn(const lyd_node* request) {
    if (request == nullptr || request->schema == nullptr ||
        request->schema->nodetype == LYS_ACTION) {
        return request != nullptr && request->schema != nullptr ? request : nullptr;
    }
    // Next to the path to the action there are only keys.
    for (const lyd_node* child = request->schema->nodetype == LYS_RPC ? nullptr
                                                                      : lyd_child(request);
         child != nullptr; child = child->next) {
        if (const lyd_node* found = actionIn(child)) {
            return found;
        }
    }
    return nullptr;
}

ActionRequest readAction(const WireModel& model, const Model& classes, const lyd_node* action) {
    return Reader(model, classes).read(action);
}

std::string outputText(const WireModel& model, const ActionRequest& request,
                       const ReadValue& result) {
    const std::vector<ValueShape>& output = request.shape->output;
    if (result.slots.empty() || !request.def->result) {
        return "";
    }
    const auto value = toAttributeValue(result, request.def->result->type.kind);
    if (!value) {
        refuseResult(request, "it has values of unknown types");
    }
    std::vector<NamedValue> nodes;
    if (output.size() == 1) {
        nodes.emplace_back(output.front().name, *value);
    } else {
        const auto* whole = std::get_if<StructValue>(&value->values.front());
        if (whole == nullptr) {
            refuseResult(request, "it is no struct");
        }
        nodes = whole->members;
    }
    // Not inside another element: each node gets its namespace.
    ObjectShape reply;
    reply.attributes = output;
    try {
        return ObjectWriter::make(DataFormat::Xml, model.schema().context())
            ->body(reply, {}, nodes);
    } catch (const UnwritableValueError& failure) {
        refuseResult(request, failure.what());
    }
}

}
