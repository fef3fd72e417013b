// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_AUDIT_INSTANCEREPORT_H
#define ORV_HOST_AUDIT_INSTANCEREPORT_H

#include <cstdint>
#include <string>
#include <vector>

namespace OrvHost {

enum class InstanceProblemKind : std::uint8_t {
    NoClass,            ///< the DN is not a legal path of the model
    RepeatedObject,     ///< two objects with the same DN
    NoParent,           ///< the object above does not exist
    WrongNumber,        ///< the number of objects of a class under `dn`, or at the top level if it
                        ///< is empty, is not permitted
    NoAttribute,        ///< the class has no such attribute
    WrongCount,         ///< the number of values does not fit the attribute
    WrongChoice,        ///< the values do not fit a choice among the attributes
    NoReference,        ///< an association end without references that needs some; a client may
                        ///< leave it so by never writing it
    WrongCardinality,   ///< the number of references does not fit an association end
    NoTargetClass,      ///< a reference is not a legal path of the model
    ForbiddenClass,     ///< a reference to a class that the attribute does not permit
    NoTarget,           ///< a reference of an association to an object that does not exist
    RepeatedTarget,     ///< a bidirectional reference attribute names an object more than once
    MissingBackPointer, ///< the object at the far side of a bidirectional association lacks the
                        ///< reference back; what repair can cure
};

/// Whether it is about references, and not about an object, or the values of attributes.
bool isOfAssociation(InstanceProblemKind kind);

/// One problem of the data.
struct InstanceProblem {
    InstanceProblemKind kind = InstanceProblemKind::NoClass;
    std::string dn;        ///< the object with the problem, or the one that names `otherDn`
    std::string attribute; ///< its attribute; may be empty
    std::string otherDn;   ///< the object that is referred to; may be empty
    std::string text;      ///< all of it in plain words
    /// Of a wrong number of references of an association end: the class whose references are too
    /// many or too few. Other associations of the attribute are not meant. May be empty.
    std::string countedClass = {};
};

/// A value to add to the end of a reference attribute.
struct MissingReference {
    std::string dn; ///< the object that lacks it
    std::string attribute;
    std::string value; ///< the DN to add
};

/// All problems of the data, and the values that would complete it.
struct InstanceReport {
    std::vector<InstanceProblem> problems;
    /// One for each problem of the kind MissingBackPointer, in the same order. Adding all of them
    /// can give an attribute too many values: check again afterwards.
    std::vector<MissingReference> repairs;
};

}

#endif
