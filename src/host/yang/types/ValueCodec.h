// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_YANG_TYPES_VALUECODEC_H
#define ORV_HOST_YANG_TYPES_VALUECODEC_H

#include "model/Value.h"
#include "yang/source/YangContext.h"

#include <libyang/libyang.h>

#include <string>

namespace OrvHost {

/// Converts a value of the YANG library into a value of that kind. For the kinds see kindOf().
Value decodeValue(const ly_ctx* context, const lyd_value& value, ValueKind kind);

/// The text of a value in files, and the form that it has in JSON.
struct EncodedValue {
    enum class Form { Bare, Quoted, Empty };
    Form form = Form::Quoted;
    std::string text;        ///< canonical, not escaped
    bool isIdentity = false; ///< "module:name"
    bool isPath = false;     ///< an instance-identifier, which contains module names
};

/// Converts a value of a leaf or leaf-list that is not a struct. Values that the type refuses are
/// written as they are: the writer does not check values.
EncodedValue encodeValue(const Value& value, const lysc_node* node, const YangContext& context);

}

#endif
