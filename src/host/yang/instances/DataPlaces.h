// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_YANG_INSTANCES_DATAPLACES_H
#define ORV_HOST_YANG_INSTANCES_DATAPLACES_H

#include "yang/schema/YangSchema.h"

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

struct lysc_module;

namespace OrvHost {

/// What may stand where in a text of instance data, for those who read it without the YANG library.
/// Tables are made when they are needed first.
///
/// One thread at a time.
class DataPlaces {
public:
    struct Place;

    /// A node that may stand in a place.
    struct Member {
        std::string name;
        std::string qualifiedName; ///< "module:name"
        bool isNameEnough = false; ///< in JSON: the module is that of the place
        const lysc_node* node = nullptr;
        bool isKey = false;
        bool isTransparent = false;
        const ObjectShape* object = nullptr;
        const ValueShape* value = nullptr;
        mutable const Place* inside = nullptr; ///< see insideOf

        /// True if \p text is its name in JSON, with or without its module.
        bool isCalled(std::string_view text) const {
            return (isNameEnough && text == name) || text == qualifiedName;
        }
    };

    struct Place {
        /// In the order in which the library keeps their data; keys first.
        std::vector<Member> members;
        std::size_t keys = 0;

        /// The member that \p isIt accepts, or null. The search begins after \p former, which may
        /// be null: texts mostly have that order.
        template <class IsIt>
        const Member* after(const Member* former, const IsIt& isIt) const {
            const std::size_t begin =
                former == nullptr ? 0 : static_cast<std::size_t>(former + 1 - members.data());
            for (std::size_t i = begin; i < members.size(); ++i) {
                if (isIt(members[i])) {
                    return &members[i];
                }
            }
            for (std::size_t i = 0; i < begin; ++i) {
                if (isIt(members[i])) {
                    return &members[i];
                }
            }
            return nullptr;
        }
    };

    /// The schema must outlive this object.
    explicit DataPlaces(const YangSchema& schema) : mSchema(schema) {}
    DataPlaces(const DataPlaces&) = delete;
    DataPlaces& operator=(const DataPlaces&) = delete;

    const YangSchema& schema() const { return mSchema; }
    const Place& top() { return of(nullptr); }
    const Place& insideOf(const Member& member) {
        if (member.inside == nullptr) {
            member.inside = &of(member.node);
        }
        return *member.inside;
    }

private:
    const Place& of(const lysc_node* node);
    void addMembers(Place& place, const lysc_node* parent, const lysc_module* module);

    const YangSchema& mSchema;
    std::unordered_map<const lysc_node*, std::unique_ptr<Place>> mPlaces; ///< null: the top
};

}

#endif
