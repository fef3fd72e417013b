// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_STORE_WRITECHECK_H
#define ORV_HOST_STORE_WRITECHECK_H

#include "base/HostError.h"
#include "model/Model.h"

#include <string>
#include <string_view>
#include <vector>

namespace OrvHost {

/// The rules of the model that every single write must follow. A function throws HostError for what
/// does not fit, with a text that names the class, the attribute and what was expected. The caller
/// adds the DN (see withDn). No state.
class WriteCheck {
public:
    /// Whether attributes that only the system sets may be given.
    enum class Writer { Client, System };

    /// The position of an attribute. OrvNotExist.
    static AttributeIndex requireAttribute(const ClassDef& moc, std::string_view name);
    static ClassIndex requireClass(const Model& model, std::string_view name);

    /// Whether objects of class \p moc are allowed under one of class \p parent, or at the top
    /// level if \p parent is null. OrvHostNotContained.
    static void containment(const Model& model, const ClassDef* parent, ClassIndex moc);

    /// Whether \p name may name an object of \p moc: a valid naming value that the naming
    /// attribute's type accepts. OrvInvalidArgument.
    static void name(const ClassDef& moc, const std::string& name);

    /// Whether an attribute may be set to these values. The number of references is not checked.
    /// OrvInvalidArgument, OrvHostNotWritable.
    static void value(const ClassDef& moc, AttributeIndex index, const AttributeValue& value,
                      Writer writer);

    /// Whether no attribute is given twice. OrvInvalidArgument.
    static void noDoubles(const std::vector<NamedValue>& values);

    /// The attributes (see AttributeBytes) of an object that gets the name \p name. All values must
    /// fit, and none may be given twice; what the name gives may be given if it has the same value.
    static std::string initial(const ClassDef& moc, const std::string& name,
                               const std::vector<NamedValue>& values, Writer writer);

    /// The names of the attributes that must have a value but have none.
    static std::vector<std::string> missing(const ClassDef& moc, std::string_view bytes,
                                            bool withReferences);

    /// What is wrong with the choices among the attributes of an object with changes (see
    /// AttributeBytes), see OrvHost::wrongChoices.
    static std::vector<std::string> wrongChoices(const ClassDef& moc, std::string_view bytes,
                                                 std::string_view changes);

    /// The value that the name \p name, which must fit, gives to the attribute \p def of \p moc:
    /// the naming attribute, or one of several keys.
    static AttributeValue nameValue(const ClassDef& moc, const AttributeDef& def,
                                    std::string_view name);

    /// Whether the default of an attribute applies in an object with changes, see
    /// OrvHost::isDefaultInUse.
    static bool isDefaultInUse(const ClassDef& moc, const std::string& name, std::string_view bytes,
                               std::string_view changes);

private:
    static bool isPresent(const ClassDef& moc, const std::string& name, std::string_view bytes,
                          std::string_view changes);
};

/// Runs \p check and puts \p dn before the text of a HostError that it throws.
template <class Check>
auto withDn(std::string_view dn, Check&& check) {
    try {
        return check();
    } catch (const HostError& error) {
        throw HostError(error.code(), std::string(dn) + ": " + error.what());
    }
}

}

#endif
