// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_TESTS_PROPERTY_ASSOCIATIONGAME_H
#define ORV_TESTS_PROPERTY_ASSOCIATIONGAME_H

#include "BiDirClient.h"
#include "BiDirUtils.h"
#include "Moves.h"
#include "Stage.h"

#include <rapidcheck.h>

#include <iosfwd>
#include <map>
#include <string>
#include <vector>

namespace BiDirTests {

using PropertyTests::Move;

/// One side of a generated association: the attribute of a class, its bounds as an attribute
/// (multiplicity) and as an end (cardinality).
struct GeneratedSide {
    std::string moc;
    std::string attribute;
    bool anyClass = false; ///< the attribute is declared for any class
    long long lower = 0;
    long long upper = 1000;
    long long lowerCount = 0;
    long long upperCount = 1000;
};

struct GeneratedAssociation {
    GeneratedSide first;
    GeneratedSide second;
};

using GeneratedModel = std::vector<GeneratedAssociation>;

void showValue(const GeneratedModel& model, std::ostream& out);

/// Associations among three classes. Attributes of any class may be shared by associations of
/// different target classes. With \p tight, the bounds are narrow.
rc::Gen<GeneratedModel> modelGenerator(bool tight);

/// Plays moves on a scripted host, through the bookkeeping under test, in one transaction after
/// another.
class AssociationGame {
public:
    explicit AssociationGame(const GeneratedModel& model);
    AssociationGame(const AssociationGame&) = delete;
    AssociationGame& operator=(const AssociationGame&) = delete;
    virtual ~AssociationGame();

    /// False if the move has no meaning in this state; then nothing was done.
    bool play(const Move& move);

    Dns references(const std::string& dn, const std::string& attribute) const;
    bool exists(const std::string& dn) const { return stage.world.exists(dn); }
    Dns existing() const;
    /// The reference attributes of a class, each once.
    Dns attributesOf(const std::string& moc) const;

    const GeneratedModel model;
    Scripted::Stage stage;
    OrvExtCmRouterService::BiDirUtils utils;
    Client client{stage, utils};
    unsigned long tx = 1; ///< the open transaction

protected:
    // Called before or after a part of a move; `chosen` may change the references.
    virtual Dns chosen(const std::string& dn, const std::string& attribute, const Dns& references);
    virtual void writing(const std::string& dn, const std::string& attribute, const Dns& old,
                         const Dns& fresh);
    virtual void created(const std::string& dn);
    virtual void deleting(const std::string& dn);
    virtual void ended(bool committed);

private:
    using State = std::map<std::string, std::map<std::string, Dns>>;

    bool create(const std::string& dn, const Move& move);
    bool set(const std::string& dn, const Move& move);
    bool remove(const std::string& dn);
    bool end(bool commit);
    State state() const;
    void restore(const State& wanted);

    State mBegin; ///< the state when the open transaction began
};

}

#endif
