// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "DnView.h"

#include <algorithm>

namespace OrvHost {

std::string_view DnStep::className() const {
    const std::string_view whole = type();
    return whole.substr(0, whole.find('.'));
}

const char* DnStep::whyInvalidReason() const {
    if (mText.empty()) {
        return "is empty";
    }
    if (!hasEquals()) {
        return "has no '='";
    }
    if (type().empty()) {
        return "has no class";
    }
    if (value().empty()) {
        return "has no value";
    }
    if (value().find('=') != std::string_view::npos) {
        return "has more than one '='";
    }
    return nullptr;
}

std::string DnStep::whyInvalid() const {
    const char* const reason = whyInvalidReason();
    return reason == nullptr ? std::string() : reason;
}

DnView DnView::parent() const {
    const std::size_t comma = mText.rfind(',');
    return DnView(comma == std::string_view::npos ? std::string_view() : mText.substr(0, comma));
}

DnStep DnView::last() const {
    return DnStep(mText.substr(mText.rfind(',') + 1)); // npos + 1 is 0
}

std::size_t DnView::depth() const {
    const auto commas = std::count(mText.begin(), mText.end(), ',');
    return mText.empty() ? 0 : static_cast<std::size_t>(commas) + 1;
}

DnView::Steps DnView::steps() const {
    return Steps(mText);
}

bool DnView::isAtOrBelow(DnView other) const {
    const std::size_t size = other.mText.size();
    if (mText.substr(0, size) != other.mText) {
        return false;
    }
    return size == 0 || mText.size() == size || mText[size] == ',';
}

std::string DnView::whyInvalid() const {
    if (mText.empty()) {
        return "it is empty";
    }
    for (const DnStep step : steps()) {
        if (!step.isValid()) {
            return "its step '" + std::string(step.text()) + "' " + step.whyInvalid();
        }
    }
    return {};
}

// As whyInvalid: each step has a type, one "=" and a value. The signs are searched for, not the
// letters gone through: a DN has few of them.
bool DnView::isValid() const {
    std::size_t begin = 0;
    for (std::size_t equals = mText.find('='); equals != std::string_view::npos;) {
        const std::size_t comma = mText.find(',', begin);
        const std::size_t end = std::min(comma, mText.size());
        if (equals == begin || end <= equals + 1) {
            return false; // without a type, without "=" before the comma, or without a value
        }
        equals = mText.find('=', equals + 1);
        if (comma == std::string_view::npos) {
            return equals == std::string_view::npos;
        }
        if (equals < comma) {
            return false;
        }
        begin = comma + 1;
    }
    return false;
}

std::string DnView::child(std::string_view className, std::string_view value) const {
    std::string dn;
    dn.reserve(mText.size() + className.size() + value.size() + 2);
    dn = mText;
    appendStep(dn, className, value);
    return dn;
}

std::string DnView::childPrefix(std::string_view className) const {
    return child(className, {});
}

std::string_view DnView::siblingPrefix() const {
    const DnStep step = last();
    return mText.substr(0, mText.size() - step.text().size() + step.type().size() + 1);
}

void appendStep(std::string& dn, std::string_view className, std::string_view value) {
    if (!dn.empty()) {
        dn += ',';
    }
    dn += className;
    dn += '=';
    dn += value;
}

}
