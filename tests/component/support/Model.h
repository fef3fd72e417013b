// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_TESTS_COMPONENT_SUPPORT_MODEL_H
#define ORV_TESTS_COMPONENT_SUPPORT_MODEL_H

#include "Value.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace Scripted {

/// One side of a bidirectional association, seen from the class that holds the attribute: the
/// attribute \p attribute of \p moc holds from \p lower to \p upper references to the class of the
/// other side, and messages count them in \p role.
struct Side {
    std::string moc;
    std::string attribute;
    long long lower = 0;
    long long upper = 1000;
    std::string role = "references";
    /// The flag of the end that lies at \p moc: back-pointers to it are left alone at delete.
    bool keepAtDelete = false;
};

/// The model that the scripted model repository answers from. Classes and attributes come into
/// being when they are first named; everything keeps the order in which it was added.
///
/// Threads: built by the test before the component is started, read by any thread afterwards.
class Model {
public:
    using Handle = unsigned long long;
    using Bounds = std::pair<long long, long long>;

    /// One class while a test describes it.
    class MocBuilder {
    public:
        MocBuilder(Model& model, std::size_t moc) : mModel(model), mMoc(moc) {}
        /// An attribute that is not a reference; its type code is that of a value record.
        MocBuilder& attribute(const std::string& name,
                              std::int32_t typeCode = OrvMoAttributeTypeString_3);
        /// A reference to \p target with the multiplicity \p lower to \p upper. The class
        /// "ManagedObject" stands for any.
        MocBuilder& reference(const std::string& name, const std::string& target,
                              long long lower = 0, long long upper = 1000);
        MocBuilder& contains(const std::string& child);

    private:
        Model& mModel;
        std::size_t mMoc;
    };

    MocBuilder moc(const std::string& name);
    /// The end that lies at the class of \p first is the association's first end. An attribute that
    /// is not there yet is added as a reference to the other class, without bounds.
    Model& biDir(const Side& first, const Side& second);
    /// \p attribute of \p moc refers to \p target. Several permitted classes: one call for each.
    Model& uniDir(const std::string& moc, const std::string& attribute, const std::string& target,
                  long long lower = 0, long long upper = 1000);

    /// What a reference attribute that was never set reads as: no references. Other attributes:
    /// nothing.
    std::optional<Value> unset(const std::string& moc, const std::string& attribute) const;

    // The questions of the repository, in the order of its sub-tables. Nothing: there is none.
    std::optional<Handle> mocFromDn(const std::string& dn) const;
    std::optional<const char*> generalName(Handle properties) const;
    std::optional<Handle> propertiesOf(Handle object) const;
    std::optional<Handle> firstAttribute(Handle moc) const;
    std::optional<Handle> nextAttribute(Handle attribute) const;
    std::optional<Handle> firstContainment(Handle moc) const;
    std::optional<Handle> nextContainment(Handle containment) const;
    std::optional<Handle> containedMoc(Handle containment) const;
    std::optional<Handle> firstBiDir(Handle moc) const;
    std::optional<Handle> nextBiDir(Handle current, Handle moc) const;
    std::optional<Handle> firstUniDir(Handle moc) const;
    std::optional<Handle> nextUniDir(Handle association) const;
    std::optional<Handle> endMoc(Handle end) const;
    std::optional<Handle> endAttribute(Handle end) const;
    std::optional<const char*> endText(Handle end, int identifier) const;
    std::optional<bool> endFlag(Handle end, int identifier) const;
    std::optional<long long> endBound(Handle end, int identifier) const;
    std::optional<Handle> endOfBiDir(Handle association, bool second) const;
    std::optional<Handle> endOfUniDir(Handle association) const;
    std::optional<int> typeCode(Handle type) const;
    std::optional<long long> typeBound(Handle type, int identifier) const;
    std::optional<Handle> mocOfAttribute(Handle attribute) const;
    std::optional<Handle> typeOfAttribute(Handle attribute) const;
    std::optional<Handle> referencedMoc(Handle type) const;

    /// A handle as a person reads it: a class "Unit", an attribute "Unit.peer", an end
    /// "units@Unit" (its name and its class), and so on.
    std::string nameOf(Handle handle) const;

private:
    struct Moc {
        std::string name;
    };
    struct Attribute {
        std::size_t moc;
        std::string name;
        std::int32_t typeCode;
        std::size_t target;
        Bounds bounds;
    };
    struct Containment {
        std::size_t parent;
        std::size_t child;
    };
    struct End {
        std::size_t moc;
        std::string name;
        std::size_t attribute;
        std::string role;
        Bounds bounds;
        bool keepAtDelete;
    };
    struct BiDir {
        std::size_t firstEnd;
        std::size_t secondEnd;
    };
    struct UniDir {
        std::size_t moc;
        std::size_t end;
    };

    std::size_t mocIndex(const std::string& name);
    std::optional<std::size_t> findMoc(const std::string& name) const;
    std::optional<std::size_t> findAttribute(std::size_t moc, const std::string& name) const;
    std::size_t referenceIndex(std::size_t moc, const std::string& name, std::size_t target);
    bool takesPart(std::size_t moc, const BiDir& association) const;

    std::vector<Moc> mMocs;
    std::vector<Attribute> mAttributes;
    std::vector<Containment> mContainments;
    std::vector<End> mEnds;
    std::vector<BiDir> mBiDirs;
    std::vector<UniDir> mUniDirs;
};

}

#endif
