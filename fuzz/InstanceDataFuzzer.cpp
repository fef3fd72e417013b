// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// Instance data: any text is read, or refused with a reason. What is read can be
// written in both formats, and reads the same again.
//
// FUZZ_YANG_MODULES: modules, separated by ":", whose data the text is, instead of the example
// model. They are searched in the directories of FUZZ_YANG_PATH, which are separated in the same
// way.

#include "RanModel.h"
#include "support/ByteSource.h"
#include "support/ChosenModules.h"
#include "support/Require.h"
#include "yang/instances/InstanceDataReader.h"
#include "yang/instances/InstanceDataWriter.h"

#include <optional>
#include <sstream>
#include <unordered_set>

using namespace Fuzz;
using namespace OrvHost;

namespace {

using Objects = std::vector<DataObject>;

YangModel readModel() {
    const std::vector<std::string> modules = wordsOf("FUZZ_YANG_MODULES");
    if (modules.empty()) {
        return RanGenerator::readRanModel();
    }
    YangModelReader reader = chosenModelReader();
    for (const std::string& module : modules) {
        reader.load(module);
    }
    return reader.read();
}

const YangModel& theModel() {
    static const YangModel model = readModel();
    return model;
}

std::optional<Objects> read(const std::string& text) {
    Objects objects;
    InstanceDataReader reader(theModel().schema);
    try {
        reader.readText(text, "input", [&](DataObject&& object, const std::string&) {
            objects.push_back(std::move(object));
        });
    } catch (const InstanceDataError& error) {
        require(!error.problems().empty() && error.what()[0] != '\0', "refused without a reason");
        return std::nullopt;
    }
    return objects;
}

// The same list can stand at several places of a text, and then an object comes more than once; the
// writer takes each once.
bool areDistinct(const Objects& objects) {
    std::unordered_set<std::string> dns;
    for (const DataObject& object : objects) {
        if (!dns.insert(object.dn).second) {
            return false;
        }
    }
    return true;
}

std::string write(const Objects& objects, DataFormat format) {
    InstanceDataWriter writer(theModel().schema, format);
    for (const DataObject& object : objects) {
        writer.add(object);
    }
    std::ostringstream out;
    writer.write(out);
    return out.str();
}

bool areSame(const Objects& left, const Objects& right) {
    bool isSame = left.size() == right.size();
    for (std::size_t at = 0; isSame && at < left.size(); ++at) {
        isSame = left[at].dn == right[at].dn && left[at].attributes == right[at].attributes;
    }
    return isSame;
}

}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::optional<Objects> objects = read(ByteSource(data, size).rest());
    if (!objects || objects->empty() || !areDistinct(*objects)) {
        return 0;
    }
    for (const DataFormat format : {DataFormat::Json, DataFormat::Xml}) {
        const std::string text = write(*objects, format);
        const std::optional<Objects> again = read(text);
        require(again.has_value(), "what was written is refused:\n" + text);
        require(areSame(*objects, *again), "what was written reads differently:\n" + text);
    }
    return 0;
}
