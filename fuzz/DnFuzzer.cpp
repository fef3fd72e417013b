// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// DNs: the helper library's parser and translator, and the host's own view of the same texts.

#include "DnUtil.h"
#include "MeIdTranslator.h"
#include "base/DnView.h"
#include "model/building/ModelBuilder.h"
#include "support/ByteSource.h"
#include "support/Require.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <string>

using namespace Fuzz;

namespace {

/// The MOC path, taken together from the leaf upwards.
std::string pathFromLeaves(std::string dn) {
    std::string path;
    std::string leaf;
    while (Orv::DnUtil::popLeafClass(dn, leaf)) {
        path = (dn.empty() ? leaf : "," + leaf) + path;
    }
    return path;
}

void checkPath(const std::string& dn) {
    const std::string path = Orv::DnUtil::getMocPath(dn);
    require(path == pathFromLeaves(dn), "two paths of one DN");
    require(path.size() <= dn.size(), "the path is longer than the DN");
}

bool isUtf8(const std::string& text) {
    try {
        return !nlohmann::json(text).dump().empty();
    } catch (const nlohmann::json::exception&) {
        return false;
    }
}

// Every valid naming value makes exactly one step.
void checkNamingValue(const std::string& text) {
    if (!Orv::DnUtil::validateMoNamingAttr(text.c_str())) {
        return;
    }
    const std::string dn = "Parent=1,Unit=" + text;
    require(Orv::DnUtil::getMocPath(dn) == "Parent,Unit", "a naming value breaks the path");
    require(OrvHost::DnView(dn).isValid(), "a naming value breaks the DN");
    require(isUtf8(text), "a naming value is no UTF-8");
    require(OrvHost::DnView(dn).last().value() == text, "a naming value is cut short");
}

void checkTranslation(const std::string& dn, const std::string& identity) {
    Orv::MeIdTranslator& translator = *Orv::MeIdTranslator::instance();
    translator.configure(identity, "fallback");
    const std::string internal = translator.toInternalDn(dn);
    require(internal.empty() || translator.toExternalDn(internal) == dn, "a DN does not come back");
    const std::string external = translator.toExternalDn(dn);
    require(external.empty() || translator.toInternalDn(external) == dn, "a DN does not come back");
    require(internal.empty() || Orv::DnUtil::getMocPath(internal) == Orv::DnUtil::getMocPath(dn),
            "translation changes the path");
}

/// True if all steps can be taken off, one after the other.
bool splitsToTheTop(const std::string& dn) {
    std::size_t depth = 0;
    OrvHost::DnView rest(dn);
    for (; !rest.isEmpty(); rest = rest.parent(), ++depth) {
        const OrvHost::DnStep step = rest.last();
        if (!step.isValid() || (rest.hasParent() && rest.parent().isEmpty())) {
            return false;
        }
        require(rest.parent().child(step.type(), step.value()) == rest.text(),
                "a DN taken apart is another one");
    }
    require(OrvHost::DnView(dn).depth() == depth, "a step is lost");
    return !dn.empty();
}

void checkHostView(const std::string& dn) {
    const OrvHost::DnView view(dn);
    require(view.isValid() == splitsToTheTop(dn), "two views of what a DN is");
    require(view.isValid() == view.whyInvalid().empty(), "no reason, or one too many");
    static const OrvHost::Model kModel = OrvHost::ModelBuilder()
                                             .add(OrvHost::ClassDraft("A").topLevel().key("aId"))
                                             .add(OrvHost::ClassDraft("B").key("bId"))
                                             .contain("A", "B")
                                             .contain("B", "B")
                                             .build();
    const auto moc = kModel.findClassOfDn(dn);
    const std::string path = Orv::DnUtil::getMocPath(dn);
    if (moc) {
        const std::string& name = kModel.classes[*moc].name;
        require(path.substr(path.size() - name.size()) == name, "the class is not the last one");
    }
}

}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const char* const kIdentities[] = {"north", "1", "", "a=b", "ManagedElement"};
    ByteSource source(data, size);
    const std::string identity = kIdentities[source.below(std::size(kIdentities))];
    std::string text = source.rest();
    std::replace(text.begin(), text.end(), '\0', '?');
    checkPath(text);
    checkNamingValue(text);
    checkTranslation(text, identity);
    checkHostView(text);
    return 0;
}
