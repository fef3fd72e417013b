// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_MODEL_MODELBUILDER_H
#define ORV_HOST_MODEL_MODELBUILDER_H

#include "Model.h"
#include "ModelDraft.h"
#include "ModelError.h"

#include <string>
#include <vector>

namespace OrvHost {

/// One class may stand under another, which may be itself.
struct ContainmentDraft {
    std::string parent;
    std::string child;
    SourcePosition source;
};

/// All that was said of a model, in the order in which it was said.
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

    /// Said twice, it counts once. The order of a class's children is the order of their mention.
    ModelBuilder& contain(std::string parent, std::string child, SourcePosition source = {});

    /// One end of an association as its own attribute tells it: a bidirectional one names its
    /// opposite, whose own end must be added too and agree. The end added first makes
    /// BiDirAssociation::ends[0] lie at its owner.
    ModelBuilder& add(ReferenceDraft draft);

    /// Both ends of a bidirectional association: fills in the target and the opposite of each, and
    /// adds them. For an association of a class with itself through one and the same attribute,
    /// pass that attribute twice.
    ModelBuilder& biDir(ReferenceDraft first, ReferenceDraft second);

    /// A unidirectional association for each of `targets`, with the facts of `draft`.
    ModelBuilder& uniDir(const ReferenceDraft& draft, const std::vector<std::string>& targets);

    /// Resolves all names and checks everything.
    /// \throws ModelError with all that is wrong, in the order of the declarations.
    Model build() const;

private:
    ModelDraft mDraft;
};

}

#endif
