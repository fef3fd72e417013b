// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_EXT_CM_MODELQUESTIONS_H
#define ORV_EXT_CM_MODELQUESTIONS_H

#include "ModelReader.h"
#include "OrvException.h"
#include "OrvReturn.h"

#include <cstring>

/// \file
/// How the component reads the model, in two ways. Which questions are asked, and in which order,
/// is part of what hosts know: it does not change, also where an answer is not needed.
///
/// *Bidirectional* associations take handles that come from the model to be good, so codes are not
/// looked at: they use the value of an answer, and what cannot be answered is a zero handle, a null
/// text, a zero number or false. Only a class that is looked up by the DN of a client, and the
/// steps of lists, show their code.
///
/// *Unidirectional* associations look at each code, and any failure ends what is done: they use
/// checked.

namespace OrvExtCmRouterService {

// What bidirectional associations ask. Each makes the calls that it needs and no others, in the
// order of its name's parts.

inline const char* mocName(const Orv::ModelReader& model, VekOamSpiMrMocHandle_4T moc) {
    return model.generalName(model.mocProperties(moc).value).value;
}

inline const char* attributeName(const Orv::ModelReader& model,
                                 VekOamSpiMrAttributeHandle_4T attribute) {
    return model.generalName(model.attributeProperties(attribute).value).value;
}

/// The end's name by way of its general properties.
inline const char* endName(const Orv::ModelReader& model, VekOamSpiMrAssociationEndHandle_4T end) {
    return model.generalName(model.endProperties(end).value).value;
}

inline bool isReference(const Orv::ModelReader& model, VekOamSpiMrTypeHandle_4T type) {
    return model.typeCode(type).value == VekOamSpiMrTypeMoRef_4;
}

/// The end of \p association that is not \p near. The second end is asked for only if the first is
/// the near one.
inline VekOamSpiMrAssociationEndHandle_4T farEnd(const Orv::ModelReader& model,
                                                 VekOamSpiMrBiDirAssociationHandle_4T association,
                                                 VekOamSpiMrAssociationEndHandle_4T near) {
    const VekOamSpiMrAssociationEndHandle_4T first = model.firstEnd(association).value;
    return first == near ? model.secondEnd(association).value : first;
}

/// True if both texts are there and equal: what has no name matches nothing. Most differ in their
/// first letter, and a call to find that out would take longer.
inline bool sameText(const char* one, const char* other) {
    return one != nullptr && other != nullptr && *one == *other && std::strcmp(one, other) == 0;
}

/// \p text where a text must stand, also if the model has none.
inline const char* textOrEmpty(const char* text) {
    return text != nullptr ? text : "";
}

// What unidirectional associations ask.

/// Turns \p code into an Orv::OrvException with that code and \p text, unless it is OrvOk.
inline void throwUnlessOk(OrvReturnT code, const char* text) {
    if (code != OrvOk) {
        throw Orv::OrvException(code, "%s", text);
    }
}

/// The value of \p answer. \throws Orv::OrvException as throwUnlessOk does.
template <class Value>
Value checked(const Orv::ModelAnswer<Value>& answer, const char* text) {
    throwUnlessOk(answer.code, text);
    return answer.value;
}

}

#endif
