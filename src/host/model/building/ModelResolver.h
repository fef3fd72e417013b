// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_MODEL_BUILDING_MODELRESOLVER_H
#define ORV_HOST_MODEL_BUILDING_MODELRESOLVER_H

#include "ModelBuilder.h"
#include "ProblemList.h"
#include "model/Model.h"

namespace OrvHost {

/// Turns a draft into a Model and collects all problems on the way: a problem in one place does not
/// hide those in others. Used for one resolve().
class ModelResolver {
public:
    explicit ModelResolver(const ModelDraft& draft) : mDraft(draft) {}

    /// \throws ModelError
    Model resolve();

private:
    void enterClasses();
    void resolveClasses();
    void resolveClass(const ClassDraft& draft, ClassDef& moc);
    void resolveActions(const ClassDraft& draft, ClassDef& moc);
    void checkChoices(const ClassDef& moc);
    void addNamingAttribute(ClassDef& moc);
    void checkRoot(const ClassDef& moc);
    void checkNamingAttribute(const ClassDraft& draft, ClassDef& moc);
    void nameNamingAttribute(ClassDef& moc, std::size_t position);
    void resolveContainments();
    void resolveContainment(const ContainmentDraft& draft);
    void checkReachability();

    const ModelDraft& mDraft;
    Model mModel;
    ProblemList mProblems;
};

}

#endif
