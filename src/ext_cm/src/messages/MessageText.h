// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_EXT_CM_MESSAGETEXT_H
#define ORV_EXT_CM_MESSAGETEXT_H

#include <string>

namespace OrvExtCmRouterService {

/// Joins the pieces of a message for the client. Numbers are plain decimals, whatever the locale.
///
/// A piece that is missing, a null text, ends the message: what stands before it stays, and nothing
/// that comes later is joined on. A message without its first piece is empty.
class MessageText {
public:
    MessageText& operator<<(const char* piece) {
        mEnded = mEnded || piece == nullptr;
        if (!mEnded) {
            mText += piece;
        }
        return *this;
    }

    MessageText& operator<<(long long number) { return *this << std::to_string(number).c_str(); }

    const std::string& text() const { return mText; }

private:
    std::string mText;
    bool mEnded = false;
};

}

#endif
