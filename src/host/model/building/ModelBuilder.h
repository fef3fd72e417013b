// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_MODEL_BUILDING_MODELBUILDER_H
#define ORV_HOST_MODEL_BUILDING_MODELBUILDER_H

#include "ModelDraft.h"
#include "model/Model.h"
#include "model/ModelError.h"

#include <string>
#include <vector>

namespace OrvHost {

/// Objects of one class may exist under those of another, or of the same class.
struct ContainmentDraft {
    std::string parent;
    std::string child;
    SourcePosition source;
};

/// All declarations of a model, in their order.
struct ModelDraft {
    std::vector<ClassDraft> classes;
    std::vector<ContainmentDraft> containments;
    std::vector<ReferenceDraft> references;
};

/// Gathers what is said of a model, in any order, and makes a Model of it.
///
/// \code
/// const Model model = ModelBuilder()
///     .add(ClassDraft("Site").topLevel().key("id").attribute(AttributeDraft::text("label")))
///     .add(ClassDraft("Mast").key("id").attribute(AttributeDraft::reference("antennas").many()))
///     .add(ClassDraft("Antenna").key("id").attribute(AttributeDraft::reference("mast")))
///     .contain("Site", "Mast")
///     .contain("Site", "Antenna")
///     .biDir(ReferenceDraft("Mast", "antennas"), ReferenceDraft("Antenna", "mast").counts(1, 1))
///     .build();
/// \endcode
///
/// One thread builds; the Model is then for any number of readers.
class ModelBuilder {
public:
    ModelBuilder& add(ClassDraft draft);

    /// Declaring the same pair twice changes nothing. The order of a class's children is the order
    /// of their declaration.
    ModelBuilder& contain(std::string parent, std::string child, SourcePosition source = {});

    /// One end of an association, declared by its own attribute. A bidirectional end names its
    /// opposite; the opposite end must be added too, and the two must agree. The end that is added
    /// first has its owner as the class of BiDirAssociation::ends[0].
    ModelBuilder& add(ReferenceDraft draft);

    /// Both ends of a bidirectional association: fills in the target and the opposite of each, and
    /// adds them. For an association of a class with itself through one and the same attribute,
    /// pass that attribute twice.
    ModelBuilder& biDir(ReferenceDraft first, ReferenceDraft second);

    /// Adds a unidirectional association for each of `targets`; all other facts come from `draft`.
    ModelBuilder& uniDir(const ReferenceDraft& draft, const std::vector<std::string>& targets);

    /// Resolves all names and checks everything.
    /// \throws ModelError with all that is wrong, in the order of the declarations.
    Model build() const;

private:
    ModelDraft mDraft;
};

}

#endif
