// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_YANG_SCHEMA_ASSOCIATIONSTATEMENT_H
#define ORV_HOST_YANG_SCHEMA_ASSOCIATIONSTATEMENT_H

#include "model/Model.h"

#include <optional>
#include <stdexcept>
#include <string>
#include <utility>

/// \file
/// Parses the arguments of the statements of the module orv-associations. Names are not looked up
/// here.

namespace OrvHost {

/// What is wrong with an argument, and what was expected.
class StatementError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// "Class" or "module:Class". A class can have ":" in its own name: that of the list "Class" in the
/// list "Parent" may be "Parent:Class", and is taken apart here in the same way.
struct ClassName {
    std::string module; ///< what stands before the first ":"; empty if there is none
    std::string name;
};

/// The name as the statement has it.
std::string toText(const ClassName& name);

/// "Class.attribute".
struct AttributeName {
    ClassName moc;
    std::string attribute;
};

/// What follows the names; every part is optional.
struct ReferenceTerms {
    std::optional<Bounds> bounds;
    std::string role;
    bool keepAtDelete = false;

    bool isEmpty() const { return !bounds && role.empty() && !keepAtDelete; }
};

/// `unidirectional` in a leaf: "Class terms".
struct UniDirInLeaf {
    ClassName target;
    ReferenceTerms terms;
};

/// `bidirectional` in a leaf: "Class.attribute terms", the far side's names.
struct BiDirInLeaf {
    AttributeName opposite;
    ReferenceTerms terms;
};

/// `unidirectional` in a module: "Class.attribute -> Class terms".
struct UniDirInModule {
    AttributeName owner;
    ClassName target;
    ReferenceTerms terms;
};

/// `bidirectional` in a module: "Class.attribute terms <-> Class.attribute terms".
struct BiDirInModule {
    std::pair<AttributeName, ReferenceTerms> sides[2];
};

/// \throws StatementError, all of them
UniDirInLeaf parseUniDirInLeaf(const std::string& argument);
BiDirInLeaf parseBiDirInLeaf(const std::string& argument);
UniDirInModule parseUniDirInModule(const std::string& argument);
BiDirInModule parseBiDirInModule(const std::string& argument);

}

#endif
