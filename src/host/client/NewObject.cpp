// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "NewObject.h"

#include "ClientErrors.h"
#include "DnResolver.h"
#include "MeIdTranslator.h"
#include "model/DnForm.h"

namespace OrvHost {

NewObject parseNewObject(const Model& model, const std::string& asWritten) {
    const std::string dn = shortDn(model, asWritten);
    const DnStep step = DnView(dn).last();
    const std::string type(step.type());
    if (type.empty() || !step.hasEquals()) {
        throw RequestError("'" + std::string(step.text()) + "' in " + dn +
                           " is no step of a DN; expected Class=value");
    }
    const std::size_t dot = type.find('.', 1);
    NewObject object;
    object.parentDn = DnView(dn).parent().text();
    object.className = type.substr(0, dot);
    object.name = step.value();
    const auto moc = model.findClass(object.className);
    object.namingAttribute = dot != std::string::npos ? type.substr(dot + 1)
                             : moc                    ? model.classes[*moc].namingAttribute
                                                      : defaultNamingAttribute(object.className);
    return object;
}

// The router gets the name of a new object unchanged, while the DNs around it are translated. So
// the element at the root must be created with its internal name to get its external identity; with
// any other name no client could ever name the object again.
void requireReachable(const NewObject& object) {
    if (object.parentDn.empty() && object.className == kRootClass && object.name != kRootName) {
        const std::string identity = Orv::MeIdTranslator::instance()->identity();
        throw RequestError(std::string(kRootClass) + "=" + object.name +
                           " would be an object that no client can name: the element at the root "
                           "is created as " +
                           kRootClass + "=" + kRootName + ", and clients know it as " + kRootClass +
                           "=" + identity);
    }
}

}
