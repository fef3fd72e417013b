// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_YANG_INSTANCES_XMLTAGS_H
#define ORV_HOST_YANG_INSTANCES_XMLTAGS_H

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace OrvHost {

/// The tags of an XML text that is known to be well-formed, one after the other, without what
/// stands between them.
///
/// The text must outlive this object. One thread at a time.
class XmlTags {
public:
    struct Tag {
        bool begins = false;           ///< <a> or <a/>
        bool ends = false;             ///< </a> or <a/>
        std::string_view name;         ///< without its prefix
        std::string_view xmlNamespace; ///< of a tag that begins; as it is written, without entities
        int line = 0;                  ///< from 1
    };

    explicit XmlTags(std::string_view text) : mText(text) {}

    /// The next one; nothing at the end.
    std::optional<Tag> next();

private:
    struct Declaration {
        std::string_view prefix;
        std::string_view xmlNamespace;
        std::size_t depth;
    };

    void goTo(std::size_t at);
    void skip(std::string_view end);
    std::size_t endOfTag() const;
    void declare(std::string_view attributes);
    std::string_view namespaceOf(std::string_view prefix) const;

    std::string_view mText;
    std::size_t mAt = 0;
    int mLine = 1;
    std::size_t mDepth = 0;
    std::vector<Declaration> mDeclarations;
};

}

#endif
