// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "DnText.h"

namespace OrvHost {

namespace {

std::optional<DnStep> splitStep(std::string_view step) {
    const std::size_t equals = step.find('=');
    if (equals == std::string_view::npos || equals == 0 || equals + 1 == step.size()) {
        return std::nullopt;
    }
    const DnStep parts{step.substr(0, equals), step.substr(equals + 1)};
    if (parts.value.find('=') != std::string_view::npos) {
        return std::nullopt;
    }
    return parts;
}

}

std::optional<SplitDn> splitDn(std::string_view dn) {
    const std::size_t comma = dn.rfind(',');
    if (comma == 0) {
        return std::nullopt;
    }
    const bool isTopLevel = comma == std::string_view::npos;
    const auto leaf = splitStep(isTopLevel ? dn : dn.substr(comma + 1));
    if (!leaf) {
        return std::nullopt;
    }
    return SplitDn{isTopLevel ? std::string_view() : dn.substr(0, comma), *leaf};
}

bool isDn(std::string_view text) {
    do {
        const auto split = splitDn(text);
        if (!split) {
            return false;
        }
        text = split->parent;
    } while (!text.empty());
    return true;
}

std::string childDn(std::string_view parent, std::string_view className, std::string_view value) {
    std::string dn = childPrefix(parent, className);
    dn += value;
    return dn;
}

std::string childPrefix(std::string_view parent, std::string_view className) {
    std::string prefix(parent);
    if (!prefix.empty()) {
        prefix += ',';
    }
    prefix += className;
    prefix += '=';
    return prefix;
}

}
