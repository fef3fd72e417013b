// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_YANG_VALUETEXT_H
#define ORV_HOST_YANG_VALUETEXT_H

#include "model/Value.h"
#include "yang/YangContext.h"

#include <libyang/libyang.h>

#include <string>

namespace OrvHost {

/// A value of the YANG library as a value of that kind. See kindOf() for what becomes what.
Value readValue(const ly_ctx* context, const lyd_value& value, ValueKind kind);

/// How a value looks on the wire, and which of the forms of JSON it takes.
struct WireValue {
    enum class Form { Bare, Quoted, Empty };
    Form form = Form::Quoted;
    std::string text;        ///< canonical, not escaped
    bool isIdentity = false; ///< "module:name"
    bool isPath = false;     ///< an instance-identifier, which holds module names too
};

/// A value of a leaf or leaf-list, which is no struct. Values that the type refuses are written
/// as they are: checking is not the writer's task.
WireValue toWire(const Value& value, const lysc_node* node, const YangContext& context);

}

#endif
