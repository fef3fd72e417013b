// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_EXT_CM_UNIDIRSTORAGE_H
#define ORV_EXT_CM_UNIDIRSTORAGE_H

#include "OrvMoAttributeValue.h"
#include "VekMgmtSpiThreadContext_2.h"
#include "VekOamSpiModelRepository_4.h"

#include <list>
#include <map>
#include <set>
#include <string>
#include <utility>

namespace OrvExtCmRouterService {

/// Remembers, for each open transaction, the unidirectional references that it wrote: a tree in the
/// shape of the DNs, so that a deleted MO takes the records of its subtree with it by the unlinking
/// of one node.
///
/// All DNs are internal. All walks go in the byte order of class names and naming values, parents
/// before their children. Every node is owned by the map that it stands in.
///
/// Threads: no lock of its own; UniDirValidator holds one around every call.
class UniDirStorage {
public:
    /// A DN taken apart into (class, value), leftmost step first. A step `Class.attr=value` counts
    /// by its class. Lives only during a call.
    class Dn : public std::list<std::pair<std::string, std::string>> {
    public:
        /// Throws Orv::OrvException if \p dn is malformed; an empty text gives an empty DN.
        explicit Dn(std::string const& dn);
    };

    /// A class with its name. Ordered by the handle alone.
    struct NamedMoc {
        VekOamSpiMrMocHandle_4T moc = 0;
        std::string name;

        bool operator<(NamedMoc const& other) const { return moc < other.moc; }
    };

    /// A permitted target class of a reference, with its bounds as unsigned numbers.
    struct AssocEnd : NamedMoc {
        /// An end without bounds, to search a set of ends by class.
        explicit AssocEnd(NamedMoc const& namedMoc) : NamedMoc(namedMoc) {}
        AssocEnd(NamedMoc const& namedMoc, unsigned long long lower, unsigned long long upper)
            : NamedMoc(namedMoc), min(lower), max(upper) {}

        unsigned long long min = 0;
        unsigned long long max = 0;
    };

    /// One recorded reference attribute. Ordered by the name alone.
    class UniDir {
    public:
        UniDir(std::string const& attrName, VekOamSpiMrUniDirAssociationHandle_4T firstAssociation,
               std::list<std::string> references);

        bool operator<(UniDir const& other) const { return name < other.name; }

        /// Judges the record of the MO \p dn; every violation becomes a message. Throws
        /// Orv::OrvException if the model fails or a reference is malformed.
        bool validate(VekOamSpiModelRepository_4 const& repository,
                      VekMgmtSpiThreadContext_2& threadContext, std::string const& dn) const;

        /// Counts the references by target class. False if a reference has no class, which a
        /// message reports.
        bool getRefCardinalites(VekOamSpiModelRepository_4 const& repository,
                                VekMgmtSpiThreadContext_2& threadContext, std::string const& dn,
                                std::map<NamedMoc, unsigned long long>& counts) const;

        /// Reads the permitted target classes from the model.
        void getAssocEnds(VekOamSpiModelRepository_4 const& repository,
                          std::set<AssocEnd>& ends) const;

        void addMessage(VekMgmtSpiThreadContext_2& threadContext, std::string const& message) const;

        std::string name;
        VekOamSpiMrUniDirAssociationHandle_4T assocHandle; ///< the class's first association
        std::list<std::string> refs;                       ///< in the order of the value
    };

    class TypeNode;

    /// One MO, or the root of a transaction.
    class ValueNode {
    public:
        explicit ValueNode(std::string const& namingValue);
        ValueNode(ValueNode const&) = delete;
        ValueNode& operator=(ValueNode const&) = delete;
        ~ValueNode();

        TypeNode* find(std::string const& type);
        TypeNode* findOrCreate(std::string const& type);
        void getDns(std::string dn, std::list<std::string>& dnList);
        bool validate(VekOamSpiModelRepository_4 const& repository,
                      VekMgmtSpiThreadContext_2& threadContext, std::string dn);

        std::string value;
        VekOamSpiMrMocHandle_4T moc = 0;
        std::set<UniDir> uniDirs;
        std::map<std::string, TypeNode*> types;
    };

    /// The children of one class under an MO.
    class TypeNode {
    public:
        explicit TypeNode(std::string const& className);
        TypeNode(TypeNode const&) = delete;
        TypeNode& operator=(TypeNode const&) = delete;
        ~TypeNode();

        ValueNode* find(std::string const& value);
        ValueNode* findOrCreate(std::string const& value);
        void getDns(std::string dn, std::list<std::string>& dnList);
        bool validate(VekOamSpiModelRepository_4 const& repository,
                      VekMgmtSpiThreadContext_2& threadContext, std::string dn);

        std::string type;
        std::map<std::string, ValueNode*> values;
    };

    UniDirStorage() = default;
    UniDirStorage(UniDirStorage const&) = delete;
    UniDirStorage& operator=(UniDirStorage const&) = delete;
    ~UniDirStorage();

    /// Records one attribute of one MO, in the place of an earlier record of it. Throws
    /// Orv::OrvException if \p dn is malformed.
    void setUniDirRef(unsigned long txHandle, std::string const& dn, VekOamSpiMrMocHandle_4T moc,
                      std::string const& attrName,
                      VekOamSpiMrUniDirAssociationHandle_4T assocHandle,
                      VekMoAttributeValueContainer_3 const* values);

    /// Forgets one MO with its subtree. Throws Orv::OrvException if \p dn is malformed.
    void deleteMo(unsigned long txHandle, std::string const& dn);

    /// Forgets one transaction.
    void finish(unsigned long txHandle);

    /// Forgets all transactions.
    void clear();

    /// Appends the DN of every MO that has a record.
    void getDns(unsigned long txHandle, std::list<std::string>& dnList);

    /// True if the transaction holds no violation. Throws Orv::OrvException, see UniDir::validate.
    bool validate(VekOamSpiModelRepository_4 const& repository,
                  VekMgmtSpiThreadContext_2& threadContext, unsigned long txHandle) const;

    /// Appends the texts of a reference value to \p refs.
    void getValues(VekMoAttributeValueContainer_3 const* values, std::list<std::string>* refs);

private:
    static void deleteFrom(ValueNode* node, std::string const& dn);
    ValueNode* findOrCreateRoot(unsigned long txHandle);

    std::map<unsigned long, ValueNode*> transactions;
};

}

#endif
