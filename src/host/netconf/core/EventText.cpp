// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "EventText.h"

#include "base/DnView.h"
#include "client/ExternalDn.h"
#include "netconf/wire/InstancePath.h"
#include "netconf/wire/XmlText.h"
#include "yang/types/ValueCodec.h"

#include <algorithm>
#include <set>

namespace OrvHost {

namespace {

std::string event(const std::string& name, const std::string& content) {
    return "<" + name + R"( xmlns="urn:ietf:params:xml:ns:yang:ietf-netconf-notifications">)" +
           content + "</" + name + ">";
}

std::string parameters(const std::string& user, std::uint32_t sessionId) {
    return xmlElement("username", user) + xmlElement("session-id", std::to_string(sessionId));
}

std::string parameters(const NetconfSession& session) {
    return parameters(session.user().name, session.id());
}

/// The list of edits of one commit.
class EditList {
public:
    explicit EditList(const YangSchema& schema) : mSchema(schema) {}

    void add(const ChangeSet& changes) {
        for (const ObjectChange& change : changes.objects) {
            if (change.kind != ObjectChange::Kind::Changed) {
                tops(change.kind).insert(change.dn);
            }
        }
        for (const ObjectChange& change : changes.objects) {
            if (change.kind == ObjectChange::Kind::Changed) {
                addAttributes(change);
            } else if (!isBelow(change)) {
                const bool isCreated = change.kind == ObjectChange::Kind::Created;
                add(instancePathOf(mSchema, externalDn(change.dn)),
                    isCreated ? "create" : "delete");
            }
        }
    }

    std::string take() { return std::move(mXml); }

private:
    std::set<std::string>& tops(ObjectChange::Kind kind) {
        return kind == ObjectChange::Kind::Created ? mCreated : mDeleted;
    }

    bool isBelow(const ObjectChange& change) {
        const DnView parent = DnView(change.dn).parent();
        return tops(change.kind).count(std::string(parent.text())) != 0;
    }

    void addAttributes(const ObjectChange& change) {
        const std::string dn = externalDn(change.dn);
        const ObjectShape* shape = mSchema.findByDn(change.dn);
        for (const AttributeChange& attribute : change.attributes) {
            const ValueShape* value = shape != nullptr ? find(*shape, attribute.name) : nullptr;
            if (value == nullptr) {
                continue;
            }
            const InstancePath path = instancePathOf(mSchema, dn, attribute.name);
            if (!value->isMultiple) {
                add(path, attribute.before.values.empty()  ? "create"
                          : attribute.after.values.empty() ? "delete"
                                                           : "replace");
            } else if (value->kind == ValueKind::Struct) {
                // An entry without keys cannot be named.
                add(instancePathOf(mSchema, dn), "merge");
            } else {
                const std::size_t former = mXml.size();
                addEntries(path, *value, attribute.before, attribute.after, "delete");
                addEntries(path, *value, attribute.after, attribute.before, "create");
                if (mXml.size() == former) { // only the order is another
                    add(instancePathOf(mSchema, dn), "merge");
                }
            }
        }
    }

    /// The entries that are in \p some and not in \p others.
    void addEntries(const InstancePath& list, const ValueShape& shape, const AttributeValue& some,
                    const AttributeValue& others, const std::string& operation) {
        for (const Value& one : some.values) {
            const auto& known = others.values;
            if (std::find(known.begin(), known.end(), one) == known.end()) {
                const std::string text = encodeValue(one, shape.node, mSchema.context()).text;
                InstancePath path = list;
                const bool isNamed =
                    path.whereSelf(shape.kind == ValueKind::MoRef ? externalDn(text) : text);
                add(path, isNamed ? operation : "merge");
            }
        }
    }

    static const ValueShape* find(const ObjectShape& shape, const std::string& name) {
        const auto found = std::find_if(shape.attributes.begin(), shape.attributes.end(),
                                        [&](const ValueShape& one) { return one.name == name; });
        return found != shape.attributes.end() ? &*found : nullptr;
    }

    void add(const InstancePath& path, const std::string& operation) {
        std::string target = "<target";
        for (const auto& [prefix, nameSpace] : path.prefixes) {
            target += " xmlns:" + prefix + "=\"" + xmlEscaped(nameSpace) + "\"";
        }
        target += ">" + xmlEscaped(path.text) + "</target>";
        if (mNamed.insert(path.text + " " + operation).second) {
            mXml += "<edit>" + target + xmlElement("operation", operation) + "</edit>";
        }
    }

    const YangSchema& mSchema;
    std::set<std::string> mCreated;
    std::set<std::string> mDeleted;
    std::set<std::string> mNamed;
    std::string mXml;
};

}

std::string configChangeEvent(const ChangeSet& changes, const Committer* by,
                              const YangSchema& schema) {
    EditList edits(schema);
    edits.add(changes);
    return event("netconf-config-change",
                 "<changed-by>" +
                     (by != nullptr ? parameters(by->user(), by->sessionId()) : "<server/>") +
                     "</changed-by>" + xmlElement("datastore", "running") + edits.take());
}

std::string sessionStartEvent(const NetconfSession& session) {
    return event("netconf-session-start", parameters(session));
}

std::string sessionEndEvent(const NetconfSession& session, const SessionEnd& end) {
    std::string content = parameters(session);
    if (end.killedBy) {
        content += xmlElement("killed-by", std::to_string(*end.killedBy));
    }
    const std::string reason = end.killedBy ? "killed" : end.isClosed ? "closed" : "dropped";
    return event("netconf-session-end", content + xmlElement("termination-reason", reason));
}

}
