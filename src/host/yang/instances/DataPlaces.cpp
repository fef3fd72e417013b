// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "DataPlaces.h"

#include "yang/source/YangContext.h"

#include <libyang/libyang.h>

#include <cstdint>
#include <utility>

namespace OrvHost {

const DataPlaces::Place& DataPlaces::of(const lysc_node* node) {
    if (const auto known = mPlaces.find(node); known != mPlaces.end()) {
        return *known->second;
    }
    auto place = std::make_unique<Place>();
    if (node != nullptr) {
        addMembers(*place, node, nullptr);
    } else {
        std::uint32_t index = 0;
        while (const lys_module* module = ly_ctx_get_module_iter(mSchema.context().get(), &index)) {
            if (module->implemented != 0) {
                addMembers(*place, nullptr, module->compiled);
            }
        }
    }
    return *mPlaces.emplace(node, std::move(place)).first->second;
}

void DataPlaces::addMembers(Place& place, const lysc_node* parent, const lysc_module* module) {
    constexpr int kData = LYS_CONTAINER | LYS_LIST | LYS_LEAF | LYS_LEAFLIST;
    const lysc_node* node = nullptr;
    while ((node = lys_getnext(node, parent, module, 0)) != nullptr) {
        if ((node->nodetype & kData) == 0) {
            continue;
        }
        Member& member = place.members.emplace_back();
        member.name = node->name;
        member.qualifiedName = std::string(node->module->name) + ":" + node->name;
        member.isNameEnough = parent != nullptr && parent->module == node->module;
        member.node = node;
        member.isKey = lysc_is_key(node);
        member.isTransparent = mSchema.isTransparent(node);
        member.object = mSchema.objectAt(node);
        member.value = mSchema.valueAt(node);
        place.keys += member.isKey ? 1 : 0;
    }
}

}
