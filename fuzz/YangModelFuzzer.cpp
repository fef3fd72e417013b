// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// Whole modules: a model comes out, or an error that says what is wrong.

#include "model/ModelError.h"
#include "support/ByteSource.h"
#include "support/Require.h"
#include "yang/schema/YangModelReader.h"

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

}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    try {
        const YangModel read = YangModelReader()
                                   .offerText("m", "m.yang", ByteSource(data, size).rest())
                                   .load("m")
                                   .read();
        checkModel(read.model);
    } catch (const ModelError& error) {
        require(error.what()[0] != '\0', "refused without a reason");
    }
    return 0;
}
