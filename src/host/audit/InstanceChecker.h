// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_AUDIT_INSTANCECHECKER_H
#define ORV_HOST_AUDIT_INSTANCECHECKER_H

#include "InstanceReport.h"
#include "InstanceSource.h"
#include "model/Model.h"

namespace OrvHost {

/// Checks objects that did not come through a client's transaction against the rules that a
/// transaction would enforce: the number of objects of a class under one parent is permitted, the
/// number of values fits attributes and association ends, references name permitted classes,
/// references of associations name existing objects, and both sides of every bidirectional
/// association are present. Objects and their parents are checked as far as these rules need it;
/// single values are not (see whyRefused).
///
/// A mandatory attribute with a default, one that only the system writes, and the naming attribute
/// may be absent.
///
/// Cost: time grows with the number of objects and values, times the logarithm of the number of
/// bidirectional references; memory is that of the DNs, 8 bytes for each such reference, and 8 for
/// each object of a class whose number is bounded.
class InstanceChecker {
public:
    /// `model` is from a ModelBuilder and must outlive the checker.
    explicit InstanceChecker(const Model& model) : mModel(model) {}

    /// All problems: first those of the single objects, in the order of the source, then wrong
    /// numbers of objects, then problems between two objects, association by association. Any
    /// thread; nothing is kept.
    InstanceReport check(const InstanceSource& source) const;

private:
    const Model& mModel;
};

}

#endif
