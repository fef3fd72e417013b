// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "EntryLines.h"

#include "yang/instances/DataPlaces.h"
#include "yang/instances/JsonCursor.h"
#include "yang/instances/XmlTags.h"
#include "yang/source/YangContext.h"

#include <cstddef>
#include <string>
#include <vector>

namespace OrvHost {
namespace {

using Member = DataPlaces::Member;
using Place = DataPlaces::Place;

/// For each list of objects, the lines of its entries in the order of the text.
using LinesByList = std::unordered_map<const lysc_node*, std::vector<int>>;

void addEntry(const Member& member, int line, LinesByList& lines) {
    if (member.object != nullptr) {
        lines[member.node].push_back(line);
    }
}

/// A key says better than the beginning of its entry where an object stands.
void addKey(const Member* entry, int line, LinesByList& lines) {
    if (entry != nullptr && entry->object != nullptr) {
        lines[entry->node].back() = line;
    }
}

class JsonLines {
public:
    JsonLines(std::string_view text, DataPlaces& places) : mText(text), mPlaces(places) {}

    /// The lines as far as the text could be followed.
    LinesByList read() {
        readMembers(nullptr, &mPlaces.top());
        return std::move(mLines);
    }

private:
    /// Of \p entry, at \p place; both null in what the model does not know.
    bool readMembers(const Member* entry, const Place* place) {
        if (!mText.take('{')) {
            return false;
        }
        const Member* member = nullptr;
        do {
            if (mText.take('}')) {
                return true;
            }
            const auto name = mText.string();
            if (!name || !mText.take(':')) {
                return false;
            }
            const auto isIt = [&](const Member& one) { return one.isCalled(*name); };
            member = place == nullptr ? nullptr : place->after(member, isIt);
            const bool isRead = mText.take('[') ? readArray(member) : readValue(member);
            if (!isRead) {
                return false;
            }
            if (member != nullptr && member->isKey) {
                addKey(entry, mText.line(), mLines);
            }
        } while (mText.take(','));
        return mText.take('}');
    }
    bool readArray(const Member* member) {
        do {
            if (mText.take(']')) {
                return true;
            }
            const bool isRead = mText.take('[') ? readArray(nullptr) : readValue(member);
            if (!isRead) {
                return false;
            }
        } while (mText.take(','));
        return mText.take(']');
    }
    bool readValue(const Member* member) {
        if (!mText.isAt('{')) {
            return mText.skipScalar();
        }
        if (member != nullptr) {
            addEntry(*member, mText.line(), mLines);
        }
        return readMembers(member, member == nullptr ? nullptr : &mPlaces.insideOf(*member));
    }

    JsonCursor mText;
    DataPlaces& mPlaces;
    LinesByList mLines;
};

LinesByList linesOfXml(std::string_view text, DataPlaces& places) {
    LinesByList lines;
    std::vector<const Member*> open; // null: the model does not know it
    std::unordered_map<std::string_view, const lys_module*> modules;
    const auto moduleOf = [&](std::string_view xmlNamespace) {
        const auto [known, isNew] = modules.emplace(xmlNamespace, nullptr);
        if (isNew) {
            known->second = ly_ctx_get_module_implemented_ns(places.schema().context().get(),
                                                             std::string(xmlNamespace).c_str());
        }
        return known->second;
    };
    XmlTags tags(text);
    const Member* former = nullptr; // beside the tag that comes next
    while (const auto tag = tags.next()) {
        if (tag->begins) {
            const bool isKnown = open.empty() || open.back() != nullptr;
            const Member* member = nullptr;
            if (isKnown) {
                const lys_module* const module = moduleOf(tag->xmlNamespace);
                const Place& place = open.empty() ? places.top() : places.insideOf(*open.back());
                member = place.after(former, [&](const Member& one) {
                    return one.node->module == module && one.name == tag->name;
                });
            }
            if (member != nullptr && member->isKey) {
                addKey(open.back(), tag->line, lines);
            } else if (member != nullptr) {
                addEntry(*member, tag->line, lines);
            }
            open.push_back(member);
            former = nullptr;
        }
        if (tag->ends) {
            former = open.back();
            open.pop_back();
        }
    }
    return lines;
}

/// The entries of each list of objects, in their order, which is that of the text.
void gatherEntries(const lyd_node* first, const YangSchema& schema,
                   std::unordered_map<const lysc_node*, std::vector<const lyd_node*>>& entries) {
    for (const lyd_node* node = first; node != nullptr; node = node->next) {
        const bool isObject = node->schema != nullptr && schema.objectAt(node->schema) != nullptr;
        if (isObject) {
            entries[node->schema].push_back(node);
        }
        if (isObject || (node->schema != nullptr && schema.isTransparent(node->schema))) {
            gatherEntries(lyd_child(node), schema, entries);
        }
    }
}

}

EntryLines::EntryLines(std::string_view text, LYD_FORMAT format, const YangSchema& schema,
                       const lyd_node* tree) {
    DataPlaces places(schema);
    LinesByList lines =
        format == LYD_XML ? linesOfXml(text, places) : JsonLines(text, places).read();
    std::unordered_map<const lysc_node*, std::vector<const lyd_node*>> entries;
    gatherEntries(tree, schema, entries);
    for (const auto& [list, nodes] : entries) {
        const std::vector<int>& known = lines[list];
        // No line is better than a wrong one: the tree may lack entries of the text.
        for (std::size_t i = 0; known.size() == nodes.size() && i < nodes.size(); ++i) {
            mLines.emplace(nodes[i], known[i]);
        }
    }
}

int EntryLines::lineOf(const lyd_node* node) const {
    for (const lyd_node* at = node; at != nullptr; at = lyd_parent(at)) {
        if (const auto known = mLines.find(at); known != mLines.end()) {
            return known->second;
        }
    }
    return 0;
}

}
