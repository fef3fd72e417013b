// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// Whole modules: a model comes out, or an error that says what is wrong.
//
// FUZZ_YANG_PATH: directories, separated by ":", in which imported modules are searched.

#include "model/ModelError.h"
#include "support/ByteSource.h"
#include "support/ChosenModules.h"
#include "support/Require.h"
#include "yang/source/ModuleStatements.h"

using namespace Fuzz;
using namespace OrvHost;

namespace {

void checkModel(const Model& model) {
    for (const ClassDef& moc : model.classes) {
        require(model.findClass(moc.name).has_value(), "a class that cannot be found");
        require(moc.findAttribute(moc.namingAttribute) != nullptr, "a class without a name");
    }
    for (const BiDirAssociation& association : model.biDirAssociations) {
        for (int end = 0; end < 2; ++end) {
            const ClassDef& holder = model.classes[association.ends[end].moc];
            require(holder.findAttribute(association.ends[1 - end].name) != nullptr,
                    "an association without its attribute");
        }
    }
}

/// The name that the text gives its module, which the library compares with the name that it asked
/// for. One with "/" or "." could be read as the path of a file.
std::string nameOf(const std::string& text) {
    const std::string name = ModuleStatements(text).top().argument;
    return name.empty() || name.find_first_of("/.") != std::string::npos ? "m" : name;
}

}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    try {
        const std::string text = ByteSource(data, size).rest();
        const std::string name = nameOf(text);
        const YangModel read =
            chosenModelReader().offerText(name, "m.yang", text).load(name).withAllRules().read();
        checkModel(read.model);
    } catch (const ModelError& error) {
        require(error.what()[0] != '\0', "refused without a reason");
    }
    return 0;
}
