// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_CLIENT_EDITS_EDITPROBLEM_H
#define ORV_HOST_CLIENT_EDITS_EDITPROBLEM_H

#include "base/Join.h"

#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace OrvHost {

/// One thing that is wrong with a wish.
struct EditProblem {
    enum class Kind {
        NoSuchClass,     ///< the DN is none, or the model has no such object at that place
        OutsideEdit,     ///< the object is not at the edit's DN or below it
        NoParent,        ///< the parent does not exist afterwards
        AlreadyThere,    ///< to be created, but it exists
        NotThere,        ///< to be set or deleted, but it does not exist
        NoSuchAttribute, ///< the class has no such attribute
        WrongValue,      ///< the name or the values cannot be set, or must not be taken away
        Contradiction,   ///< two parts of the wish want different things
        DeletedTarget    ///< a reference to what the wish deletes
    };

    Kind kind;
    std::string dn;        ///< external
    std::string attribute; ///< empty: none in particular
    std::string text;      ///< for people; names the object, what is wrong, what was expected
};

/// The \p attribute of \p dn names \p target, which the wish deletes.
inline EditProblem deletedTarget(const std::string& dn, const std::string& attribute,
                                 const std::string& target) {
    return {EditProblem::Kind::DeletedTarget, dn, attribute,
            dn + "." + attribute + " names " + target + ", which the wish deletes"};
}

/// A wish that was refused as a whole, before anything was written.
class EditRefusedError : public std::runtime_error {
public:
    /// \p problems: at least one.
    explicit EditRefusedError(std::vector<EditProblem> problems)
        : std::runtime_error(
              joinedLines(problems, [](const EditProblem& problem) { return problem.text; })),
          mProblems(std::move(problems)) {}

    /// All that is wrong, sorted by DN and attribute.
    const std::vector<EditProblem>& problems() const { return mProblems; }

private:
    std::vector<EditProblem> mProblems;
};

}

#endif
