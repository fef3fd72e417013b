// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "Place.h"

#include "base/DnView.h"
#include "cli/errors/CliErrors.h"
#include "client/DnResolver.h"
#include "model/DnForm.h"

#include <algorithm>
#include <string_view>

namespace OrvHost {

namespace {

std::string joined(const std::string& above, const std::string& below) {
    return above + (above.empty() || below.empty() ? "" : ",") + below;
}

bool beginsStep(const std::string& dn, const std::string& step) {
    return dn.compare(0, step.size(), step) == 0 &&
           (dn.size() == step.size() || dn[step.size()] == ',' || dn[step.size()] == '/');
}

std::string withoutStep(const std::string& dn, const std::string& step) {
    return dn.substr(std::min(step.size() + 1, dn.size()));
}

bool canBeBelow(const Model& model, const std::string& here, const std::string& dn) {
    const DnStep first(std::string_view(dn).substr(0, dn.find(',')));
    const DnResolver resolver(model);
    const ClassDef* moc = resolver.classOf(here);
    if (!first.hasEquals() || moc == nullptr) {
        return false;
    }
    const std::string name(DnStep(shortDn(model, std::string(first.text()))).type());
    const std::vector<std::string> below = resolver.childClasses(moc);
    return std::find(below.begin(), below.end(), name) != below.end();
}

}

std::string fromTop(const Model& model, const std::string& here, const std::string& dn) {
    if (!dn.empty() && dn.front() == '/') {
        return shortDn(model, dn.substr(1));
    }
    std::string above = here;
    std::string rest = dn;
    if (beginsStep(rest, ".")) {
        return shortDn(model, joined(here, withoutStep(rest, ".")));
    }
    if (!beginsStep(rest, "..")) {
        return shortDn(model,
                       !here.empty() && canBeBelow(model, here, rest) ? joined(here, rest) : rest);
    }
    while (beginsStep(rest, "..")) {
        if (above.empty()) {
            throw UsageError("'" + dn + "' leads above the top level");
        }
        above = std::string(DnView(above).parent().text());
        rest = withoutStep(rest, "..");
    }
    return shortDn(model, joined(above, rest));
}

void requirePlace(const Model& model, const std::string& dn) {
    const ClassDef* moc = nullptr;
    const std::string problem = dn.empty() ? "" : DnResolver(model).whyNoDn(dn, &moc);
    if (!problem.empty()) {
        throw UsageError(problem);
    }
}

}
