// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_YANG_SCHEMA_CHOICEREADER_H
#define ORV_HOST_YANG_SCHEMA_CHOICEREADER_H

#include "model/Model.h"

#include <libyang/libyang.h>

#include <set>
#include <string>
#include <vector>

namespace OrvHost {

/// True if the node need not be there although it is mandatory, because of a choice, or of a `when`
/// on it or on a container around it that is not an attribute itself.
bool isConditional(const lysc_node* node);

/// The nodes of data in the cases of a choice, those of choices inside it included.
std::vector<const lysc_node*> nodesOfCases(const lysc_node* choice);

/// Collects the choices among the attributes of one class or the members of one struct.
class ChoiceReader {
public:
    /// Takes an attribute or member into account. \p def is what was read from \p node.
    void add(const lysc_node* node, const AttributeDef& def);

    /// The choices, in the order of their first attributes. A choice that has more in its cases
    /// than what was added (objects, for example) is not mandatory here: a case can be taken
    /// unseen.
    std::vector<ChoiceDef> take() &&;

private:
    struct Choice {
        const lysc_node* node = nullptr;
        ChoiceDef def;
        std::vector<const lysc_node*> cases; ///< of def.cases
    };

    void addTo(const lysc_node* oneCase, const std::string& name, bool isRequired);
    ChoiceCase& caseOf(const lysc_node* oneCase);
    bool isMandatory(const lysc_node* choice) const;

    std::vector<Choice> mChoices;
    std::set<const lysc_node*> mAdded;
};

}

#endif
