// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "InstanceDataStream.h"

#include "base/DnView.h"
#include "yang/instances/ObjectWriter.h"

#include <algorithm>
#include <utility>

namespace OrvHost {
namespace {

constexpr int kStep = 2;

}

InstanceDataStream::InstanceDataStream(std::shared_ptr<const YangSchema> schema, DataFormat format,
                                       std::ostream& out)
    : mSchema(std::move(schema)),
      mWriter(ObjectWriter::make(format, mSchema->context())),
      mStream(mWriter->stream(out, kStep)),
      mLevels(1) {}

InstanceDataStream::~InstanceDataStream() = default;

void InstanceDataStream::open(std::string_view className, const std::string& name,
                              const std::vector<NamedValue>& attributes) {
    std::string dn = DnView(mLevels.back().dn).child(className, name);
    try {
        const ObjectShape& shape = requireShape(*mSchema, mLevels.back().shape, className);
        const std::string body = mWriter->body(shape, keysOf(shape, name), attributes);
        enter(mLevels.back(), shape);
        mStream->open(shape.list, body);
        mLevels.push_back({std::move(dn), &shape, {}, {}});
    } catch (const UnwritableValueError& error) {
        throw InstanceDataError({{{}, dn + ": " + error.what()}});
    }
}

/// Goes to the place of an object: closes the containers that are not around it and opens those
/// that are.
void InstanceDataStream::enter(Level& level, const ObjectShape& shape) {
    const auto& wanted = shape.wrappers;
    const auto differ = std::mismatch(level.openWrappers.begin(), level.openWrappers.end(),
                                      wanted.begin(), wanted.end());
    const bool isSamePlace =
        differ.first == level.openWrappers.end() && differ.second == wanted.end();
    if (!isSamePlace || level.begun.empty() || level.begun.back() != shape.list) {
        const auto isBegun = [&](const lysc_node* node) {
            return std::find(level.begun.begin(), level.begun.end(), node) != level.begun.end();
        };
        if (isBegun(shape.list) || std::any_of(differ.second, wanted.end(), isBegun)) {
            throw UnwritableValueError("objects of class \"" + shape.className +
                                       "\" must follow each other, and others came between");
        }
    }
    closeWrappers(level, static_cast<std::size_t>(differ.first - level.openWrappers.begin()));
    for (auto wrapper = differ.second; wrapper != wanted.end(); ++wrapper) {
        mStream->open(*wrapper, "");
        level.openWrappers.push_back(*wrapper);
        begin(level, *wrapper);
    }
    begin(level, shape.list);
}

void InstanceDataStream::begin(Level& level, const lysc_node* node) {
    if (level.begun.empty() || level.begun.back() != node) {
        level.begun.push_back(node);
    }
}

void InstanceDataStream::closeWrappers(Level& level, std::size_t kept) {
    while (level.openWrappers.size() > kept) {
        mStream->close();
        level.openWrappers.pop_back();
    }
}

void InstanceDataStream::close() {
    closeWrappers(mLevels.back(), 0);
    mStream->close();
    mLevels.pop_back();
}

void InstanceDataStream::finish() {
    closeWrappers(mLevels.back(), 0);
    mStream->finish();
}

}
