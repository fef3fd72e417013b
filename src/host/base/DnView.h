// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_BASE_DNVIEW_H
#define ORV_HOST_BASE_DNVIEW_H

#include <cstddef>
#include <iterator>
#include <string>
#include <string_view>

namespace OrvHost {

/// One step of a DN as it is written: `Class=value` or `Class.attribute=value`. Every text can be
/// looked at as a step; isValid() says whether it is one.
///
/// A view: the text must live as long as it is used.
class DnStep {
public:
    explicit constexpr DnStep(std::string_view text) : mText(text), mTypeSize(text.find('=')) {}

    std::string_view text() const { return mText; }
    /// False while only a type, or a part of one, is written.
    bool hasEquals() const { return mTypeSize != std::string_view::npos; }
    /// Everything before the first "=": `Class` or `Class.attribute`. The whole text if it has
    /// none.
    std::string_view type() const { return mText.substr(0, mTypeSize); }
    /// The type without a naming attribute.
    std::string_view className() const;
    /// The naming value: everything after the first "=". Empty if there is no "=".
    std::string_view value() const {
        return hasEquals() ? mText.substr(mTypeSize + 1) : std::string_view();
    }

    /// What is wrong with the step, to be put after its text: "has no value". Empty if it has a
    /// type, one "=" and a value. The value itself is not checked (see DnUtil in the helper
    /// library).
    std::string whyInvalid() const;
    bool isValid() const { return whyInvalidReason() == nullptr; }

private:
    const char* whyInvalidReason() const;

    std::string_view mText;
    std::size_t mTypeSize; ///< the position of the first "=", or npos
};

/// The text of a DN, to be taken apart: `Class=value` steps with commas between, the object at the
/// top first. Internal and external DNs have this one form, so it is for both; nothing is
/// translated. The empty text stands for the place above the top-level objects.
///
/// Every text can be taken apart, also one that is not a DN: steps are what stands between the
/// commas. isValid() says whether all of them are steps.
///
/// A view: the text must live as long as it is used, and so must it for the steps and parents that
/// are taken from it. No function allocates except those that return a string. Any thread.
class DnView {
public:
    class Iterator;
    /// The steps from the top, for a range-based loop. The empty text has none.
    class Steps;

    explicit constexpr DnView(std::string_view text) : mText(text) {}

    std::string_view text() const { return mText; }
    bool isEmpty() const { return mText.empty(); }

    /// True if there is a comma. What stands before the last one can be empty or malformed.
    bool hasParent() const { return mText.find(',') != std::string_view::npos; }
    /// Everything before the last comma; empty if there is none.
    DnView parent() const;
    /// Everything after the last comma; the whole text if there is none.
    DnStep last() const;
    /// The number of steps. 0 for the empty text, 1 at the top level.
    std::size_t depth() const;
    Steps steps() const;
    /// True if both are the same text, \p other is empty, or this text continues it after a comma.
    bool isAtOrBelow(DnView other) const;

    /// What is wrong: "it is empty", "its step 'B' has no value". Empty if the text has the form of
    /// a DN: at least one step, and each step is valid.
    std::string whyInvalid() const;
    bool isValid() const;

    /// The DN of a child. It has one step if this text is empty.
    std::string child(std::string_view className, std::string_view value) const;
    /// The common part of the DNs of all children of one class: everything before the value.
    std::string childPrefix(std::string_view className) const;
    /// The same for this object and its siblings: everything up to the "=" of the last step.
    std::string_view siblingPrefix() const;

private:
    std::string_view mText;
};

class DnView::Iterator {
public:
    explicit Iterator(std::string_view rest)
        : mRest(rest), mStepSize(rest.find(',')), mIsAtEnd(rest.empty()) {}

    DnStep operator*() const { return DnStep(mRest.substr(0, mStepSize)); }
    Iterator& operator++() {
        mIsAtEnd = mStepSize == std::string_view::npos;
        if (!mIsAtEnd) {
            mRest.remove_prefix(mStepSize + 1);
            mStepSize = mRest.find(',');
        }
        return *this;
    }
    bool operator==(std::default_sentinel_t) const { return mIsAtEnd; }

private:
    std::string_view mRest; ///< from the current step on
    std::size_t mStepSize;  ///< the position of the first comma in it, or npos
    bool mIsAtEnd;          ///< an empty rest can also be the empty step after the last comma
};

class DnView::Steps {
public:
    explicit Steps(std::string_view text) : mText(text) {}

    Iterator begin() const { return Iterator(mText); }
    static std::default_sentinel_t end() { return {}; }

private:
    std::string_view mText;
};

/// Adds a step at the end of the text of a DN, which may be empty.
void appendStep(std::string& dn, std::string_view className, std::string_view value);

}

#endif
