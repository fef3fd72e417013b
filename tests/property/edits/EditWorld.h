// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_TESTS_PROPERTY_EDITS_EDITWORLD_H
#define ORV_TESTS_PROPERTY_EDITS_EDITWORLD_H

#include "client/Clients.h"
#include "model/Model.h"
#include "runtime/Host.h"

#include <map>
#include <string>
#include <vector>

namespace EditTests {

using namespace OrvHost;

using Dns = std::vector<std::string>;

/// All objects with the values that they show, by external DN and attribute. Attributes without
/// values are left out.
using State = std::map<std::string, std::map<std::string, AttributeValue>>;

/// Classes with every kind of association: 1 to n, a class with itself through two attributes and
/// through one, an attribute shared by two target classes, an end that keeps DNs at delete, and one
/// direction.
Model makeModel();

constexpr const char* kRoot = "ManagedElement=east";

/// The class that a DN ends with.
std::string classNameOf(const std::string& dn);
std::string parentDnOf(const std::string& dn);
bool isBelowOrSame(const std::string& dn, const std::string& top);

AttributeValue refs(const Dns& dns);
Dns dnsOf(const AttributeValue& value);
/// The references of a slot; none if it is not there.
Dns refsIn(const State& state, const std::string& dn, const std::string& attribute);

/// A host with the component, and a few objects.
class EditWorld {
public:
    EditWorld();
    ~EditWorld();

    const Model& model() const { return mModel; }
    Host& host() { return mHost; }
    Clients& clients() { return *mClients; }

    /// What a transaction sees, read through the component. \p order, which may be null, receives
    /// the DNs, siblings in the order in which the component shows them.
    State read(unsigned long txHandle, Dns* order = nullptr);

    /// What is wrong with the committed associations, counted in the store itself: a reference
    /// whose far side is missing or there twice. References to objects that do not exist are no
    /// error.
    std::vector<std::string> recount();

private:
    void readBelow(unsigned long txHandle, const std::string& dn, const ClassDef& moc, State& state,
                   Dns& order);

    Model mModel = makeModel();
    Host mHost;
    std::unique_ptr<Clients> mClients;
};

}

#endif
