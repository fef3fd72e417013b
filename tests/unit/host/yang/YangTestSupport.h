// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_TESTS_UNIT_HOST_YANG_YANGTESTSUPPORT_H
#define ORV_TESTS_UNIT_HOST_YANG_YANGTESTSUPPORT_H

#include "audit/InstanceReport.h"
#include "model/RuleCheck.h"
#include "yang/instances/DataObject.h"
#include "yang/schema/YangModelReader.h"

#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace OrvHost {

/// A file of this directory's `data`, or of the examples.
std::filesystem::path testData(const std::string& name);
std::filesystem::path exampleFile(const std::string& name);

/// A directory that is deleted with this object.
class TemporaryDirectory {
public:
    TemporaryDirectory();
    ~TemporaryDirectory();
    TemporaryDirectory(const TemporaryDirectory&) = delete;
    TemporaryDirectory& operator=(const TemporaryDirectory&) = delete;

    const std::filesystem::path& path() const { return mPath; }
    std::filesystem::path write(const std::string& name, std::string_view text) const;

private:
    std::filesystem::path mPath;
};

/// The modules of `data/models`, read only once.
const YangModel& siteModel();
const YangModel& foreignModel();
/// The example's model, from the files in the examples.
const YangModel& ranModel();

/// A model from one module text; its lines count from 1.
YangModel modelOf(const std::string& moduleText);
/// The body of `module m`, in which the prefix of the associations is `orv`.
YangModel modelOfBody(const std::string& body);

/// The problems of a model: the text of the ModelError that the action throws, or nothing.
std::string modelErrorOf(const std::function<void()>& action);
/// The same for instance data.
std::string dataErrorOf(const std::function<void()>& action);

std::vector<DataObject> readObjects(const YangModel& model,
                                    const std::vector<std::filesystem::path>& files);
std::vector<DataObject> readObjectsOf(const YangModel& model, const std::string& text);
std::string writeObjects(const YangModel& model, DataFormat format,
                         const std::vector<DataObject>& objects);

/// The checker's report. A bare object is left out if its DN came before.
InstanceReport checkObjects(const YangModel& model, const std::vector<DataObject>& objects);
/// The problems in it, one on each line.
std::string problemsOf(const YangModel& model, const std::vector<DataObject>& objects);

/// The objects of instance data, for a check of rules.
class DataView : public ObjectView {
public:
    DataView(const YangModel& model, const std::string& data);

    bool exists(const std::string& dn) const override;
    std::vector<NamedValue> valuesOf(const std::string& dn) const override;
    std::vector<std::string> namesOf(const std::string& parentDn,
                                     const std::string& className) const override;

private:
    std::map<std::string, std::vector<NamedValue>> mValues;
    std::map<std::string, std::vector<std::string>> mNames;
};

const ClassDef& classOf(const YangModel& model, std::string_view name);
const AttributeDef& attributeOf(const YangModel& model, std::string_view className,
                                std::string_view attribute);
const DataObject& objectOf(const std::vector<DataObject>& objects, std::string_view dn);
/// The attribute's values as text, "[a, b]"; "absent" if there is no such attribute.
std::string valueOf(const DataObject& object, std::string_view attribute);

/// The first object, with its attributes, that only one of the two lists contains; empty if both
/// contain the same objects in any order.
std::string differenceOf(const std::vector<DataObject>& left, const std::vector<DataObject>& right);

}

#endif
