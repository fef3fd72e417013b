// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_CLI_INPUT_OBJECTFILTER_H
#define ORV_HOST_CLI_INPUT_OBJECTFILTER_H

#include "client/ObjectState.h"

#include <string>
#include <vector>

namespace OrvHost {

/// Which objects are wanted: `CLASS` or `CLASS.ATTRIBUTE OP VALUE`. Immutable.
///
/// In CLASS, and in VALUE after = and !=, a `*` stands for any text and a `?` for one character. OP
/// is =, !=, <, <=, > or >=; the last four compare numbers as numbers and other values as texts. Of
/// several values one must fit, for != none may be equal. What is not set fits only !=. ATTRIBUTE
/// can lead into a struct: `position.latitude`.
class ObjectFilter {
public:
    /// \p words are those of a command; blanks around OP are not needed. Throws UsageError.
    ObjectFilter(const Model& model, const std::vector<std::string>& words);

    const std::string& className() const { return mClass; }
    /// Empty: there is no condition.
    const std::string& attribute() const { return mAttribute; }

    bool matchesClass(const ClassDef& moc) const;
    /// Whether objects of the class can match: false if it lacks the attribute.
    bool canMatch(const ClassDef& moc) const;
    /// False if the attribute of that class is a number, and the value to compare it with is none.
    bool canCompare(const ClassDef& moc) const;
    const std::string& value() const { return mValue; }
    bool matches(const ObjectState& object) const;

private:
    void split(const Model& model, const std::string& path);
    bool fits(const Value& value) const;
    bool fitsAny(const AttributeValue& value, const std::string& members) const;

    std::string mClass;
    std::string mAttribute;
    std::string mMembers; ///< inside the struct
    std::string mOperator;
    std::string mValue;
};

/// Whether the first word of `find` is a DN: "/", ".", "..", or one with the "=" of a step.
bool isDnWord(const std::string& word);

}

#endif
