// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "YangTestSupport.h"

#include <stdlib.h>

#include "audit/InstanceChecker.h"
#include "base/DnView.h"
#include "yang/instances/InstanceDataReader.h"
#include "yang/instances/InstanceDataWriter.h"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <set>
#include <sstream>
#include <stdexcept>

namespace OrvHost {

namespace fs = std::filesystem;

fs::path testData(const std::string& name) {
    return fs::path(ORV_YANG_TEST_DATA) / name;
}

fs::path exampleFile(const std::string& name) {
    return fs::path(ORV_EXAMPLES) / name;
}

TemporaryDirectory::TemporaryDirectory() {
    std::string name = (fs::temp_directory_path() / "orv-yang-XXXXXX").string();
    if (mkdtemp(name.data()) == nullptr) {
        throw std::runtime_error("no temporary directory");
    }
    mPath = name;
}

TemporaryDirectory::~TemporaryDirectory() {
    std::error_code ignored;
    fs::remove_all(mPath, ignored);
}

fs::path TemporaryDirectory::write(const std::string& name, std::string_view text) const {
    const fs::path file = mPath / name;
    fs::create_directories(file.parent_path());
    std::ofstream(file, std::ios::binary) << text;
    return file;
}

const YangModel& siteModel() {
    static const YangModel model =
        YangModelReader().searchIn(testData("models")).load("site").load("site-extension").read();
    return model;
}

const YangModel& foreignModel() {
    static const YangModel model = YangModelReader()
                                       .searchIn(testData("models"))
                                       .load("foreign-network")
                                       .load("foreign-associations")
                                       .read();
    return model;
}

const YangModel& ranModel() {
    static const YangModel model = YangModelReader()
                                       .searchIn(exampleFile("models"))
                                       .load("ran-function")
                                       .load("ran-equipment")
                                       .read();
    return model;
}

YangModel modelOf(const std::string& moduleText) {
    return YangModelReader().offerText("m", "m.yang", moduleText).load("m").read();
}

YangModel modelOfBody(const std::string& body) {
    return modelOf("module m { yang-version 1.1; namespace \"urn:m\"; prefix m;"
                   " import orv-associations { prefix orv; }\n" +
                   body + "\n}");
}

std::string modelErrorOf(const std::function<void()>& action) {
    try {
        action();
        return "";
    } catch (const ModelError& error) {
        return error.what();
    }
}

std::string dataErrorOf(const std::function<void()>& action) {
    try {
        action();
        return "";
    } catch (const InstanceDataError& error) {
        return error.what();
    }
}

std::vector<DataObject> readObjects(const YangModel& model, const std::vector<fs::path>& files) {
    std::vector<DataObject> objects;
    InstanceDataReader(model.schema).read(files, [&objects](DataObject&& o, const std::string&) {
        objects.push_back(std::move(o));
    });
    return objects;
}

std::vector<DataObject> readObjectsOf(const YangModel& model, const std::string& text) {
    std::vector<DataObject> objects;
    InstanceDataReader(model.schema)
        .readText(text, "data", [&objects](DataObject&& o, const std::string&) {
            objects.push_back(std::move(o));
        });
    return objects;
}

std::string writeObjects(const YangModel& model, DataFormat format,
                         const std::vector<DataObject>& objects) {
    InstanceDataWriter writer(model.schema, format);
    for (const DataObject& object : objects) {
        writer.add(object);
    }
    std::ostringstream out;
    writer.write(out);
    return out.str();
}

InstanceReport checkObjects(const YangModel& model, const std::vector<DataObject>& objects) {
    std::vector<Instance> instances;
    std::set<std::string_view> known;
    for (const DataObject& object : objects) {
        const bool isNew = known.insert(object.dn).second;
        if (isNew || !object.isBare) {
            instances.push_back({object.dn, object.attributes});
        }
    }
    return InstanceChecker(model.model).check(InstanceSpan(instances));
}

std::string problemsOf(const YangModel& model, const std::vector<DataObject>& objects) {
    std::string text;
    for (const InstanceProblem& problem : checkObjects(model, objects).problems) {
        text += problem.text + "\n";
    }
    return text;
}

DataView::DataView(const YangModel& model, const std::string& data) {
    for (DataObject& object : readObjectsOf(model, data)) {
        const DnView dn(object.dn);
        mNames[std::string(dn.siblingPrefix())].emplace_back(dn.last().value());
        mValues.emplace(object.dn, std::move(object.attributes));
    }
}

bool DataView::exists(const std::string& dn) const {
    return mValues.count(dn) > 0;
}

std::vector<NamedValue> DataView::valuesOf(const std::string& dn) const {
    return mValues.at(dn);
}

std::vector<std::string> DataView::namesOf(const std::string& parentDn,
                                           const std::string& className) const {
    const auto found = mNames.find(DnView(parentDn).childPrefix(className));
    return found == mNames.end() ? std::vector<std::string>() : found->second;
}

const ClassDef& classOf(const YangModel& model, std::string_view name) {
    const auto found = model.model.findClass(name);
    if (!found) {
        throw std::runtime_error("no class " + std::string(name));
    }
    return model.model.classes[*found];
}

const AttributeDef& attributeOf(const YangModel& model, std::string_view className,
                                std::string_view attribute) {
    const AttributeDef* found = classOf(model, className).findAttribute(attribute);
    if (found == nullptr) {
        throw std::runtime_error("no attribute " + std::string(attribute));
    }
    return *found;
}

const DataObject& objectOf(const std::vector<DataObject>& objects, std::string_view dn) {
    const auto found = std::find_if(objects.begin(), objects.end(),
                                    [dn](const DataObject& object) { return object.dn == dn; });
    if (found == objects.end()) {
        throw std::runtime_error("no object " + std::string(dn));
    }
    return *found;
}

namespace {

std::string textOf(const AttributeValue& value) {
    std::string text;
    for (const Value& one : value.values) {
        text += (text.empty() ? "" : ", ") + toText(one);
    }
    return "[" + text + "]";
}

}

std::string valueOf(const DataObject& object, std::string_view attribute) {
    for (const NamedValue& value : object.attributes) {
        if (value.first == attribute) {
            return textOf(value.second);
        }
    }
    return "absent";
}

namespace {

/// "dn {name=[values] ...}" for each object.
std::set<std::string> summariesOf(const std::vector<DataObject>& objects) {
    std::set<std::string> summaries;
    for (const DataObject& object : objects) {
        std::set<std::string> attributes;
        for (const NamedValue& value : object.attributes) {
            attributes.insert(value.first + "=" + textOf(value.second));
        }
        std::string summary = object.dn + " {";
        for (const std::string& attribute : attributes) {
            summary += attribute + " ";
        }
        summaries.insert(summary + "}");
    }
    return summaries;
}

}

std::string differenceOf(const std::vector<DataObject>& left,
                         const std::vector<DataObject>& right) {
    const std::set<std::string> ofLeft = summariesOf(left);
    const std::set<std::string> ofRight = summariesOf(right);
    std::vector<std::string> only;
    std::set_symmetric_difference(ofLeft.begin(), ofLeft.end(), ofRight.begin(), ofRight.end(),
                                  std::back_inserter(only));
    return only.empty() ? "" : only.front();
}

}
